#include "state/AtomicStateFile.h"
#include "state/BackupFiles.h"
#include "state/ConfigurationFile.h"
#include "state/DirectoryListing.h"
#include "state/SafeIdentifier.h"
#include "state/SiteConfigurationCoding.h"
#include "state/StandardizedPath.h"
#include "state/StateReader.h"
#include "json/JSONError.h"
#include "json/JSONParser.h"

namespace kestrin {

namespace {

/// Whether the state directory is there. Throws when something else is.
bool rootExists(const std::filesystem::path& root) {
    switch (AtomicStateFile::fileKind(root)) {
    case StateFileKind::missing:
        return false;
    case StateFileKind::directory:
        return true;
    default:
        throw ConfigurationReadError("Kestrin's state path is not a regular directory.");
    }
}

/// Of whatever kind. Throws `ConfigurationReadError` when they cannot be where they belong.
std::vector<std::filesystem::path> backupsOf(const std::filesystem::path& root) {
    try {
        return backupEntries(root);
    } catch (const AtomicStateFileError& error) {
        throw ConfigurationReadError(error.message);
    }
}

/// The configuration in a backup; no value for a file that cannot be read or is none, such as a backup of the
/// status services, which lies in the same directory.
std::optional<SiteConfiguration> readBackup(const std::filesystem::path& path) {
    try {
        return decodeSiteConfiguration(parseJSON(readConfigurationFile(path)));
    } catch (const MessageError&) {
        return std::nullopt;
    }
}

/// Whether a configuration backup of that name is to be read. Throws for a link and for what is no file at all.
bool isReadableBackup(const std::filesystem::path& path) {
    switch (AtomicStateFile::fileKind(path)) {
    case StateFileKind::missing:
    case StateFileKind::directory:
        return false;
    case StateFileKind::regularFile:
        return true;
    default:
        throw ConfigurationReadError("Kestrin's configuration backup is not a regular file.");
    }
}

/// The decoder knows keys and bytes; which file they stand in is known here.
SiteConfiguration decodeConfigurationFile(const std::filesystem::path& file) {
    const std::string content = readConfigurationFile(file);
    try {
        return decodeSiteConfiguration(parseJSON(content));
    } catch (const JSONError& error) {
        throw JSONError("sites.json: " + error.message);
    }
}

} // namespace

std::optional<HistoryFileRevision> StateReader::configurationRevision() const {
    if (!rootExists(rootURL_)) return std::nullopt;
    return fileRevision(configurationFilePath(rootURL_), MissingFile::Allowed);
}

ConfigurationLoadResult StateReader::loadConfiguration() const {
    if (!rootExists(rootURL_)) return ConfigurationLoadResult::notConfigured();
    const std::filesystem::path file = configurationFilePath(rootURL_);
    switch (AtomicStateFile::fileKind(file)) {
    case StateFileKind::regularFile:
        return ConfigurationLoadResult::configured(decodeConfigurationFile(file));
    case StateFileKind::missing:
        break;
    default:
        throw ConfigurationReadError(std::string(configurationIsNotRegular));
    }
    if (!entriesOf(standardizedPath(rootURL_)).empty())
        throw ConfigurationReadError("Kestrin's state directory contains data but is missing sites.json.");
    return ConfigurationLoadResult::notConfigured();
}

std::set<std::string> StateReader::knownBackupSiteIDs() const {
    std::set<std::string> ids;
    for (const std::filesystem::path& path : backupsOf(rootURL_)) {
        if (!isReadableBackup(path)) continue;
        const auto backup = readBackup(path);
        if (!backup) continue;
        for (const SiteDefinition& site : backup->sites)
            if (isSafeIdentifier(site.id)) ids.insert(site.id);
    }
    return ids;
}

std::string StateReader::nextAvailableSiteID(const std::set<std::string>& used) const {
    const std::set<std::string> reserved = knownBackupSiteIDs();
    for (std::uint64_t n = 1;; ++n) {
        std::string id = "site-" + std::to_string(n);
        if (used.contains(id) || reserved.contains(id)) continue;
        if (AtomicStateFile::fileKind(historyFilePath(rootURL_, HistoryKind::Website, id)) ==
            StateFileKind::missing)
            return id;
    }
}

} // namespace kestrin
