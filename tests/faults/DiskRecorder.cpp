#include "faults/DiskRecorder.h"

#include <fcntl.h>
#include <sys/syscall.h>

#include <filesystem>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace kestrin {

namespace {

constexpr std::string_view descriptorFiles = "/proc/self/fd/";

/// Calls that change nothing on a disk.
const std::set<std::string> looking = {"read", "pread64", "lseek", "fcntl", "fstat", "stat", "lstat", "newfstatat",
    "statx", "access", "readlink", "readlinkat", "getdents64", "getrandom"};
const std::set<std::uint64_t> withoutFiles = {SYS_brk, SYS_mmap, SYS_munmap, SYS_mprotect, SYS_madvise, SYS_futex,
    SYS_rt_sigprocmask, SYS_rt_sigaction, SYS_rt_sigreturn, SYS_getpid, SYS_gettid, SYS_tgkill, SYS_clock_gettime,
    SYS_exit_group};

} // namespace

DiskRecorder::DiskRecorder(Disk& disk, std::string base) : disk_(disk), base_(std::move(base)) {}

bool DiskRecorder::take(const SystemCall& call, std::int64_t result) {
    const std::string name = call.name();
    if (withoutFiles.contains(call.number) || looking.contains(name) || result < 0) return false;
    if (name == "open" || name == "openat") return open(call, static_cast<int>(result));
    if (name == "close") {
        open_.erase(call.argument(0));
    } else if (name == "write") {
        return write(call, static_cast<std::size_t>(result));
    } else if (name == "fsync" || name == "fdatasync") {
        disk_.sync(open_.at(call.argument(0)).inode);
        return true;
    } else if (name == "mkdir") {
        disk_.makeDirectory(relative(call.path()));
        return true;
    } else if (name == "rename") {
        disk_.rename(relative(call.text(0)), relative(call.path()));
        return true;
    } else if (name == "renameat2") {
        disk_.rename(relative(call.text(1)), relative(call.path()));
        return true;
    } else if (name == "link" || name == "linkat") {
        return link(call);
    } else if (name == "unlink") {
        disk_.remove(relative(call.path()));
        return true;
    } else {
        throw std::logic_error("the model of a disk does not know the system call " + name);
    }
    return false;
}

bool DiskRecorder::isBelowBase(const std::string& path) const {
    return path == base_ || path.starts_with(base_ + "/");
}

std::string DiskRecorder::relative(const std::string& path) const {
    // No link is involved here, so that letters alone tell what ".." leads to.
    std::string normal = std::filesystem::path(path).lexically_normal().string();
    if (normal.ends_with('/')) normal.pop_back();
    if (!isBelowBase(normal)) throw std::logic_error("a change outside the base directory: " + path);
    return normal == base_ ? "" : normal.substr(base_.size() + 1);
}

bool DiskRecorder::open(const SystemCall& call, int descriptor) {
    const int flags = call.openFlags();
    const bool writes = (flags & O_ACCMODE) != O_RDONLY;
    if (!isBelowBase(call.path()) && !writes) return false;
    if ((flags & O_TRUNC) != 0) throw std::logic_error("the model of a disk does not know truncation");
    const bool isNameless = call.opensNamelessFile();
    const std::string path = relative(call.path());
    const auto there = isNameless ? std::nullopt : disk_.at(path);
    const Disk::Inode inode = there ? *there : isNameless ? disk_.createNamelessFile() : disk_.createFile(path);
    open_[descriptor] = {.inode = inode, .position = 0, .appends = (flags & O_APPEND) != 0};
    return !there;
}

bool DiskRecorder::write(const SystemCall& call, std::size_t count) {
    OpenFile& file = open_.at(call.argument(0));
    if (file.appends) file.position = disk_.sizeOf(file.inode);
    disk_.write(file.inode, file.position, call.bytes(1, count));
    file.position += count;
    return true;
}

bool DiskRecorder::link(const SystemCall& call) {
    const std::string from = call.text(call.name() == "link" ? 0 : 1);
    const Disk::Inode inode = from.starts_with(descriptorFiles)
                                  ? open_.at(std::stoi(from.substr(descriptorFiles.size()))).inode
                                  : disk_.at(relative(from)).value();
    disk_.link(inode, relative(call.path()));
    return true;
}

} // namespace kestrin
