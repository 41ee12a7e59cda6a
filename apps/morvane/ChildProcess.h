// A program started by the command line (the reference server, its account commands),
// stopped and reaped when the object goes.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace morvane::cli {

class ChildProcess {
public:
    // Starts program with args, its output appended to logFile (when given), its standard
    // input from stdinText. Throws when it cannot start.
    ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& args,
                 const std::filesystem::path& logFile = {}, const std::string& stdinText = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Waits for the end; the exit code, or 128 + signal.
    int Wait();
    bool Running();
    // SIGTERM, then SIGKILL after the grace time; returns the exit code.
    int Stop(int graceMilliseconds = 5000);

private:
    pid_t pid_ = -1;
    int status_ = -1;
};

// Runs a program to its end and gives its exit code.
int RunProgram(const std::filesystem::path& program, const std::vector<std::string>& args,
               const std::filesystem::path& logFile = {}, const std::string& stdinText = {});

// The folder of the running executable, where its sibling programs are.
std::filesystem::path ExecutableDir();

}  // namespace morvane::cli
