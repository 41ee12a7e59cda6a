// The stamps each customer's kind showed when the two sides last agreed, kept by the host so
// that a server which moved within a minute of that agreement is still seen to have moved.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace morvane::cli {

// The server's and the local side's stamps as a comparison saw them, folded; 0 when the
// comparison looked at no stamp.
struct SeenStamps {
    std::uint64_t server = 0;
    std::uint64_t local = 0;
    bool operator==(const SeenStamps&) const = default;
};

// FNV-1a over a text and a separator, continued from `fold` (0 starts afresh).
std::uint64_t FoldText(std::uint64_t fold, std::string_view text);

class SyncJournal {
public:
    // An empty path keeps nothing; a missing or unreadable file starts empty.
    explicit SyncJournal(std::filesystem::path path);

    std::optional<SeenStamps> Find(std::int32_t custId, const std::string& kind) const;
    void Agreed(std::int32_t custId, const std::string& kind, SeenStamps seen);
    void Forget(std::int32_t custId, const std::string& kind);
    // Written whole under another name, synced, then renamed over the old file. False when
    // it could not be written; the old journal then stays.
    bool Save();

    // A move that commits in more than one step (1 a download, 2 an upload), noted on disk
    // before it starts and cleared once it went through: a kill in between leaves the note,
    // and the next run takes the move up again. Only the notes are written at once; the
    // agreements of a run are written by Save, when the run has settled them.
    bool Begin(std::int32_t custId, const std::string& kind, int way);
    bool Finished(std::int32_t custId, const std::string& kind);
    // The way of the move left unfinished, 0 when none.
    int Unfinished(std::int32_t custId, const std::string& kind) const;
    bool AnyUnfinished(std::int32_t custId) const;

private:
    using Key = std::pair<std::int32_t, std::string>;
    bool Write(const std::map<Key, SeenStamps>& entries) const;

    std::filesystem::path path_;
    std::map<Key, SeenStamps> entries_;
    std::map<Key, SeenStamps> saved_;  // as the file holds them
    std::map<Key, int> unfinished_;
    bool changed_ = false;
};

// How the journal's word folds into a comparison's decision (0 agree, 1 server newer,
// 2 local newer, 3 both moved): a side whose stamp changed since the last agreement has
// moved, even when the comparison's margin hides it.
int WithJournal(int decision, const std::optional<SeenStamps>& agreed, SeenStamps seen);

// How a move left unfinished folds into a decision: it is taken up again, unless the other
// side moved since, which makes it the user's call.
int WithUnfinished(int decision, int way);

}  // namespace morvane::cli
