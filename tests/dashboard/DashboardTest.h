#pragma once

#include "dashboard/DashboardPresentation.h"
#include "monitoring/MonitorHarness.h"

#include <algorithm>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace kestrin {

/// Locales put narrow and fixed blanks between figures and units, not the same ones in every release of ICU.
inline std::string withPlainBlanks(std::string text) {
    for (const std::string blank : {"\u00a0", "\u202f"})
        for (auto at = text.find(blank); at != std::string::npos; at = text.find(blank))
            text.replace(at, blank.size(), 1, ' ');
    return text;
}

inline LocaleFormats formatsOf(const std::string& locale) {
    return {locale, locale, "UTC"};
}

inline CheckRecord checkAt(const std::string& timestamp, bool up = true) {
    CheckRecord record;
    record.timestamp = timestamp;
    record.siteID = "a";
    record.up = up;
    return record;
}

inline ProviderCheckRecord reportAt(const std::string& timestamp, ProviderState state) {
    ProviderCheckRecord record;
    record.timestamp = timestamp;
    record.providerID = "openai";
    record.state = state;
    return record;
}

inline SiteSnapshot websiteWith(const std::vector<CheckRecord>& checks) {
    SiteSnapshot snapshot;
    snapshot.site = siteNamed("a");
    for (const CheckRecord& check : checks)
        snapshot.history.append(check);
    return snapshot;
}

inline ProviderSnapshot serviceWith(const std::vector<ProviderCheckRecord>& records) {
    ProviderSnapshot snapshot;
    snapshot.provider = FakeServices::serviceNamed("openai", "OpenAI");
    for (const ProviderCheckRecord& record : records)
        snapshot.history.append(record);
    return snapshot;
}

inline SiteConfiguration withServices(SiteConfiguration configuration, std::vector<std::string> ids) {
    configuration.providerStatus = {.enabled = true, .providerIDs = std::move(ids)};
    return configuration;
}

/// What the dashboard says of a real model over a real state directory.
struct DashboardTest : MonitorTest {
    const LocaleFormats formats = formatsOf("de_DE");
    SettingsAccess settings = SettingsAccess::available;

    [[nodiscard]] DashboardContent content() const { return dashboardContent(*model, nullptr, settings, formats); }
    /// The body, which has to be of that kind.
    template <class Body> [[nodiscard]] Body body() const { return std::get<Body>(content().body); }
    [[nodiscard]] bool isLoadingShown() const { return std::holds_alternative<LoadingContent>(content().body); }

    [[nodiscard]] Command command(CommandID id) const {
        const std::vector<Command> commands = content().commands;
        return *std::ranges::find(commands, id, &Command::id);
    }
    [[nodiscard]] Command startOrStop() const { return command(CommandID::startOrStop); }
    [[nodiscard]] Command checkNow() const { return command(CommandID::checkNow); }
};

} // namespace kestrin
