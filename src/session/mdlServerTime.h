// How far the clocks of the backup server and of the data folder's host lie from the local
// clock: measured here, kept in the process state, applied by the comparison rule.
#pragma once

#include <string>
#include <string_view>

namespace morvane {

// Round trips to gettime.php: one exchange of at most a second decides at once; exchanges
// of up to five seconds are averaged (three at most); ten tries at most. The result, in
// days, is local minus server, less one second (so a failed measurement gives -1 second).
double MeasureServerTimeOffset();
// Measures and keeps the server offset.
void UpdateServerTimeOffset();
// The text of the root's one datetime child; "" otherwise. A reply that does not parse
// shows a box; an empty reply (no answer) is a silent failure.
std::string GetXmlDateTime(std::string_view reply);
// Local minus the data folder host's clock, in days: 0 for a missing file or a folder on a
// local disk, which is never probed.
double MeasureDataFolderTimeOffset(std::string_view path);
// Measures the data folder offset the first time in the process, whatever it gives.
void EnsureDataFolderTimeOffset(std::string_view localDb);

}  // namespace morvane
