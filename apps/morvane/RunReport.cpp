#include "RunReport.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "SyncRun.h"
#include "platform/ScopedFd.h"

namespace morvane::cli {

using nlohmann::json;

const std::vector<std::string> kOutcomes{"agreed",         "downloaded",   "uploaded",
                                         "would download", "would upload", "conflict",
                                         "kept on server", "failed",       "not supported"};

bool Wrote(const RunEvent& e) { return e.outcome == "downloaded" || e.outcome == "uploaded"; }

namespace {

json EventJson(const RunEvent& e) {
    json j{{"kind", e.kind}, {"outcome", e.outcome}};
    if (!e.file.empty()) j["file"] = e.file;
    if (!e.detail.empty()) j["detail"] = e.detail;
    if (!e.tables.empty()) j["tables"] = e.tables;
    if (e.rows >= 0) j["rows"] = e.rows;
    if (!e.time.empty()) j["time"] = e.time;
    return j;
}

json Listed(const std::vector<Unsupported>& list) {
    json out = json::array();
    for (const Unsupported& u : list) out.push_back({{"what", u.what}, {"detail", u.detail}});
    return out;
}

}  // namespace

void PrintJson(const SyncSummary& s, int exitCode, std::ostream& out) {
    std::map<std::int32_t, json> customers;
    json office = json::array();
    for (const RunEvent& e : s.events) {
        if (e.customer == 0) {
            office.push_back(EventJson(e));
            continue;
        }
        json& c = customers[e.customer];
        if (c.is_null()) c = {{"id", e.customer}, {"kinds", json::array()}};
        c["kinds"].push_back(EventJson(e));
    }
    json list = json::array();
    for (auto& [id, c] : customers) list.push_back(std::move(c));
    const json doc{
        {"format", "morvane-sync-report"},
        {"version", 1},
        {"exitCode", exitCode},
        {"loggedIn", s.loggedIn},
        {"server",
         {{"answered", s.serverAnswered}, {"unreachable", s.unreachable}, {"stopped", s.stopped}}},
        {"counts",
         {{"customers", s.customers},
          {"unchanged", s.unchanged},
          {"tablesCompared", s.tablesCompared},
          {"tablesDiffering", s.tablesDiffering},
          {"downloads", s.downloads},
          {"uploads", s.uploads},
          {"conflicts", s.conflicts},
          {"failures", s.failures},
          {"planned", s.planned},
          {"keptOnServer", s.keptOnServer}}},
        {"customers", std::move(list)},
        {"office", std::move(office)},
        {"notSupported", Listed(s.unsupported)},
        {"notBackedUp", Listed(s.outside)},
    };
    out << doc.dump(2) << '\n';
}

RunLog::RunLog(std::filesystem::path file, std::uintmax_t maxBytes, int keep)
    : file_(std::move(file)), maxBytes_(maxBytes), keep_(keep) {}

std::filesystem::path RunLog::DefaultPath() {
    const char* state = std::getenv("XDG_STATE_HOME");
    std::filesystem::path root;
    if (state && *state == '/') {
        root = state;
    } else {
        const char* home = std::getenv("HOME");
        root = std::filesystem::path(home && *home ? home : ".") / ".local" / "state";
    }
    return root / "morvane" / "sync-log.jsonl";
}

void RunLog::Rotate() {
    std::error_code ec;
    const auto size = std::filesystem::file_size(file_, ec);
    if (ec || size < maxBytes_) return;
    const auto old = [&](int n) {
        return std::filesystem::path(file_.string() + "." + std::to_string(n));
    };
    std::filesystem::remove(old(keep_), ec);
    for (int n = keep_ - 1; n >= 1; --n) std::filesystem::rename(old(n), old(n + 1), ec);
    std::filesystem::rename(file_, old(1), ec);
}

bool RunLog::Append(const RunEvent& e, const std::string& database) {
    if (!checked_) {
        // Once a run: a log never splits in the middle of one.
        std::error_code ec;
        std::filesystem::create_directories(file_.parent_path(), ec);
        Rotate();
        checked_ = true;
    }
    json line = EventJson(e);
    line["customer"] = e.customer;
    line["direction"] = e.outcome == "downloaded" ? "down" : "up";
    line["database"] = database;
    const std::string text = line.dump() + '\n';
    // One write with O_APPEND: lines of two runs at once never interleave inside a line.
    const platform::ScopedFd fd(
        ::open(file_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
    if (!fd.Valid()) return false;
    return ::write(fd.Get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

}  // namespace morvane::cli
