#include "ChildProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <thread>

#include "platform/ScopedFd.h"

extern char** environ;

namespace morvane::cli {
namespace {

class SpawnActions {
public:
    SpawnActions() { posix_spawn_file_actions_init(&actions_); }
    ~SpawnActions() { posix_spawn_file_actions_destroy(&actions_); }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;
    posix_spawn_file_actions_t* Get() { return &actions_; }

private:
    posix_spawn_file_actions_t actions_;
};

class Pipe {
public:
    Pipe() {
        int fds[2];
        if (::pipe2(fds, O_CLOEXEC) != 0) throw std::runtime_error("pipe failed");
        read_ = platform::ScopedFd(fds[0]);
        write_ = platform::ScopedFd(fds[1]);
    }
    int Read() const { return read_.Get(); }
    int Write() const { return write_.Get(); }
    void CloseRead() { read_.Close(); }
    void CloseWrite() { write_.Close(); }

private:
    platform::ScopedFd read_, write_;
};

int ExitCode(int status) {
    if (WIFEXITED(status)) return WEXITSTATUS(status);
    if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
    return -1;
}

}  // namespace

ChildProcess::ChildProcess(const std::filesystem::path& program,
                           const std::vector<std::string>& args,
                           const std::filesystem::path& logFile, const std::string& stdinText) {
    std::vector<std::string> argvStore{program.string()};
    argvStore.insert(argvStore.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (auto& a : argvStore) argv.push_back(a.data());
    argv.push_back(nullptr);

    SpawnActions actions;
    Pipe input;
    posix_spawn_file_actions_adddup2(actions.Get(), input.Read(), STDIN_FILENO);
    if (!logFile.empty()) {
        posix_spawn_file_actions_addopen(actions.Get(), STDOUT_FILENO, logFile.c_str(),
                                         O_WRONLY | O_CREAT | O_APPEND, 0600);
        posix_spawn_file_actions_adddup2(actions.Get(), STDOUT_FILENO, STDERR_FILENO);
    }
    if (posix_spawn(&pid_, program.c_str(), actions.Get(), nullptr, argv.data(), environ) != 0) {
        pid_ = -1;
        throw std::runtime_error("cannot start " + program.string());
    }
    input.CloseRead();
    // A small text fits the pipe's buffer; the child reads it when it wants.
    if (!stdinText.empty()) {
        const ssize_t n = ::write(input.Write(), stdinText.data(), stdinText.size());
        (void)n;
    }
}

ChildProcess::~ChildProcess() { Stop(); }

bool ChildProcess::Running() {
    if (pid_ < 0) return false;
    int status = 0;
    const pid_t r = ::waitpid(pid_, &status, WNOHANG);
    if (r == 0) return true;
    status_ = r == pid_ ? ExitCode(status) : -1;
    pid_ = -1;
    return false;
}

int ChildProcess::Wait() {
    if (pid_ < 0) return status_;
    int status = 0;
    while (::waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
    }
    status_ = ExitCode(status);
    pid_ = -1;
    return status_;
}

int ChildProcess::Stop(int graceMilliseconds) {
    if (!Running()) return status_;
    ::kill(pid_, SIGTERM);
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(graceMilliseconds);
    while (Running()) {
        if (std::chrono::steady_clock::now() > deadline) {
            ::kill(pid_, SIGKILL);
            return Wait();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return status_;
}

int RunProgram(const std::filesystem::path& program, const std::vector<std::string>& args,
               const std::filesystem::path& logFile, const std::string& stdinText) {
    ChildProcess child(program, args, logFile, stdinText);
    return child.Wait();
}

std::filesystem::path ExecutableDir() {
    std::error_code ec;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", ec);
    return ec ? std::filesystem::current_path() : self.parent_path();
}

}  // namespace morvane::cli
