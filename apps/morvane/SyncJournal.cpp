#include "SyncJournal.h"

#include <fstream>
#include <sstream>
#include <utility>

#include "platform/AtomicFile.h"
#include "state/ProcessState.h"

namespace morvane::cli {
namespace {

constexpr std::string_view kUnfinished = "unfinished";

}  // namespace

SyncJournal::SyncJournal(std::filesystem::path path) : path_(std::move(path)) {
    if (path_.empty()) return;
    std::ifstream in(path_);
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::int32_t custId = 0;
        std::string kind;
        SeenStamps seen;
        // Lines: customer, tab, kind, tab, server fold, tab, local fold, or customer, tab,
        // kind, tab, the word of an unfinished move, tab, its way; a torn line is skipped.
        if (!(fields >> custId) || fields.get() != '\t' || !std::getline(fields, kind, '\t'))
            continue;
        if (fields.peek() == kUnfinished.front()) {
            std::string word;
            int way = 0;
            if (std::getline(fields, word, '\t') && word == kUnfinished && (fields >> way) &&
                (way == 1 || way == 2))
                unfinished_[{custId, kind}] = way;
            continue;
        }
        if (!(fields >> std::hex >> seen.server >> seen.local)) continue;
        entries_[{custId, kind}] = seen;
    }
    saved_ = entries_;
}

std::optional<SeenStamps> SyncJournal::Find(std::int32_t custId, const std::string& kind) const {
    const auto it = entries_.find({custId, kind});
    if (it == entries_.end()) return std::nullopt;
    return it->second;
}

void SyncJournal::Agreed(std::int32_t custId, const std::string& kind, SeenStamps seen) {
    if (seen.server == 0 && seen.local == 0) return Forget(custId, kind);
    SeenStamps& entry = entries_[{custId, kind}];
    changed_ = changed_ || !(entry == seen);
    entry = seen;
}

void SyncJournal::Forget(std::int32_t custId, const std::string& kind) {
    changed_ = entries_.erase({custId, kind}) > 0 || changed_;
}

bool SyncJournal::Save() {
    if (path_.empty() || !changed_) return true;
    if (!Write(entries_)) return false;
    saved_ = entries_;
    changed_ = false;
    return true;
}

bool SyncJournal::Begin(std::int32_t custId, const std::string& kind, int way) {
    unfinished_[{custId, kind}] = way;
    return path_.empty() || Write(saved_);
}

bool SyncJournal::Finished(std::int32_t custId, const std::string& kind) {
    if (unfinished_.erase({custId, kind}) == 0) return true;
    return path_.empty() || Write(saved_);
}

int SyncJournal::Unfinished(std::int32_t custId, const std::string& kind) const {
    const auto it = unfinished_.find({custId, kind});
    return it == unfinished_.end() ? 0 : it->second;
}

bool SyncJournal::AnyUnfinished(std::int32_t custId) const {
    const auto it = unfinished_.lower_bound({custId, std::string()});
    return it != unfinished_.end() && it->first.first == custId;
}

bool SyncJournal::Write(const std::map<Key, SeenStamps>& entries) const {
    std::ostringstream text;
    for (const auto& [key, seen] : entries)
        text << key.first << '\t' << key.second << '\t' << std::hex << seen.server << '\t'
             << seen.local << std::dec << '\n';
    for (const auto& [key, way] : unfinished_)
        text << key.first << '\t' << key.second << '\t' << kUnfinished << '\t' << way << '\n';
    std::error_code ec;
    std::filesystem::create_directories(path_.parent_path(), ec);
    return platform::WriteFileAtomically(path_, text.str(), 0600, &State().Env()) == 0;
}

int WithUnfinished(int decision, int way) {
    if (way == 0) return decision;
    return decision == 0 || decision == way ? way : 3;
}

std::uint64_t FoldText(std::uint64_t fold, std::string_view text) {
    if (fold == 0) fold = 14695981039346656037ull;
    for (const char ch : text) {
        fold ^= static_cast<unsigned char>(ch);
        fold *= 1099511628211ull;
    }
    fold ^= '\n';
    return fold * 1099511628211ull;
}

int WithJournal(int decision, const std::optional<SeenStamps>& agreed, SeenStamps seen) {
    if (!agreed || (seen.server == 0 && seen.local == 0)) return decision;
    const bool serverMoved = agreed->server != seen.server;
    const bool localMoved = agreed->local != seen.local;
    switch (decision) {
        case 0:
            if (serverMoved && localMoved) return 3;
            if (serverMoved) return 1;
            return localMoved ? 2 : 0;
        case 1:
            return localMoved ? 3 : 1;
        case 2:
            return serverMoved ? 3 : 2;
        default:
            return decision;
    }
}

}  // namespace morvane::cli
