#pragma once

#include "monitoring/AppModelLoadResult.h"
#include "monitoring/KnownHistories.h"
#include "services/CustomProviderReading.h"
#include "services/ServiceDirectory.h"
#include "state/StateReader.h"

#include <memory>
#include <stop_token>

namespace kestrin {

/// Reads the state directory off the main thread. Cheap to copy; knows nothing of the model, and the model's fields
/// are never touched from here.
class ModelLoader {
public:
    ModelLoader(StateReader reader, std::shared_ptr<const CustomProviderReading> customProviders,
        std::shared_ptr<const ServiceDirectory> services);

    /// Loads everything, once more when the configuration moved during the first attempt. Never throws: what went
    /// wrong is in the result. Histories that did not change are taken from `known`. Stops at its next look when a
    /// stop is requested.
    [[nodiscard]] AppModelLoadResult load(const KnownHistories& known, const std::stop_token& stop) const;

    /// Whether every file still has the revision the model knows; looks at metadata alone, one file at a time, and
    /// stops at the first difference. A revision that cannot be read is a difference.
    [[nodiscard]] bool revisionsMatch(const ExpectedStateRevisions& expected, const std::stop_token& stop) const;

private:
    [[nodiscard]] AppModelLoadResult attempt(const KnownHistories& known, const std::stop_token& stop) const;
    [[nodiscard]] HistoryFileRevision configurationRevision() const;

    StateReader reader_;
    std::shared_ptr<const CustomProviderReading> customProviders_;
    std::shared_ptr<const ServiceDirectory> services_;
};

} // namespace kestrin
