#include "server/net/ConnectionThreads.h"

#include <system_error>

namespace morvane::server {

ConnectionThreads::ConnectionThreads(std::size_t maxThreads, std::chrono::milliseconds idleExit)
    : maxThreads_(maxThreads == 0 ? 1 : maxThreads), idleExit_(idleExit) {}

ConnectionThreads::~ConnectionThreads() { shutdown(); }

void ConnectionThreads::enqueue(std::function<void()> fn) {
    std::unique_lock lock(mutex_);
    JoinRetired(lock);
    jobs_.push_back(std::move(fn));
    if (idle_ >= jobs_.size() || threads_.size() - retired_.size() >= maxThreads_) {
        wake_.notify_one();
        return;
    }
    threads_.emplace_front();
    const auto self = threads_.begin();
    try {
        *self = std::thread([this, self] { Work(self); });
    } catch (const std::system_error&) {
        // Out of threads: the busy ones take the job when they can; with none, serve it here.
        threads_.erase(self);
        if (!threads_.empty()) return;
        auto job = std::move(jobs_.back());
        jobs_.pop_back();
        lock.unlock();
        job();
    }
}

void ConnectionThreads::Work(std::list<std::thread>::iterator self) {
    std::unique_lock lock(mutex_);
    for (;;) {
        ++idle_;
        const bool woken =
            wake_.wait_for(lock, idleExit_, [this] { return stopping_ || !jobs_.empty(); });
        --idle_;
        if (jobs_.empty()) {
            if (stopping_ || !woken) break;
            continue;
        }
        auto job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        job();
        job = nullptr;  // the connection's resources go before the next one is taken
        lock.lock();
    }
    if (!stopping_) retired_.push_back(self);
}

void ConnectionThreads::JoinRetired(std::unique_lock<std::mutex>& lock) {
    auto retired = std::move(retired_);
    retired_.clear();
    std::list<std::thread> ending;
    for (auto it : retired) ending.splice(ending.end(), threads_, it);
    lock.unlock();
    for (auto& t : ending) t.join();
    lock.lock();
}

void ConnectionThreads::shutdown() {
    std::list<std::thread> all;
    {
        std::unique_lock lock(mutex_);
        // Connections accepted but not yet served still get their turn.
        stopping_ = true;
        wake_.notify_all();
        all.swap(threads_);
        retired_.clear();
    }
    for (auto& t : all)
        if (t.joinable()) t.join();
}

std::size_t ConnectionThreads::Threads() const {
    std::lock_guard lock(mutex_);
    return threads_.size() - retired_.size();
}

}  // namespace morvane::server
