#pragma once

#include "model/MessageError.h"
#include "services/CustomProviderReading.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace kestrin {

/// Added services out of memory. The hooks run inside the two reads, so that a test can let somebody else write at
/// the worst moment.
class FakeCustomProviders : public CustomProviderReading {
public:
    std::function<void()> onLoad;
    std::function<void()> onRevision;
    std::optional<std::string> loadFailure;
    std::optional<std::string> revisionFailure;
    mutable int loads = 0;

    /// As if the file had been replaced; absent removes it.
    void replace(std::optional<CustomProviderConfiguration> configuration) {
        configuration_ = std::move(configuration);
        revision_ = {};
        if (configuration_) revision_ = {1, ++replacements_, 100, 0, 0};
    }

    [[nodiscard]] std::optional<CustomProviderConfiguration> load() const override {
        ++loads;
        if (onLoad) onLoad();
        if (loadFailure) throw MessageError(*loadFailure);
        return configuration_;
    }

    [[nodiscard]] HistoryFileRevision revision() const override {
        if (onRevision) onRevision();
        if (revisionFailure) throw MessageError(*revisionFailure);
        return revision_;
    }

private:
    std::optional<CustomProviderConfiguration> configuration_;
    HistoryFileRevision revision_;
    std::uint64_t replacements_ = 0;
};

} // namespace kestrin
