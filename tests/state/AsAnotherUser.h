#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>

namespace kestrin {

/// Runs the action in a child process that file permissions apply to, since they do not apply to root, and gives
/// back the text it returned.
inline std::string asOrdinaryUser(const std::function<std::string()>& action) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
    const pid_t child = ::fork();
    if (child < 0) throw std::runtime_error("no child process");
    if (child == 0) {
        constexpr unsigned nobody = 65'534;
        std::string text = "could not drop to another user";
        if (::geteuid() != 0 || (::setgid(nobody) == 0 && ::setuid(nobody) == 0)) {
            try {
                text = action();
            } catch (const std::exception& error) {
                text = std::string("unexpected: ") + error.what();
            }
        }
        const auto written = ::write(ends[1], text.data(), text.size());
        ::_exit(written == static_cast<ssize_t>(text.size()) ? 0 : 1);
    }
    ::close(ends[1]);
    std::string text;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = ::read(ends[0], buffer.data(), buffer.size())) > 0;)
        text.append(buffer.data(), static_cast<std::size_t>(count));
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    return text;
}

} // namespace kestrin
