#pragma once

#include "services/CustomProviderReading.h"
#include "state/StateWriter.h"
#include "state/StateWriting.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kestrin {

/// The services that the user added, in "custom-providers.json" of one state directory. A plain value of a path and
/// a clock for the names of backups, cheap to copy, without a lock: one thread saves, any thread reads and sees the
/// old file or the new one. What is not exactly what this program writes is refused and left as it is. Everything
/// here blocks, and throws `CustomProviderStoreError` unless said otherwise.
class CustomProviderStore : public CustomProviderReading {
public:
    explicit CustomProviderStore(std::filesystem::path rootURL, StateWriter::Now now = StateWriter::systemNow);
    [[nodiscard]] const std::filesystem::path& rootURL() const { return rootURL_; }

    [[nodiscard]] std::optional<CustomProviderConfiguration> load() const override;
    [[nodiscard]] HistoryFileRevision revision() const override;

    /// Replaces the file, of owner's permissions alone, after a backup of the former one if that is asked for and
    /// there is one. Returns the backup's path. The list must be acceptable and fit the version; the file gets the
    /// lowest version that it fits. A failure leaves the former file, and the backup if it was made already; when
    /// only the last flush of the directory fails, the new file is in place and the error is thrown all the same.
    std::optional<std::filesystem::path> save(std::int64_t schemaVersion,
        const std::vector<CustomProviderDefinition>& providers, Backup backupExisting) const;

    /// The first "provider-{n}" of which no trace is left: not included, not in `excluding`, neither in the file
    /// nor in a backup that can be read, and without a history.
    [[nodiscard]] std::string nextIdentifier(const std::set<std::string>& excluding) const;

    /// The version of the format that `save` is to be asked for.
    [[nodiscard]] static std::int64_t schemaVersion(const std::vector<CustomProviderDefinition>& providers);

private:
    [[nodiscard]] std::filesystem::path makeBackup() const;

    std::filesystem::path rootURL_;
    std::filesystem::path fileURL_;
    StateWriter::Now now_;
};

} // namespace kestrin
