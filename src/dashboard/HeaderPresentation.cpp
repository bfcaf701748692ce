#include "dashboard/HeaderPresentation.h"

#include "dashboard/ForeignText.h"
#include "dashboard/WebsiteState.h"
#include "monitoring/MonitorPage.h"

namespace kestrin {

namespace {

std::optional<SitePickerContent> sitePicker(const AppModel& model) {
    if (model.visibleSnapshots().size() < 2 || showsServicesPage(model)) return std::nullopt;
    SitePickerContent picker;
    picker.accessibleLabel = "Site";
    for (const SiteSnapshot& snapshot : model.visibleSnapshots()) {
        const WebsiteState state = stateOf(snapshot);
        picker.entries.push_back({.id = snapshot.site.id,
            .name = shownName(snapshot.site.name),
            .state = state.badge,
            .color = state.color});
    }
    picker.selectedID = model.selectedSiteID();
    if (const SiteSnapshot* selected = model.selectedSnapshot(); selected && picker.selectedID.empty())
        picker.selectedID = selected->site.id;
    return picker;
}

} // namespace

bool showsServicesPage(const AppModel& model) {
    return model.providerStatusEnabled() && model.monitorPage() == MonitorPage::providers;
}

HeaderContent dashboardHeader(const AppModel& model) {
    return {.title = "Kestrin",
        .subtitle = model.isMonitoring() ? "Monitoring active" : "Monitoring paused",
        .picker = sitePicker(model)};
}

std::optional<PageSwitchContent> pageSwitch(const AppModel& model) {
    if (!model.providerStatusEnabled()) return std::nullopt;
    return PageSwitchContent{.accessibleLabel = "Monitor section",
        .sitesLabel = std::string(displayName(MonitorPage::sites)),
        .servicesLabel = std::string(displayName(MonitorPage::providers)),
        .showsServices = model.monitorPage() == MonitorPage::providers};
}

} // namespace kestrin
