// Login sessions and their rotating tokens, kept in memory.
//
// Each judged reply hands out a new token. The token before it stays valid too, so that a reply
// lost on the wire does not log the user out; anything older, or a session idle for longer than
// the configured time, is refused.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "server/core/Clock.h"

namespace morvane::server {

struct SessionUser {
    std::int64_t accountId = 0;
    std::string userId;
};

class SessionStore {
public:
    SessionStore(const Clock& clock, std::chrono::seconds idle);

    // True when the user has a session that has not expired.
    bool HasLiveSession(const std::string& userId, std::int64_t accountId);
    // Opens a session and returns its first token.
    std::string Open(const SessionUser& user);
    // Checks `token` for `userId`; on success rotates and returns the user and the new token.
    std::optional<std::pair<SessionUser, std::string>> Use(const std::string& userId,
                                                           const std::string& token);
    // Checks `token` without rotating it (for replies that carry no token).
    std::optional<SessionUser> Peek(const std::string& userId, const std::string& token);

private:
    struct Session {
        SessionUser user;
        std::string current;
        std::string previous;
        Clock::time_point lastUse;
    };
    Session* Find(const std::string& userId, const std::string& token);
    void DropExpired();

    const Clock& clock_;
    std::chrono::seconds idle_;
    std::mutex mutex_;
    std::uint64_t nextId_ = 1;
    std::map<std::uint64_t, Session> sessions_;
    std::map<std::string, std::uint64_t> byToken_;
};

}  // namespace morvane::server
