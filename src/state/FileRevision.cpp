#include "state/FileRevision.h"

#include "state/StandardizedPath.h"
#include "state/StateErrors.h"

#include <sys/stat.h>

#include <cerrno>

namespace kestrin {

HistoryFileRevision revisionOf(const struct stat& status) {
    return {.device = status.st_dev,
        .inode = status.st_ino,
        .byteCount = status.st_size,
        .modifiedSeconds = status.st_mtim.tv_sec,
        .modifiedNanoseconds = status.st_mtim.tv_nsec};
}

HistoryFileRevision fileRevision(const std::filesystem::path& url, MissingFile missing) {
    struct stat status{};
    if (::lstat(standardizedPath(url).c_str(), &status) != 0) {
        if (errno == ENOENT && missing == MissingFile::Allowed) return {};
        throwPOSIXError();
    }
    if (!S_ISREG(status.st_mode)) throw HistoryReadError("Kestrin state metadata is not a regular file.");
    return revisionOf(status);
}

} // namespace kestrin
