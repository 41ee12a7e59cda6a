// The clock members: measuring the server's offset and reading both offsets.
#include "component/DispatchTable.h"
#include "component/ctrlMorvane.h"
#include "session/mdlServerTime.h"
#include "state/ProcessState.h"

namespace morvane {

void ctrlMorvane::UpdateServerTimeOffset() { morvane::UpdateServerTimeOffset(); }
std::string ctrlMorvane::InetServerTimeOffset() const {
    return DoubleText(State().inetServerTimeOffset);
}
std::string ctrlMorvane::InetDataFolderTimeOffset() const {
    return DoubleText(State().inetDataFolderTimeOffset);
}

void RegisterServerTimeMembers(DispatchTable& t) {
    t.Method("UpdateServerTimeOffset", &ctrlMorvane::UpdateServerTimeOffset);
    t.Property("InetServerTimeOffset", &ctrlMorvane::InetServerTimeOffset);
    t.Property("InetDataFolderTimeOffset", &ctrlMorvane::InetDataFolderTimeOffset);
}

}  // namespace morvane
