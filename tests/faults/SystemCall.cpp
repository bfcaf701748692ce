#include "faults/SystemCall.h"

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <stdexcept>

namespace kestrin {

namespace {

constexpr int noPath = -1;

struct FileCall {
    const char* name;
    int path; ///< which argument is the path
};

const std::map<std::uint64_t, FileCall> fileCalls = {
    {SYS_open, {"open", 0}},
    {SYS_openat, {"openat", 1}},
    {SYS_close, {"close", noPath}},
    {SYS_read, {"read", noPath}},
    {SYS_pread64, {"pread64", noPath}},
    {SYS_write, {"write", noPath}},
    {SYS_pwrite64, {"pwrite64", noPath}},
    {SYS_writev, {"writev", noPath}},
    {SYS_lseek, {"lseek", noPath}},
    {SYS_fsync, {"fsync", noPath}},
    {SYS_fdatasync, {"fdatasync", noPath}},
    {SYS_ftruncate, {"ftruncate", noPath}},
    {SYS_fallocate, {"fallocate", noPath}},
    {SYS_fchmod, {"fchmod", noPath}},
    {SYS_fcntl, {"fcntl", noPath}},
    {SYS_fstat, {"fstat", noPath}},
    {SYS_stat, {"stat", 0}},
    {SYS_lstat, {"lstat", 0}},
    {SYS_newfstatat, {"newfstatat", 1}},
    {SYS_statx, {"statx", 1}},
    {SYS_access, {"access", 0}},
    {SYS_readlink, {"readlink", 0}},
    {SYS_readlinkat, {"readlinkat", 1}},
    {SYS_getdents64, {"getdents64", noPath}},
    {SYS_mkdir, {"mkdir", 0}},
    {SYS_mkdirat, {"mkdirat", 1}},
    {SYS_rmdir, {"rmdir", 0}},
    {SYS_unlink, {"unlink", 0}},
    {SYS_unlinkat, {"unlinkat", 1}},
    {SYS_link, {"link", 1}},
    {SYS_linkat, {"linkat", 3}},
    {SYS_symlink, {"symlink", 1}},
    {SYS_rename, {"rename", 1}},
    {SYS_renameat, {"renameat", 3}},
    {SYS_renameat2, {"renameat2", 3}},
    {SYS_sendfile, {"sendfile", noPath}},
    {SYS_copy_file_range, {"copy_file_range", noPath}},
    {SYS_getrandom, {"getrandom", noPath}},
};

/// The word of the traced process that holds that address.
std::uint64_t word(pid_t process, std::uint64_t address) {
    errno = 0;
    const long value = ::ptrace(PTRACE_PEEKDATA, process, address, nullptr);
    if (value == -1 && errno != 0) throw std::runtime_error("cannot read the traced process");
    return static_cast<std::uint64_t>(value);
}

char byteAt(pid_t process, std::uint64_t address) {
    const std::uint64_t whole = word(process, address & ~std::uint64_t{7});
    return static_cast<char>(whole >> ((address & 7) * 8));
}

} // namespace

std::string SystemCall::name() const {
    const auto found = fileCalls.find(number);
    return found == fileCalls.end() ? std::to_string(number) : found->second.name;
}

bool SystemCall::isAboutFiles() const {
    return fileCalls.contains(number);
}

std::string SystemCall::text(std::size_t position) const {
    std::string text;
    for (std::uint64_t address = arguments.at(position);; ++address) {
        const char byte = byteAt(process, address);
        if (byte == '\0') return text;
        text += byte;
    }
}

std::string SystemCall::bytes(std::size_t position, std::size_t count) const {
    std::string bytes(count, '\0');
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = byteAt(process, arguments.at(position) + i);
    return bytes;
}

std::string SystemCall::path() const {
    const auto found = fileCalls.find(number);
    if (found == fileCalls.end() || found->second.path == noPath) return {};
    return text(static_cast<std::size_t>(found->second.path));
}

int SystemCall::openFlags() const {
    if (number == SYS_open) return argument(1);
    return number == SYS_openat ? argument(2) : 0;
}

bool SystemCall::opensNamelessFile() const {
    return (openFlags() & O_TMPFILE) == O_TMPFILE;
}

} // namespace kestrin
