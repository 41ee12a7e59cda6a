#include "server/core/Sessions.h"

#include "server/crypto/Secrets.h"

namespace morvane::server {

SessionStore::SessionStore(const Clock& clock, std::chrono::seconds idle)
    : clock_(clock), idle_(idle) {}

void SessionStore::DropExpired() {
    const auto now = clock_.Now();
    for (auto it = sessions_.begin(); it != sessions_.end();) {
        if (now - it->second.lastUse > idle_) {
            byToken_.erase(it->second.current);
            if (!it->second.previous.empty()) byToken_.erase(it->second.previous);
            it = sessions_.erase(it);
        } else {
            ++it;
        }
    }
}

bool SessionStore::HasLiveSession(const std::string& userId, std::int64_t accountId) {
    std::lock_guard lock(mutex_);
    DropExpired();
    for (const auto& [id, s] : sessions_)
        if (s.user.userId == userId && s.user.accountId == accountId) return true;
    return false;
}

std::string SessionStore::Open(const SessionUser& user) {
    std::lock_guard lock(mutex_);
    DropExpired();
    const auto id = nextId_++;
    Session s{user, RandomHex(24), {}, clock_.Now()};
    byToken_[s.current] = id;
    auto token = s.current;
    sessions_.emplace(id, std::move(s));
    return token;
}

SessionStore::Session* SessionStore::Find(const std::string& userId, const std::string& token) {
    DropExpired();
    if (token.empty()) return nullptr;
    auto it = byToken_.find(token);
    if (it == byToken_.end()) return nullptr;
    auto& s = sessions_.at(it->second);
    if (s.user.userId != userId) return nullptr;
    return &s;
}

std::optional<std::pair<SessionUser, std::string>> SessionStore::Use(const std::string& userId,
                                                                     const std::string& token) {
    std::lock_guard lock(mutex_);
    Session* s = Find(userId, token);
    if (!s) return std::nullopt;
    const auto id = byToken_.at(token);
    if (!s->previous.empty()) byToken_.erase(s->previous);
    s->previous = s->current;
    s->current = RandomHex(24);
    byToken_[s->current] = id;
    s->lastUse = clock_.Now();
    return std::pair{s->user, s->current};
}

std::optional<SessionUser> SessionStore::Peek(const std::string& userId, const std::string& token) {
    std::lock_guard lock(mutex_);
    Session* s = Find(userId, token);
    if (!s) return std::nullopt;
    s->lastUse = clock_.Now();
    return s->user;
}

}  // namespace morvane::server
