#include "state/FileDescriptor.h"

#include "state/StateErrors.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace kestrin {

namespace {

int openRestarting(const std::filesystem::path& path, int flags, mode_t mode) {
    int descriptor = -1;
    do
        descriptor = ::open(path.c_str(), flags | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, mode);
    while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

} // namespace

FileDescriptor::~FileDescriptor() {
    // An error is not looked at: what was read is read, what was synced is on disk, and a failure is on its way.
    if (descriptor_ >= 0) ::close(descriptor_);
}

FileDescriptor FileDescriptor::open(const std::filesystem::path& path, int flags, mode_t mode) {
    const int descriptor = openRestarting(path, flags, mode);
    if (descriptor < 0) throwPOSIXError();
    return FileDescriptor(descriptor);
}

std::optional<FileDescriptor> FileDescriptor::openExisting(const std::filesystem::path& path, int flags) {
    const int descriptor = openRestarting(path, flags, 0);
    if (descriptor >= 0) return FileDescriptor(descriptor);
    if (errno == ENOENT) return std::nullopt;
    throwPOSIXError();
}

void FileDescriptor::close() {
    const int descriptor = std::exchange(descriptor_, -1);
    // An interrupted close has closed all the same.
    if (::close(descriptor) != 0 && errno != EINTR) throwPOSIXError();
}

struct stat FileDescriptor::status() const {
    struct stat status{};
    if (::fstat(descriptor_, &status) != 0) throwPOSIXError();
    return status;
}

} // namespace kestrin
