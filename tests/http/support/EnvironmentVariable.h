#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace kestrin::test {

/// Sets a variable, or takes it away, for as long as it lives.
class EnvironmentVariable {
public:
    EnvironmentVariable(const std::string& name, const std::optional<std::string>& value) : name_(name) {
        if (const char* before = std::getenv(name.c_str())) before_ = before;
        assign(value);
    }
    ~EnvironmentVariable() { assign(before_); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    void assign(const std::optional<std::string>& value) {
        if (value) {
            ::setenv(name_.c_str(), value->c_str(), 1);
        } else {
            ::unsetenv(name_.c_str());
        }
    }

    std::string name_;
    std::optional<std::string> before_;
};

} // namespace kestrin::test
