#include "dashboard/PopoverContent.h"

#include "monitoring/MonitoredTargets.h"

namespace kestrin {

namespace {

bool showsServices(const AppModel& model) {
    return model.providerStatusEnabled() && !model.providerSnapshots().empty();
}

std::optional<PopoverPanel> panelOf(const AppModel& model) {
    // Only the very first load shows itself; a later one leaves the last content up.
    if (model.isLoading() && !model.lastLoadedAt()) return PopoverPanel{"Loading monitor history…", ""};
    if (model.loadError()) return PopoverPanel{"Couldn’t Read Monitor Data", *model.loadError()};
    if (model.visibleSnapshots().empty() && !showsServices(model))
        return PopoverPanel{
            "Add your first website", "Write your websites into “sites.json”. Nothing runs until you press Start."};
    return std::nullopt;
}

bool hasSomethingToCheck(const AppModel& model) {
    if (showsServices(model)) return true;
    return model.configuration() && !monitoredSites(*model.configuration()).empty();
}

} // namespace

PopoverContent popoverContent(const AppModel& model, const LocaleFormats& formats) {
    PopoverContent content;
    content.title = "Kestrin";
    content.subtitle = model.isMonitoring() ? "Monitoring active" : "Monitoring paused";
    content.panel = panelOf(model);
    if (model.configurationIssue()) content.notices.push_back(*model.configurationIssue());
    if (model.operationError()) content.notices.push_back(*model.operationError());
    if (model.customProviderIssue()) content.notices.push_back(*model.customProviderIssue());
    if (!content.panel)
        for (const SiteSnapshot& snapshot : model.visibleSnapshots())
            content.websites.push_back(websiteStatusRow(snapshot, formats));
    if (!content.panel && showsServices(model))
        for (const ProviderSnapshot& snapshot : model.providerSnapshots())
            content.services.push_back(serviceStatusRow(snapshot, formats));

    const bool canCheck = hasSomethingToCheck(model);
    content.startStopStops = model.isMonitoring();
    content.startStop = {model.isMonitoring() ? "Stop" : "Start", model.isMonitoring() || canCheck};
    content.checkNow = {model.isChecking() ? "Checking" : "Check now", !model.isChecking() && canCheck};
    content.quit = {"Quit", true};
    return content;
}

} // namespace kestrin
