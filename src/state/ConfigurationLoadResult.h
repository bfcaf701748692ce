#pragma once

#include "model/SiteConfiguration.h"

#include <utility>
#include <variant>

namespace kestrin {

/// What reading "sites.json" gives: a configuration, or the fact that the program has not been set up.
class ConfigurationLoadResult {
public:
    [[nodiscard]] static ConfigurationLoadResult configured(SiteConfiguration configuration) {
        ConfigurationLoadResult result;
        result.value_ = std::move(configuration);
        return result;
    }
    [[nodiscard]] static ConfigurationLoadResult notConfigured() { return {}; }

    [[nodiscard]] bool isConfigured() const { return std::holds_alternative<SiteConfiguration>(value_); }
    /// Only when configured; throws `std::bad_variant_access` otherwise.
    [[nodiscard]] const SiteConfiguration& configuration() const { return std::get<SiteConfiguration>(value_); }

    bool operator==(const ConfigurationLoadResult&) const = default;

private:
    struct NotConfigured {
        bool operator==(const NotConfigured&) const = default;
    };

    std::variant<NotConfigured, SiteConfiguration> value_;
};

} // namespace kestrin
