#include "state/HistoryScanner.h"

#include "state/FileDescriptor.h"
#include "state/FileRevision.h"
#include "state/HistoryLineSplitter.h"
#include "state/StateErrors.h"
#include "tasks/CancellationError.h"

#include <fcntl.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <vector>

namespace kestrin {

namespace {

constexpr std::int64_t chunkBytes = 65'536;

std::size_t readRestarting(int descriptor, char* bytes, std::size_t count) {
    ssize_t got = -1;
    do
        got = ::read(descriptor, bytes, count);
    while (got < 0 && errno == EINTR);
    if (got < 0) throwPOSIXError();
    return static_cast<std::size_t>(got);
}

/// Hands what a huge line took back to the system. The allocator would keep it: a program that runs for months must
/// not stay as large as its largest line.
void releaseMemory() {
#ifdef __GLIBC__
    ::malloc_trim(0);
#endif
}

/// Lines that are appended after the size was taken are not read; the next read of the history has them. Returns
/// whether there was a huge line.
bool readLines(
    int descriptor, std::int64_t size, HistoryLineSink& sink, const std::stop_token& stop, HugeLineTurn* turn) {
    std::vector<char> chunk(chunkBytes + historyLinePadding);
    HistoryLineSplitter splitter(sink, turn);
    while (size > 0) {
        if (stop.stop_requested()) throw CancellationError();
        const std::size_t count =
            readRestarting(descriptor, chunk.data(), static_cast<std::size_t>(std::min(size, chunkBytes)));
        if (count == 0) break;
        splitter.take({chunk.data(), count});
        size -= static_cast<std::int64_t>(count);
    }
    splitter.finish();
    return splitter.hadHugeLine();
}

} // namespace

std::optional<HistoryFileRevision> scanHistoryLines(const std::filesystem::path& root, HistoryKind kind,
    const std::string& id, HistoryLineSink& sink, const std::stop_token& stop, HugeLineTurn* turn) {
    const auto file = FileDescriptor::openExisting(historyFilePath(root, kind, id), O_RDONLY);
    if (!file) return std::nullopt;
    const struct stat status = file->status();
    if (!S_ISREG(status.st_mode)) throw HistoryReadError("Kestrin history is not a regular file.");
    const HistoryFileRevision revision = revisionOf(status);
    if (readLines(file->get(), revision.byteCount, sink, stop, turn)) releaseMemory();
    if (revisionOf(file->status()) != revision)
        throw HistoryReadError("Kestrin history changed while it was being read.");
    return revision;
}

} // namespace kestrin
