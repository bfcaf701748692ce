#include "state/TemporaryFile.h"

#include "state/StateErrors.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace kestrin {

TemporaryFile::TemporaryFile(std::filesystem::path path, mode_t mode)
    : path_(std::move(path)), file_(FileDescriptor::open(path_, O_WRONLY | O_CREAT | O_EXCL, mode)) {}

TemporaryFile::~TemporaryFile() {
    if (removeOnExit_) ::unlink(path_.c_str());
}

void TemporaryFile::renameTo(const std::filesystem::path& destination) {
    if (::rename(path_.c_str(), destination.c_str()) != 0) throwPOSIXError();
    removeOnExit_ = false;
}

void TemporaryFile::renameToUnused(const std::filesystem::path& destination) {
    if (::renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, destination.c_str(), RENAME_NOREPLACE) != 0) {
        // Some file systems and kernels cannot rename without replacing, but all of those that keep links can link.
        // The C library gives this error for a kernel's ENOSYS too.
        if (errno != EINVAL || ::link(path_.c_str(), destination.c_str()) != 0) throwPOSIXError();
        return; // the name that is left goes away with this object
    }
    removeOnExit_ = false;
}

} // namespace kestrin
