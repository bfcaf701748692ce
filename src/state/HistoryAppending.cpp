#include "state/HistoryAppending.h"

#include "state/AtomicStateFile.h"
#include "state/ConfigurationFile.h"
#include "state/FileDescriptor.h"
#include "state/FileRevision.h"
#include "state/HistoryScanner.h"
#include "state/StandardizedPath.h"
#include "state/WholeFileCreation.h"
#include "state/WriteAll.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <optional>

namespace kestrin {

namespace {

constexpr std::string_view notRegular = "Kestrin history is not a regular file.";

void requireRegular(const struct stat& status) {
    if (!S_ISREG(status.st_mode)) throw StateWriteError(std::string(notRegular));
}

/// Whether the last line was left without its line feed.
bool endsInTornLine(const FileDescriptor& file, std::int64_t size) {
    if (size == 0) return false;
    char last = 0;
    ssize_t count = -1;
    do
        count = ::pread(file.get(), &last, 1, size - 1);
    while (count < 0 && errno == EINTR);
    if (count < 0) throwPOSIXError();
    return count == 0 || last != '\n';
}

HistoryAppend extend(const std::filesystem::path& path, const std::string& line) {
    // In append mode the system itself puts the bytes behind whatever another writer has added meanwhile.
    FileDescriptor file = FileDescriptor::open(path, O_RDWR | O_APPEND);
    const struct stat status = file.status();
    requireRegular(status);
    const std::string added = endsInTornLine(file, status.st_size) ? "\n" + line : line;
    writeAll(added, file.get(), diskTookNoData);
    HistoryAppend append = {.before = revisionOf(status), .after = revisionOf(file.status())};
    append.before.byteCount = append.after.byteCount - static_cast<std::int64_t>(added.size());
    file.close();
    return append;
}

/// No value when the file has come into being meanwhile.
std::optional<HistoryAppend> begin(const std::filesystem::path& path, const std::string& line) {
    try {
        createWholeFile(line, path, path.parent_path(), Durability::Written);
    } catch (const POSIXError& error) {
        if (error.code == EEXIST) return std::nullopt;
        throw;
    }
    struct stat status{};
    if (::lstat(path.c_str(), &status) != 0) throwPOSIXError();
    requireRegular(status);
    HistoryAppend append = {.before = {}, .after = revisionOf(status)};
    append.before.byteCount = append.after.byteCount - static_cast<std::int64_t>(line.size());
    return append;
}

void requireConfiguration(const std::filesystem::path& root) {
    if (AtomicStateFile::fileKind(configurationFilePath(root)) == StateFileKind::missing)
        throw StateWriteError("Kestrin's state directory is missing sites.json.");
}

} // namespace

HistoryAppend appendHistoryLine(
    const std::filesystem::path& root, HistoryKind kind, const std::string& id, std::string line) {
    if (line.size() > maximumHistoryLineBytes)
        throw StateWriteError("Kestrin refused an oversized history record.");
    line += '\n';
    std::filesystem::path path = historyFilePath(root, kind, id);
    if (AtomicStateFile::fileKind(path) == StateFileKind::missing) {
        requireConfiguration(root);
        createDirectories(path.parent_path());
        // Asked again before each use: a link may have been planted meanwhile.
        path = historyFilePath(root, kind, id);
        if (const auto begun = begin(path, line)) return *begun;
    }
    path = historyFilePath(root, kind, id);
    if (AtomicStateFile::fileKind(path) != StateFileKind::regularFile)
        throw StateWriteError(std::string(notRegular));
    return extend(path, line);
}

} // namespace kestrin
