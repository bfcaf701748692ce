#include "state/StateWriter.h"

#include "state/AtomicStateFile.h"
#include "state/BackupFiles.h"
#include "state/ConfigurationFile.h"
#include "state/FileMode.h"
#include "state/HistoryAppending.h"
#include "state/HistoryLine.h"
#include "state/LastingDirectory.h"
#include "state/SiteConfigurationCoding.h"
#include "state/StandardizedPath.h"
#include "state/TemporaryFile.h"
#include "state/WholeFileCreation.h"
#include "state/WriteAll.h"
#include "json/JSONWriter.h"

#include <cerrno>
#include <string>
#include <string_view>
#include <utility>

namespace kestrin {

namespace {

void replace(const std::filesystem::path& root, const std::filesystem::path& file, std::string_view text) {
    TemporaryFile temporary(root / (".sites-" + freshUUID() + ".tmp"), defaultFileMode);
    AtomicStateFile::writeAllAndSync(text, temporary.descriptor(), diskTookNoData);
    temporary.renameTo(file);
    AtomicStateFile::syncDirectory(root);
}

/// Copies the present file under a name that no backup has yet. Copy and directory are on the disk before the file
/// is replaced.
std::filesystem::path makeBackup(
    const std::filesystem::path& root, const std::filesystem::path& file, std::chrono::sys_seconds now) {
    const std::string content = readConfigurationFile(file);
    const std::filesystem::path directory = backupDirectoryPath(root);
    ensureLastingDirectory(directory, backupPathIsNoDirectory);
    return createBackup(content, directory, "sites-", now, defaultFileMode);
}

/// Whether a temporary cannot be made beside the state directory and renamed into it, because the parent takes no
/// files or is another file system.
bool parentIsNoPlace(int code) {
    return code == EXDEV || code == EACCES || code == EPERM || code == EROFS;
}

/// A directory that holds anything but "sites.json" is refused at the next start, so the first file is made without
/// a temporary in it. Only where neither a nameless file nor the parent can serve there is one for a moment.
void createFirstFile(const std::filesystem::path& root, const std::filesystem::path& file, std::string_view text) {
    try {
        createWholeFile(text, file, root.parent_path(), Durability::Synced);
    } catch (const POSIXError& error) {
        if (!parentIsNoPlace(error.code)) throw;
        createWholeFileUnderTemporaryName(text, file, root, Durability::Synced);
    }
}

/// False when the file has come into being meanwhile.
bool createFirst(const std::filesystem::path& root, const std::filesystem::path& file, std::string_view text) {
    try {
        createFirstFile(root, file, text);
        return true;
    } catch (const POSIXError& error) {
        if (error.code == EEXIST) return false;
        throw;
    }
}

} // namespace

StateWriter::StateWriter(std::filesystem::path rootURL, Now now)
    : rootURL_(std::move(rootURL)), now_(std::move(now)) {}

std::chrono::sys_seconds StateWriter::systemNow() {
    return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
}

HistoryAppend StateWriter::appendCheck(const CheckRecord& record) {
    return appendHistoryLine(rootURL_, HistoryKind::Website, record.siteID, historyLine(record));
}

HistoryAppend StateWriter::appendProviderCheck(const ProviderCheckRecord& record) {
    return appendHistoryLine(rootURL_, HistoryKind::Provider, record.providerID, historyLine(record));
}

std::optional<std::filesystem::path> StateWriter::saveConfiguration(
    const SiteConfiguration& configuration, Backup backup) {
    const std::filesystem::path root = standardizedPath(rootURL_);
    const std::filesystem::path file = configurationFilePath(root);
    ensureLastingDirectory(root, "Kestrin's state path is not a regular directory.");
    const bool exists = AtomicStateFile::fileKind(file) != StateFileKind::missing;

    const std::string text = writePretty(encodeSiteConfiguration(configuration));
    // A file that comes into being meanwhile is somebody's too, and is kept like one that was there before.
    if (!exists && createFirst(root, file, text)) return std::nullopt;
    std::optional<std::filesystem::path> backupMade;
    if (backup == Backup::Make) backupMade = makeBackup(root, file, now_());
    replace(root, file, text);
    return backupMade;
}

} // namespace kestrin
