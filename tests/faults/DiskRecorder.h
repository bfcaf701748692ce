#pragma once

#include "faults/Disk.h"
#include "faults/SystemCall.h"

#include <cstdint>
#include <map>
#include <string>

namespace kestrin {

/// Repeats on a model of a disk what the system calls of a traced process do below a base directory. Throws for a
/// call of which it does not know that it changes nothing.
class DiskRecorder {
public:
    DiskRecorder(Disk& disk, std::string base);

    /// Takes one call that has been made. True when it changed or synced something.
    bool take(const SystemCall& call, std::int64_t result);

private:
    struct OpenFile {
        Disk::Inode inode = 0;
        std::size_t position = 0;
        bool appends = false;
    };

    [[nodiscard]] std::string relative(const std::string& path) const;
    [[nodiscard]] bool isBelowBase(const std::string& path) const;
    bool open(const SystemCall& call, int descriptor);
    bool write(const SystemCall& call, std::size_t count);
    bool link(const SystemCall& call);

    Disk& disk_;
    std::string base_;
    std::map<int, OpenFile> open_;
};

} // namespace kestrin
