#include "dashboard/DashboardPresentation.h"

#include "dashboard/ForeignText.h"
#include "dashboard/HeaderPresentation.h"
#include "dashboard/ServicesPagePresentation.h"
#include "dashboard/UpdateBannerPresentation.h"
#include "dashboard/WebsitePagePresentation.h"

namespace kestrin {

namespace {

constexpr const char* openSettings = "Open Settings";

using Body = decltype(DashboardContent::body);

Body websitesBody(const AppModel& model, const LocaleFormats& formats) {
    if (model.configurationIssue())
        return PanelContent{.symbol = "globe.badge.exclamationmark",
            .color = StateColor::orange,
            .title = "Website Needs Attention",
            .description = shownMessage(*model.configurationIssue()),
            .settingsButton = openSettings};
    const SiteSnapshot* selected = model.selectedSnapshot();
    if (!selected)
        return PanelContent{.symbol = "globe",
            .color = StateColor::secondary,
            .title = "Add your first website",
            .description = "Kestrin lives in the menu bar, not the Dock. Open Settings to add a website — nothing "
                           "runs until you press Start.",
            .settingsButton = openSettings};
    return websitePage(*selected, model.operationError(), formats);
}

Body servicesBody(const AppModel& model, const LocaleFormats& formats) {
    const auto& issue = model.customProviderIssue();
    if (model.providerSnapshots().empty())
        return PanelContent{.symbol = "checkmark.shield",
            .color = StateColor::secondary,
            .title = "No services enabled",
            .description = issue ? shownMessage(*issue) : "Choose services in Settings.",
            .settingsButton = openSettings};
    return servicesPage(model.providerSnapshots(), issue, formats);
}

Body bodyOf(const AppModel& model, const LocaleFormats& formats) {
    // Only the very first load shows itself; a later one leaves the last content up.
    if (model.isLoading() && !model.lastLoadedAt()) return LoadingContent{"Loading monitor history…"};
    if (model.loadError())
        return PanelContent{.symbol = "exclamationmark.triangle",
            .color = StateColor::orange,
            .title = "Couldn’t Read Monitor Data",
            .description = shownMessage(*model.loadError()),
            .settingsButton = std::nullopt};
    return showsServicesPage(model) ? servicesBody(model, formats) : websitesBody(model, formats);
}

StatusBarContent statusBar(const AppModel& model, const std::string& interval) {
    StatusBarContent bar;
    bar.isBusy = model.isChecking();
    if (!bar.isBusy) bar.symbol = model.isMonitoring() ? "dot.radiowaves.left.and.right" : "pause.circle";
    if (!bar.isBusy && model.isMonitoring()) bar.color = StateColor::green;
    if (model.isChecking())
        bar.text = "Checking configured sites…";
    else
        bar.text = model.isMonitoring() ? "Checking every " + interval : "Monitoring is stopped";
    bar.secondLine = "All activity ends when this app quits.";
    return bar;
}

} // namespace

std::string intervalText(std::int64_t seconds, const LocaleFormats& formats) {
    return seconds >= 120 ? formats.integer(seconds / 60) + " minutes" : "1 minute";
}

NoteContent launchNotice(std::string_view message) {
    return {"exclamationmark.triangle.fill", StateColor::orange, shownMessage(message)};
}

DashboardContent dashboardContent(
    const AppModel& model, const UpdateObservation* update, SettingsAccess settings, const LocaleFormats& formats) {
    const LocaleFormats present = formats.withPresentTimeZone();
    const std::string interval = intervalText(model.intervalSeconds(), present);
    DashboardContent content;
    content.banner = updateBanner(update);
    content.header = dashboardHeader(model);
    content.pageSwitch = pageSwitch(model);
    content.body = bodyOf(model, present);
    content.statusBar = statusBar(model, interval);
    content.checkNowSymbol = "arrow.clockwise";
    content.intervalText = model.isMonitoring() ? interval + " interval" : "Paused";
    content.settingsSymbol = "gearshape";
    content.commands = dashboardCommands(model, settings);
    return content;
}

} // namespace kestrin
