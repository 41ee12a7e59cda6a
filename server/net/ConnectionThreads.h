// Runs each accepted connection on a thread of its own, so that idle or slow clients never
// make a normal request wait for a worker; the threads are kept for reuse and capped.
#pragma once

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <list>
#include <mutex>
#include <thread>
#include <vector>

namespace morvane::server {

class ConnectionThreads : public httplib::TaskQueue {
public:
    // Past maxThreads busy connections a new one waits for a free thread; a thread idle
    // for idleExit ends.
    explicit ConnectionThreads(std::size_t maxThreads,
                               std::chrono::milliseconds idleExit = std::chrono::seconds(30));
    ~ConnectionThreads() override;
    ConnectionThreads(const ConnectionThreads&) = delete;
    ConnectionThreads& operator=(const ConnectionThreads&) = delete;

    void enqueue(std::function<void()> fn) override;
    void shutdown() override;

    std::size_t Threads() const;

private:
    void Work(std::list<std::thread>::iterator self);
    void JoinRetired(std::unique_lock<std::mutex>& lock);

    const std::size_t maxThreads_;
    const std::chrono::milliseconds idleExit_;
    mutable std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<std::function<void()>> jobs_;
    std::list<std::thread> threads_;
    std::vector<std::list<std::thread>::iterator> retired_;
    std::size_t idle_ = 0;
    bool stopping_ = false;
};

}  // namespace morvane::server
