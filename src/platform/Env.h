// The outside world as the component meets it (the server's exchange, the files it writes,
// the databases it opens, the clock, the screen) behind one interface, so that a test can
// put an environment in its place that fails where it is told to.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <filesystem>
#include <memory>

#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/Http.h"

struct sqlite3;

namespace morvane::platform {

class Env {
public:
    virtual ~Env() = default;

    // One POST to the server and its reply.
    virtual HttpReply Exchange(const HttpRequest& request, const HttpOptions& options) = 0;

    // The writes of a file being replaced, as their system calls: -1 and errno on failure.
    virtual ssize_t Write(int fd, const char* bytes, std::size_t size) = 0;
    virtual int Sync(int fd) = 0;
    virtual int Rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;

    // Opens a database connection with SQLite's open flags; an SQLite result code. The
    // connection is set even on failure, for its message, and is the caller's to close.
    virtual int OpenDatabase(const std::string& path, int flags, sqlite3** db) = 0;

    virtual const platform::Clock& Clock() const = 0;
    virtual forms::Toolkit& Toolkit() = 0;
};

// The real world, with the toolkit and the clock the host chose.
class SystemEnv final : public Env {
public:
    SystemEnv();
    ~SystemEnv() override;

    HttpReply Exchange(const HttpRequest& request, const HttpOptions& options) override;
    ssize_t Write(int fd, const char* bytes, std::size_t size) override;
    int Sync(int fd) override;
    int Rename(const std::filesystem::path& from, const std::filesystem::path& to) override;
    int OpenDatabase(const std::string& path, int flags, sqlite3** db) override;
    const platform::Clock& Clock() const override { return *clock_; }
    forms::Toolkit& Toolkit() override { return *toolkit_; }

    // Null puts the default back: the system clock, or the toolkit that shows nothing.
    void SetClock(std::shared_ptr<platform::Clock> clock);
    void SetToolkit(std::shared_ptr<forms::Toolkit> toolkit);

private:
    std::shared_ptr<platform::Clock> clock_;
    std::shared_ptr<forms::Toolkit> toolkit_;
    // Connections and TLS sessions kept between the exchanges.
    HttpConnectionPool connections_;
};

// Hands everything to another environment: a test overrides what it breaks.
class EnvWrapper : public Env {
public:
    explicit EnvWrapper(Env& target) : target_(target) {}

    HttpReply Exchange(const HttpRequest& request, const HttpOptions& options) override {
        return target_.Exchange(request, options);
    }
    ssize_t Write(int fd, const char* bytes, std::size_t size) override {
        return target_.Write(fd, bytes, size);
    }
    int Sync(int fd) override { return target_.Sync(fd); }
    int Rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        return target_.Rename(from, to);
    }
    int OpenDatabase(const std::string& path, int flags, sqlite3** db) override {
        return target_.OpenDatabase(path, flags, db);
    }
    const platform::Clock& Clock() const override { return target_.Clock(); }
    forms::Toolkit& Toolkit() override { return target_.Toolkit(); }

protected:
    Env& Target() { return target_; }

private:
    Env& target_;
};

}  // namespace morvane::platform
