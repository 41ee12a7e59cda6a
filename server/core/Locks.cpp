#include "server/core/Locks.h"

namespace morvane::server {

LockTable::LockTable(const Clock& clock, std::chrono::seconds expiry)
    : clock_(clock), expiry_(expiry) {}

void LockTable::DropExpired() {
    const auto now = clock_.Now();
    std::erase_if(locks_, [&](const auto& entry) { return entry.second.until <= now; });
}

bool LockTable::Lock(std::int64_t account, LockKind kind, std::int64_t id,
                     const std::string& user) {
    std::lock_guard guard(mutex_);
    DropExpired();
    auto [it, inserted] = locks_.try_emplace(Key{account, kind, id}, Holder{user, {}});
    if (!inserted && it->second.user != user) return false;
    it->second.until = clock_.Now() + expiry_;
    return true;
}

void LockTable::Unlock(std::int64_t account, LockKind kind, std::int64_t id,
                       const std::string& user) {
    std::lock_guard guard(mutex_);
    DropExpired();
    auto it = locks_.find(Key{account, kind, id});
    if (it != locks_.end() && it->second.user == user) locks_.erase(it);
}

bool LockTable::HeldByOther(std::int64_t account, LockKind kind, std::int64_t id,
                            const std::string& user) {
    std::lock_guard guard(mutex_);
    DropExpired();
    auto it = locks_.find(Key{account, kind, id});
    return it != locks_.end() && it->second.user != user;
}

bool LockTable::AnyMasterHeldByOther(std::int64_t account, const std::string& user) {
    std::lock_guard guard(mutex_);
    DropExpired();
    for (const auto& [key, holder] : locks_)
        if (std::get<0>(key) == account && std::get<1>(key) == LockKind::Master &&
            holder.user != user)
            return true;
    return false;
}

void LockTable::DropCustomer(std::int64_t account, std::int64_t id) {
    std::lock_guard guard(mutex_);
    locks_.erase(Key{account, LockKind::Customer, id});
}

}  // namespace morvane::server
