// Server-side locks on a customer or a master, held by one user at a time until they lapse.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <tuple>

#include "server/core/Clock.h"

namespace morvane::server {

enum class LockKind { Customer, Master };

class LockTable {
public:
    LockTable(const Clock& clock, std::chrono::seconds expiry);

    // Grants or renews the lock for `user`; false when another user holds it.
    bool Lock(std::int64_t account, LockKind kind, std::int64_t id, const std::string& user);
    // Releases the lock if `user` holds it; anything else is left alone.
    void Unlock(std::int64_t account, LockKind kind, std::int64_t id, const std::string& user);
    bool HeldByOther(std::int64_t account, LockKind kind, std::int64_t id, const std::string& user);
    // True when any master lock of the account is held by another user.
    bool AnyMasterHeldByOther(std::int64_t account, const std::string& user);
    void DropCustomer(std::int64_t account, std::int64_t id);

private:
    using Key = std::tuple<std::int64_t, LockKind, std::int64_t>;
    struct Holder {
        std::string user;
        Clock::time_point until;
    };
    void DropExpired();

    const Clock& clock_;
    std::chrono::seconds expiry_;
    std::mutex mutex_;
    std::map<Key, Holder> locks_;
};

}  // namespace morvane::server
