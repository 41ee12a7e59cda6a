#include "FuzzProcess.h"

#include <stdlib.h>

#include <filesystem>
#include <string>

#include "state/ProcessState.h"
#include "transport/TransportRun.h"

namespace morvane::fuzz {

void QuietProcess() {
    static const bool done = [] {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "morvane-fuzz-XXXXXX").string();
        if (mkdtemp(pattern.data())) State().SetSettingsRoot(pattern);
        // A reply that asks for a new login gets none: no server is named.
        BeginTransportRun(std::chrono::seconds(0));
        return true;
    }();
    (void)done;
}

}  // namespace morvane::fuzz
