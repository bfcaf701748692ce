#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace kestrin {

/// A run of failed checks of a website, from the first failure to the check that recovered. A moment is absent when
/// its text is no time stamp, and the end also while the incident lasts.
struct Incident {
    std::optional<std::chrono::sys_seconds> started;
    std::optional<std::chrono::sys_seconds> ended;
    std::string startedText;
    std::optional<std::string> endedText;

    /// Tells incidents of one list apart.
    [[nodiscard]] std::string identity() const { return startedText + "-" + endedText.value_or("ongoing"); }

    bool operator==(const Incident&) const = default;
};

} // namespace kestrin
