#pragma once

#include "state/StateWriting.h"

#include <chrono>
#include <functional>

namespace kestrin {

/// Writes below one state directory. Holds a path and a clock for the names of backups; usable on any thread, but
/// nothing here orders two writers of the same file. A kill at any moment leaves "sites.json" old or new and whole,
/// and of a history file all its former bytes.
class StateWriter : public StateWriting {
public:
    using Now = std::function<std::chrono::sys_seconds()>;

    explicit StateWriter(std::filesystem::path rootURL, Now now = systemNow);
    [[nodiscard]] const std::filesystem::path& rootURL() const { return rootURL_; }

    HistoryAppend appendCheck(const CheckRecord& record) override;
    HistoryAppend appendProviderCheck(const ProviderCheckRecord& record) override;
    std::optional<std::filesystem::path> saveConfiguration(
        const SiteConfiguration& configuration, Backup backup) override;

    [[nodiscard]] static std::chrono::sys_seconds systemNow();

private:
    std::filesystem::path rootURL_;
    Now now_;
};

} // namespace kestrin
