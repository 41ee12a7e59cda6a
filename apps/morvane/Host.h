// What every command of the command-line host sets up first: where the settings live,
// which CA to trust, and the toolkit that shows dialogs and boxes on the terminal.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>

namespace morvane::cli {

struct HostOptions {
    std::filesystem::path configDir;  // empty: the user's own configuration folder
    std::string caFile;               // empty: MORVANE_CA_FILE, else the "CAFile" setting
    // Seconds with no byte moving before a request is given up; 0: the "StallTimeout"
    // setting, else 60.
    long stallTimeout = 0;
    // Seconds after which the run sends no more requests; 0: no limit ("TimeLimit" setting).
    long timeLimit = 0;
};

void PrepareHost(const HostOptions& options);

// Shows the component's dialogs and message boxes (with their titles) on the terminal,
// written to out; a person answers only when stdin and out are terminals. Without the
// terminal toolkit in the build, dialogs stay headless.
void UseTerminal(std::ostream& out, bool outIsTerminal);

// Reads a password: a prompt without echo on a terminal, else the first line of stdin.
std::string ReadPassword(const std::string& prompt);

}  // namespace morvane::cli
