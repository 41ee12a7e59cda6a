#include "platform/Env.h"

#include <sqlite3.h>
#include <unistd.h>

#include <cstdio>

namespace morvane::platform {

SystemEnv::SystemEnv() {
    SetClock(nullptr);
    SetToolkit(nullptr);
}

SystemEnv::~SystemEnv() = default;

HttpReply SystemEnv::Exchange(const HttpRequest& request, const HttpOptions& options) {
    return HttpClient(options, &connections_).Send(request);
}

ssize_t SystemEnv::Write(int fd, const char* bytes, std::size_t size) {
    return ::write(fd, bytes, size);
}

int SystemEnv::Sync(int fd) { return ::fsync(fd); }

int SystemEnv::Rename(const std::filesystem::path& from, const std::filesystem::path& to) {
    return std::rename(from.c_str(), to.c_str());
}

int SystemEnv::OpenDatabase(const std::string& path, int flags, sqlite3** db) {
    return sqlite3_open_v2(path.c_str(), db, flags, nullptr);
}

void SystemEnv::SetClock(std::shared_ptr<platform::Clock> clock) {
    clock_ = clock ? std::move(clock) : std::make_shared<SystemClock>();
}

void SystemEnv::SetToolkit(std::shared_ptr<forms::Toolkit> toolkit) {
    toolkit_ = toolkit ? std::move(toolkit) : std::make_shared<forms::HeadlessToolkit>();
}

}  // namespace morvane::platform
