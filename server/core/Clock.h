// The server's source of "now", so that expiry can be tested without waiting.
#pragma once

#include <atomic>
#include <chrono>

namespace morvane::server {

class Clock {
public:
    using time_point = std::chrono::system_clock::time_point;
    virtual ~Clock() = default;
    virtual time_point Now() const = 0;
};

class SystemClock final : public Clock {
public:
    time_point Now() const override { return std::chrono::system_clock::now(); }
};

// The system's clock set off by a fixed amount, to try clients against a server whose
// clock is wrong.
class OffsetClock final : public Clock {
public:
    explicit OffsetClock(std::chrono::seconds offset) : offset_(offset) {}
    time_point Now() const override { return std::chrono::system_clock::now() + offset_; }

private:
    std::chrono::seconds offset_;
};

// A clock that moves only when told to.
class ManualClock final : public Clock {
public:
    explicit ManualClock(time_point start = std::chrono::system_clock::now())
        : ticks_(start.time_since_epoch().count()) {}
    time_point Now() const override { return time_point(time_point::duration(ticks_.load())); }
    void Advance(std::chrono::system_clock::duration d) { ticks_ += d.count(); }

private:
    std::atomic<time_point::duration::rep> ticks_;
};

}  // namespace morvane::server
