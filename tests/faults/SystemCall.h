#pragma once

#include <sys/types.h>

#include <array>
#include <cstdint>
#include <string>

namespace kestrin {

/// One system call of a traced process, as it is about to be made or has just been made.
struct SystemCall {
    pid_t process = 0;
    std::uint64_t number = 0;
    std::array<std::uint64_t, 6> arguments{};
    bool inOperation = true; ///< false between the end of the operation and that of the process

    /// The name, or the number as text for calls that a state directory has nothing to do with.
    [[nodiscard]] std::string name() const;
    /// Whether it touches files: paths, descriptors and what is in them.
    [[nodiscard]] bool isAboutFiles() const;
    [[nodiscard]] int argument(std::size_t position) const { return static_cast<int>(arguments.at(position)); }
    /// The text that an argument points to.
    [[nodiscard]] std::string text(std::size_t position) const;
    [[nodiscard]] std::string bytes(std::size_t position, std::size_t count) const;

    /// The path that the call is about: of a call with two paths the last one.
    [[nodiscard]] std::string path() const;
    /// The flags of an `open` or `openat`, zero for other calls.
    [[nodiscard]] int openFlags() const;
    [[nodiscard]] bool opensNamelessFile() const;
};

} // namespace kestrin
