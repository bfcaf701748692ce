#pragma once

#include "model/CustomProviderConfiguration.h"
#include "model/HistoryFileRevision.h"

#include <optional>

namespace kestrin {

/// Where the added services are read from. Any thread.
class CustomProviderReading {
public:
    virtual ~CustomProviderReading() = default;
    /// Absent when there is no file; throws a `MessageError` when there is one that cannot be used.
    [[nodiscard]] virtual std::optional<CustomProviderConfiguration> load() const = 0;
    /// The revision of the file, all zero when it is missing. Looks at no kind; throws a `MessageError`.
    [[nodiscard]] virtual HistoryFileRevision revision() const = 0;
};

} // namespace kestrin
