// What a run did, customer by customer and kind by kind: the record behind `sync --json` and
// the run log that lets an office answer "what changed last Tuesday".
#pragma once

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace morvane::cli {

struct SyncSummary;

// One thing a run found or did to one kind of a customer's data (customer 0: office-wide).
struct RunEvent {
    std::int32_t customer = 0;
    std::string kind;
    std::string file;                 // a data file's name as its record gives it, else empty
    std::string outcome;              // see kOutcomes
    std::string detail;               // why it failed, or what was asked
    std::vector<std::string> tables;  // the tables the kind keeps locally
    int rows = -1;                    // rows of them the customer holds after a move; -1 unknown
    std::string time;                 // local, "yyyy-mm-ddThh:mm:ss"
};

// "agreed", "downloaded", "uploaded", "would download", "would upload", "conflict",
// "kept on server", "failed", "not supported".
extern const std::vector<std::string> kOutcomes;

// True for the outcomes that wrote something, here or on the server.
bool Wrote(const RunEvent& event);

// The run as one JSON document; `exitCode` is what the command ends with.
void PrintJson(const SyncSummary& summary, int exitCode, std::ostream& out);

// Appends one line per write to the log file, starting a new file past `maxBytes` and
// keeping `keep` old ones beside it (name.1 the newest). False when it could not be written.
class RunLog {
public:
    RunLog(std::filesystem::path file, std::uintmax_t maxBytes = 1u << 20, int keep = 5);
    bool Append(const RunEvent& event, const std::string& database);

    // $XDG_STATE_HOME/morvane/sync-log.jsonl, or under ~/.local/state.
    static std::filesystem::path DefaultPath();

private:
    void Rotate();

    std::filesystem::path file_;
    std::uintmax_t maxBytes_;
    int keep_;
    bool checked_ = false;
};

}  // namespace morvane::cli
