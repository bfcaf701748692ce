#include "state/BackupFiles.h"

#include "state/AtomicStateFile.h"
#include "state/DirectoryListing.h"
#include "state/StandardizedPath.h"
#include "state/WholeFileCreation.h"
#include "text/Timestamp.h"

#include <algorithm>
#include <cerrno>
#include <string>

namespace kestrin {

std::filesystem::path backupDirectoryPath(const std::filesystem::path& root) {
    return standardizedPath(root / "backups");
}

std::filesystem::path createBackup(std::string_view content, const std::filesystem::path& directory,
    std::string_view prefix, std::chrono::sys_seconds now, mode_t mode) {
    std::string stamp = timestampText(now);
    std::ranges::replace(stamp, ':', '-');
    for (int attempt = 1;; ++attempt) {
        std::string counter;
        if (attempt > 1) counter.append("-").append(std::to_string(attempt));
        std::filesystem::path path = directory / (std::string(prefix) + stamp + counter + ".json");
        if (AtomicStateFile::fileKind(path) != StateFileKind::missing) continue;
        try {
            createWholeFile(content, path, directory, Durability::Synced, mode);
            return path;
        } catch (const POSIXError& error) {
            if (error.code != EEXIST) throw; // another program took the name meanwhile
        }
    }
}

std::vector<std::filesystem::path> backupEntries(const std::filesystem::path& root) {
    const std::filesystem::path directory = backupDirectoryPath(root);
    const StateFileKind kind = AtomicStateFile::fileKind(directory);
    if (kind == StateFileKind::missing) return {};
    if (kind != StateFileKind::directory) throw AtomicStateFileError(std::string(backupPathIsNoDirectory));
    std::vector<std::filesystem::path> entries = entriesOf(directory);
    std::erase_if(entries, [](const std::filesystem::path& path) { return path.extension() != ".json"; });
    return entries;
}

} // namespace kestrin
