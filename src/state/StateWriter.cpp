#include "state/StateWriter.h"

#include "state/AtomicStateFile.h"
#include "state/ConfigurationFile.h"
#include "state/HistoryAppending.h"
#include "state/SiteConfigurationCoding.h"
#include "state/StandardizedPath.h"
#include "state/TemporaryFile.h"
#include "state/WholeFileCreation.h"
#include "text/Timestamp.h"
#include "json/JSONWriter.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>
#include <utility>

namespace kestrin {

namespace {

constexpr mode_t defaultMode = 0666;

std::filesystem::path backupPath(const std::filesystem::path& directory, const std::string& stamp, int attempt) {
    const std::string counter = attempt == 1 ? "" : "-" + std::to_string(attempt);
    return directory / ("sites-" + stamp + counter + ".json");
}

/// Copies the present file under a name that no backup has yet.
std::filesystem::path makeBackup(
    const std::filesystem::path& root, const std::filesystem::path& file, std::chrono::sys_seconds now) {
    const std::string content = readConfigurationFile(file);
    const std::filesystem::path directory = backupDirectoryPath(root);
    AtomicStateFile::ensureDirectory(directory, IfMissing::Create, backupPathIsNoDirectory);
    std::string stamp = timestampText(now);
    std::ranges::replace(stamp, ':', '-');
    for (int attempt = 1;; ++attempt) {
        std::filesystem::path path = backupPath(directory, stamp, attempt);
        if (AtomicStateFile::fileKind(path) != StateFileKind::missing) continue;
        try {
            createWholeFile(content, path, directory, Durability::Synced);
            return path;
        } catch (const POSIXError& error) {
            if (error.code != EEXIST) throw; // another program took the name meanwhile
        }
    }
}

void replace(const std::filesystem::path& root, const std::filesystem::path& file, std::string_view text) {
    TemporaryFile temporary(root / (".sites-" + freshUUID() + ".tmp"), defaultMode);
    AtomicStateFile::writeAllAndSync(text, temporary.descriptor(), "The disk took no data.");
    temporary.renameTo(file);
    AtomicStateFile::syncDirectory(root);
}

/// Creates the state directory. Its own name reaches the disk as well, where its parent can be opened; a parent
/// that is a link or may only be passed through is no reason to refuse a save.
void createRoot(const std::filesystem::path& root) {
    const bool isNew = AtomicStateFile::fileKind(root) == StateFileKind::missing;
    AtomicStateFile::ensureDirectory(root, IfMissing::Create, "Kestrin's state path is not a regular directory.");
    if (!isNew) return;
    try {
        AtomicStateFile::syncDirectory(root.parent_path());
    } catch (const POSIXError& error) {
        if (error.code != EACCES && error.code != ENOTDIR && error.code != ELOOP) throw;
    }
}

/// A directory that holds anything but "sites.json" is refused at the next start, so the first file is made without
/// a temporary in it. False when the file has come into being meanwhile.
bool createFirst(const std::filesystem::path& root, const std::filesystem::path& file, std::string_view text) {
    try {
        createWholeFile(text, file, root.parent_path(), Durability::Synced);
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
    createRoot(root);
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
