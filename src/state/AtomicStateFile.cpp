#include "state/AtomicStateFile.h"

#include "state/FileDescriptor.h"
#include "state/StandardizedPath.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <new>
#include <stdexcept>

namespace kestrin {

StateFileKind AtomicStateFile::fileKind(const std::filesystem::path& url) {
    struct stat status{};
    if (::lstat(standardizedPath(url).c_str(), &status) != 0) {
        if (errno == ENOENT) return StateFileKind::missing;
        throwPOSIXError();
    }
    switch (status.st_mode & S_IFMT) {
    case S_IFDIR:
        return StateFileKind::directory;
    case S_IFREG:
        return StateFileKind::regularFile;
    case S_IFLNK:
        return StateFileKind::symbolicLink;
    default:
        return StateFileKind::other;
    }
}

std::string AtomicStateFile::readBounded(
    const std::filesystem::path& url, std::int64_t limit, std::string_view message) {
    const FileDescriptor file = FileDescriptor::open(url, O_RDONLY);
    const struct stat status = file.status();
    if (!S_ISREG(status.st_mode) || status.st_size < 0 || status.st_size > limit)
        throw AtomicStateFileError(std::string(message));

    std::string bytes;
    std::array<char, 16'384> buffer{};
    try {
        bytes.reserve(static_cast<std::size_t>(status.st_size));
        while (true) {
            const ssize_t count = ::read(file.get(), buffer.data(), buffer.size());
            if (count == 0) return bytes;
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) throwPOSIXError();
            // The file may have grown since its size was taken.
            if (static_cast<std::int64_t>(bytes.size()) > limit - count)
                throw AtomicStateFileError(std::string(message));
            bytes.append(buffer.data(), static_cast<std::size_t>(count));
        }
    } catch (const std::bad_alloc&) {
        throw POSIXError(ENOMEM);
    } catch (const std::length_error&) {
        throw POSIXError(ENOMEM);
    }
}

void AtomicStateFile::ensureDirectory(
    const std::filesystem::path& url, IfMissing ifMissing, std::string_view message) {
    StateFileKind kind = fileKind(url);
    if (kind == StateFileKind::missing && ifMissing == IfMissing::Create) {
        createDirectories(url);
        kind = fileKind(url);
    }
    if (kind != StateFileKind::directory) throw AtomicStateFileError(std::string(message));
}

DirectoryIdentity AtomicStateFile::directoryIdentity(const std::filesystem::path& url) {
    struct stat status{};
    if (::lstat(standardizedPath(url).c_str(), &status) != 0) throwPOSIXError();
    if (!S_ISDIR(status.st_mode)) throw AtomicStateFileError("Kestrin's state root is not a regular directory.");
    return {.device = status.st_dev, .inode = status.st_ino};
}

} // namespace kestrin
