#include "dashboard/DashboardCommands.h"

#include "dashboard/HeaderPresentation.h"
#include "monitoring/MonitoredTargets.h"

#include <algorithm>
#include <string>
#include <utility>

namespace kestrin {

namespace {

/// Why there is nothing to check on the page that shows; empty when there is something.
std::string nothingToCheck(const AppModel& model) {
    if (showsServicesPage(model))
        return model.providerSnapshots().empty() ? "Choose a service in Settings first." : "";
    const auto& configuration = model.configuration();
    if (configuration && std::ranges::any_of(configuration->sites,
                             [](const SiteDefinition& site) { return site.enabled && isMonitorable(site); }))
        return "";
    if (model.isLoading()) return "Wait until the monitor history is loaded.";
    if (!configuration) return "Monitor data couldn’t be read. Reopen the dashboard to try again.";
    if (configuration->sites.empty()) return "Add a website in Settings first.";
    if (std::ranges::none_of(configuration->sites, &SiteDefinition::enabled))
        return "Turn on a website in Settings first.";
    return "Give a website a public HTTPS URL in Settings first.";
}

Command command(CommandID id, std::string label, std::string reason = {}) {
    const bool enabled = reason.empty();
    return {.id = id, .label = std::move(label), .enabled = enabled, .reason = std::move(reason)};
}

} // namespace

std::vector<Command> dashboardCommands(const AppModel& model, SettingsAccess settings) {
    const std::string nothing = nothingToCheck(model);
    const std::string busy = model.isChecking() ? "A check is running. Wait until it has finished." : nothing;
    const std::string closed =
        settings == SettingsAccess::available ? "" : "Settings are not available in this version yet.";
    return {command(CommandID::openDashboard, "Open dashboard"),
        // Whatever has become of the targets, monitoring that is on can be stopped.
        model.isMonitoring() ? command(CommandID::startOrStop, "Stop")
                             : command(CommandID::startOrStop, "Start", nothing),
        command(CommandID::checkNow, model.isChecking() ? "Checking" : "Check now", busy),
        command(CommandID::openSettings, "Settings", closed), command(CommandID::quit, "Quit")};
}

} // namespace kestrin
