# Embeds the SQL of this folder in the library as string constants (generated/SchemaSql.h),
# so that the databases can be created without any file beside the program.
file(GLOB MORVANE_SCHEMA_FILES CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*.sql)
set(_schema_header "// Generated from schema/*.sql; do not edit.\n#pragma once\n\nnamespace morvane::schema {\n")
foreach(_sql_file ${MORVANE_SCHEMA_FILES})
    get_filename_component(_sql_name ${_sql_file} NAME_WE)
    file(READ ${_sql_file} _sql_text)
    string(APPEND _schema_header
           "inline constexpr const char* k_${_sql_name} = R\"morvane_sql(${_sql_text})morvane_sql\";\n")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${_sql_file})
endforeach()
string(APPEND _schema_header "}  // namespace morvane::schema\n")
file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/generated/SchemaSql.h CONTENT "${_schema_header}"
     @ONLY)
