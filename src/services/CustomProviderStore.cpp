#include "services/CustomProviderStore.h"

#include "services/CustomProviderCoding.h"
#include "services/CustomProviderStoreError.h"
#include "services/CustomProviderValidation.h"
#include "services/IncludedServices.h"
#include "state/AtomicStateFile.h"
#include "state/BackupFiles.h"
#include "state/FileMode.h"
#include "state/FileRevision.h"
#include "state/HistoryPath.h"
#include "state/LastingDirectory.h"
#include "state/StandardizedPath.h"
#include "state/StateErrors.h"

#include <sys/stat.h>

#include <cerrno>
#include <string_view>
#include <utility>

namespace kestrin {

namespace {

constexpr std::string_view backupPrefix = "custom-providers-";
constexpr std::string_view unsafeContent = "Kestrin refused oversized or unsafe custom-provider settings.";
constexpr std::string_view unsafeDirectory = "Kestrin refused an unsafe state directory.";

/// What the safe files say is said by this store.
template <class Action> auto inOwnWords(const Action& action) {
    try {
        return action();
    } catch (const CustomProviderStoreError&) {
        throw;
    } catch (const MessageError& error) {
        throw CustomProviderStoreError(error.message);
    }
}

std::string read(const std::filesystem::path& file) {
    try {
        return AtomicStateFile::readBounded(file, customProviderFileRules.limit, unsafeContent);
    } catch (const POSIXError& error) {
        // A link that has taken the file's place since it was looked at.
        if (error.code == ELOOP) throw CustomProviderStoreError(std::string(unsafeContent));
        throw;
    }
}

CustomProviderConfiguration readAcceptable(const std::filesystem::path& file) {
    CustomProviderConfiguration configuration = decodeCustomProviders(read(file));
    validateCustomProviders(configuration);
    return configuration;
}

void insertIdentifiers(const CustomProviderConfiguration& configuration, std::set<std::string>& ids) {
    for (const CustomProviderDefinition& definition : configuration.providers)
        ids.insert(definition.id);
}

/// No value for what is no backup of this store or cannot be used any more.
std::optional<CustomProviderConfiguration> readBackup(const std::filesystem::path& path) {
    try {
        if (!path.filename().native().starts_with(backupPrefix)) return std::nullopt;
        if (AtomicStateFile::fileKind(path) != StateFileKind::regularFile) return std::nullopt;
        return readAcceptable(path);
    } catch (const MessageError&) {
        return std::nullopt;
    }
}

} // namespace

CustomProviderStore::CustomProviderStore(std::filesystem::path rootURL, StateWriter::Now now)
    : rootURL_(standardizedPath(std::move(rootURL))), fileURL_(rootURL_ / "custom-providers.json"),
      now_(std::move(now)) {}

std::optional<CustomProviderConfiguration> CustomProviderStore::load() const {
    return inOwnWords([&]() -> std::optional<CustomProviderConfiguration> {
        const StateFileKind root = AtomicStateFile::fileKind(rootURL_);
        if (root == StateFileKind::missing) return std::nullopt;
        if (root != StateFileKind::directory)
            throw CustomProviderStoreError("Kestrin's state path is not a regular directory.");
        const StateFileKind file = AtomicStateFile::fileKind(fileURL_);
        if (file == StateFileKind::missing) return std::nullopt;
        if (file != StateFileKind::regularFile)
            throw CustomProviderStoreError("Kestrin's custom-provider settings are not a regular file.");
        return readAcceptable(fileURL_);
    });
}

HistoryFileRevision CustomProviderStore::revision() const {
    return inOwnWords([&]() -> HistoryFileRevision {
        struct stat status{};
        if (::lstat(fileURL_.c_str(), &status) == 0) return revisionOf(status);
        if (errno == ENOENT) return {};
        throwPOSIXError();
    });
}

std::optional<std::filesystem::path> CustomProviderStore::save(std::int64_t schemaVersion,
    const std::vector<CustomProviderDefinition>& providers, Backup backupExisting) const {
    validateCustomProviders({.schemaVersion = schemaVersion, .providers = providers});
    return inOwnWords([&] {
        ensureLastingDirectory(rootURL_, unsafeDirectory);
        const StateFileKind kind = AtomicStateFile::fileKind(fileURL_);
        if (kind != StateFileKind::missing && kind != StateFileKind::regularFile)
            throw CustomProviderStoreError(std::string(customProviderFileRules.unsafePathMessage));
        std::optional<std::filesystem::path> backup;
        if (backupExisting == Backup::Make && kind == StateFileKind::regularFile) backup = makeBackup();
        const JSONValue value = encodeCustomProviders(
            {.schemaVersion = customProviderSchemaVersion(providers), .providers = providers});
        AtomicStateFile::replaceFile(value, fileURL_, rootURL_, customProviderFileRules, kind);
        return backup;
    });
}

std::filesystem::path CustomProviderStore::makeBackup() const {
    const std::filesystem::path directory = backupDirectoryPath(rootURL_);
    ensureLastingDirectory(directory, unsafeDirectory);
    const std::string content = read(fileURL_);
    try {
        return createBackup(content, directory, backupPrefix, now_(), ownerOnlyFileMode);
    } catch (const AtomicStateFileError&) {
        throw CustomProviderStoreError("Kestrin could not finish writing a custom-provider backup.");
    }
}

std::string CustomProviderStore::nextIdentifier(const std::set<std::string>& excluding) const {
    return inOwnWords([&] {
        std::set<std::string> reserved = excluding;
        for (const std::string& id : includedServiceIDs())
            reserved.insert(id);
        if (const auto present = load()) insertIdentifiers(*present, reserved);
        for (const std::filesystem::path& path : backupEntries(rootURL_))
            if (const auto backup = readBackup(path)) insertIdentifiers(*backup, reserved);
        for (std::uint64_t n = 1;; ++n) {
            std::string id = "provider-" + std::to_string(n);
            if (reserved.contains(id)) continue;
            if (AtomicStateFile::fileKind(historyFilePath(rootURL_, HistoryKind::Provider, id)) ==
                StateFileKind::missing)
                return id;
        }
    });
}

std::int64_t CustomProviderStore::schemaVersion(const std::vector<CustomProviderDefinition>& providers) {
    return customProviderSchemaVersion(providers);
}

} // namespace kestrin
