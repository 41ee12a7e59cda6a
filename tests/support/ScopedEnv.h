// An environment variable set for the length of a test and put back as it was after it.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace morvane::test {

class ScopedEnv {
public:
    ScopedEnv(std::string name, const std::string& value) : name_(std::move(name)) {
        if (const char* old = std::getenv(name_.c_str())) old_ = old;
        ::setenv(name_.c_str(), value.c_str(), 1);
    }
    ~ScopedEnv() {
        if (old_)
            ::setenv(name_.c_str(), old_->c_str(), 1);
        else
            ::unsetenv(name_.c_str());
    }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    std::string name_;
    std::optional<std::string> old_;
};

}  // namespace morvane::test
