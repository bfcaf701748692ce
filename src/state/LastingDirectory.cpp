#include "state/LastingDirectory.h"

#include "state/AtomicStateFile.h"
#include "state/StandardizedPath.h"

#include <cerrno>

namespace kestrin {

namespace {

// By "..", so that a parent that is a link does not matter. One that may only be passed through cannot be flushed,
// one that is never written to need not be, and neither is a reason to refuse a save.
void syncNameOf(const std::filesystem::path& directory) {
    try {
        AtomicStateFile::syncDirectory(directory / "..");
    } catch (const POSIXError& error) {
        if (error.code != EACCES && error.code != EROFS) throw;
    }
}

} // namespace

void ensureLastingDirectory(const std::filesystem::path& directory, std::string_view message) {
    if (AtomicStateFile::fileKind(directory) == StateFileKind::missing)
        for (const std::filesystem::path& made : createDirectories(directory))
            syncNameOf(made);
    AtomicStateFile::ensureDirectory(directory, IfMissing::Refuse, message);
    // Also of one that was there: whoever made it may have been killed before it came to this.
    syncNameOf(directory);
}

} // namespace kestrin
