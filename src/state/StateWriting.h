#pragma once

#include "model/CheckRecord.h"
#include "model/ProviderCheckRecord.h"
#include "model/SiteConfiguration.h"
#include "state/HistoryAppend.h"

#include <filesystem>
#include <optional>

namespace kestrin {

enum class Backup { Make, None };

/// Where finished checks and configurations go. Every operation blocks and throws a `MessageError`.
struct StateWriting {
    virtual ~StateWriting() = default;

    /// Appends the record to its target's history file and returns the file's revisions before and after.
    virtual HistoryAppend appendCheck(const CheckRecord& record) = 0;
    virtual HistoryAppend appendProviderCheck(const ProviderCheckRecord& record) = 0;

    /// Replaces "sites.json". Returns the path of the backup of the former file, when one was asked for and there
    /// was a file.
    virtual std::optional<std::filesystem::path> saveConfiguration(
        const SiteConfiguration& configuration, Backup backup) = 0;
};

} // namespace kestrin
