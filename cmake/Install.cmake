# What `cmake --install` puts in place for a host to build against: the component's shared
# library and its headers, the Qt binding, a CMake package (find_package(Morvane) gives
# Morvane::morvane and Morvane::morvane-qt), pkg-config files, and the programs.
include(CMakePackageConfigHelpers)

set(MORVANE_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/morvane)
set(MORVANE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Morvane)

install(TARGETS morvane EXPORT MorvaneTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_COMPONENT Development)
# The public object's header and the headers it includes, each in its folder; the rest of src/
# is the component's own.
foreach(header component/ctrlMorvane.h platform/Forms.h util/Value.h util/DateValue.h)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${PROJECT_SOURCE_DIR}/src/${header} DESTINATION ${MORVANE_INCLUDE_DIR}/${folder}
            COMPONENT Development)
endforeach()
if(TARGET morvane-qt)
    install(TARGETS morvane-qt EXPORT MorvaneTargets
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_COMPONENT Development)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/ui/qt/ DESTINATION ${MORVANE_INCLUDE_DIR}/qt
            COMPONENT Development FILES_MATCHING PATTERN "*.h" PATTERN "demo" EXCLUDE)
    set(MORVANE_WITH_QT ON)
endif()

install(EXPORT MorvaneTargets NAMESPACE Morvane:: DESTINATION ${MORVANE_CMAKE_DIR}
        COMPONENT Development)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/MorvaneConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/MorvaneConfig.cmake
                              INSTALL_DESTINATION ${MORVANE_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/MorvaneConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/MorvaneConfig.cmake
              ${PROJECT_BINARY_DIR}/MorvaneConfigVersion.cmake
        DESTINATION ${MORVANE_CMAKE_DIR} COMPONENT Development)

# The .pc files find the prefix from where they lie, so that an install under any --prefix
# works as it stands.
file(RELATIVE_PATH MORVANE_PC_TO_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" MORVANE_PC_TO_PREFIX "${MORVANE_PC_TO_PREFIX}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/morvane.pc.in ${PROJECT_BINARY_DIR}/morvane.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/morvane.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT Development)
if(MORVANE_WITH_QT)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/morvane-qt.pc.in ${PROJECT_BINARY_DIR}/morvane-qt.pc
                   @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/morvane-qt.pc
            DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT Development)
endif()
