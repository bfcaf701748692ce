#include "dashboard/view/DashboardSamples.h"

#include <algorithm>

namespace kestrin {

namespace {

DashboardContent emptyContent() {
    DashboardContent content;
    content.header = {.title = "Kestrin", .subtitle = "Monitoring active", .picker = std::nullopt};
    content.statusBar = {.isBusy = false,
        .symbol = "dot.radiowaves.left.and.right",
        .color = StateColor::green,
        .text = "Checking every 5 minutes",
        .secondLine = "All activity ends when this app quits."};
    content.isMonitoring = true;
    content.checkNowSymbol = "arrow.clockwise";
    content.intervalText = "5 minutes interval";
    content.settingsSymbol = "gearshape";
    content.commands = {{.id = CommandID::openDashboard, .label = "Open dashboard", .enabled = true, .reason = {}},
        {.id = CommandID::startOrStop, .label = "Stop", .enabled = true, .reason = {}},
        {.id = CommandID::checkNow, .label = "Check now", .enabled = true, .reason = {}},
        {.id = CommandID::openSettings, .label = "Settings", .enabled = true, .reason = {}},
        {.id = CommandID::quit, .label = "Quit", .enabled = true, .reason = {}}};
    return content;
}

ResponseChartContent chart() {
    ResponseChartContent chart;
    chart.title = "Recent response history";
    for (int index = 0; index < 30; ++index)
        chart.bars.push_back({.position = static_cast<double>(index),
            .plottedValue = index % 7 == 6 ? 300 : 100 + 5 * index,
            .up = index % 7 != 6,
            .details = "Check " + std::to_string(index)});
    chart.domainEnd = 29.5;
    chart.successfulLabel = "Successful";
    chart.failedLabel = "Failed";
    chart.countLabel = "Last 30 checks";
    chart.noChecks = "No checks recorded yet.";
    chart.accessibleLabel = "Last 30 checks: 26 successful, 4 failed.";
    return chart;
}

} // namespace

DashboardContent websiteContent() {
    DashboardContent content = emptyContent();
    content.header.picker = SitePickerContent{.accessibleLabel = "Site",
        .entries = {{.id = "one", .name = "Example Shop", .state = "UP", .color = StateColor::green},
            {.id = "two", .name = "Example Blog", .state = "DOWN", .color = StateColor::red}},
        .selectedID = "one"};
    content.pageSwitch = PageSwitchContent{.accessibleLabel = "Monitor section",
        .sitesLabel = "Sites",
        .servicesLabel = "Services",
        .showsServices = false};
    WebsitePageContent page;
    page.summary = {.name = "Example Shop",
        .url = "https://shop.example.com",
        .badge = "UP",
        .badgeColor = StateColor::green,
        .lastChecked = "10:42 AM",
        .metrics = {{{"Sampled uptime", "99.2%"}, {"Checks", "8,412"}, {"Response", "204ms"}}}};
    page.operationError = NoteContent{.symbol = "exclamationmark.triangle.fill",
        .color = StateColor::orange,
        .text = "Could not save check history: No space left on device"};
    page.chart = chart();
    page.checksTitle = "Recent checks";
    page.checks = {{.up = true,
                       .result = "HTTP 200",
                       .time = "10:42 AM",
                       .duration = "204ms",
                       .accessibleName = "Up, HTTP 200, 10:42 AM, 204ms",
                       .details = "Nov 21, 2025, 10:42 AM\nHTTP 200"},
        {.up = false,
            .result = "The request timed out.",
            .time = "10:37 AM",
            .duration = "15.0s",
            .accessibleName = "Down, The request timed out., 10:37 AM, 15.0s",
            .details = "Nov 21, 2025, 10:37 AM\nThe request timed out."}};
    page.noChecks = "No checks recorded yet.";
    page.incidentsTitle = "Detected incidents";
    page.incidents = {{.symbol = "checkmark.circle.fill",
        .color = StateColor::green,
        .word = "Recovered",
        .period = "Nov 21, 2025, 9:32 AM – 9:42 AM"}};
    page.noIncidents = {
        .symbol = "checkmark.circle", .color = StateColor::secondary, .text = "No failed periods recorded"};
    content.body = page;
    return content;
}

DashboardContent servicesContent(std::size_t count) {
    DashboardContent content = emptyContent();
    content.pageSwitch = PageSwitchContent{.accessibleLabel = "Monitor section",
        .sitesLabel = "Sites",
        .servicesLabel = "Services",
        .showsServices = true};
    ServicesPageContent page;
    page.summary = {.symbol = "exclamationmark.triangle.fill",
        .color = StateColor::orange,
        .title = "Service Status",
        .subtitle = "Published public status feeds",
        .state = "DEGRADED"};
    page.groupTitle = "Services";
    for (std::size_t index = 0; index < count; ++index) {
        ServiceRowContent row;
        row.id = std::to_string(index);
        row.symbol = "exclamationmark.triangle.fill";
        row.color = StateColor::orange;
        row.name = "Service " + row.id;
        row.state = "Degraded";
        row.summary = "Delayed delivery for some messages";
        row.lastChecked = "Checked 10:42 AM · 187ms";
        row.linkText = "Official status";
        row.linkSymbol = "arrow.up.right.square";
        row.linkURL = "https://status.example.com/";
        if (index % 2 == 0) {
            row.historyTitle = "Recent published status history";
            row.history.assign(24, {.color = StateColor::green, .isOperational = true, .details = "Operational"});
            row.history.back() = {.color = StateColor::orange, .isOperational = false, .details = "Degraded"};
            row.historyAccessibleLabel =
                "Last 24 reports: 23 operational, 1 degraded, 0 outage, 0 maintenance, 0 unknown";
        } else {
            row.noHistory = "Run Check now to fetch published status";
        }
        page.services.push_back(row);
    }
    page.note = {.symbol = "info.circle",
        .color = StateColor::secondary,
        .text = "Published status reports; not independent API verification."};
    content.body = page;
    return content;
}

DashboardContent panelContent() {
    DashboardContent content = emptyContent();
    content.body = PanelContent{.symbol = "globe",
        .color = StateColor::secondary,
        .title = "Add your first website",
        .description = "Kestrin lives in the menu bar, not the Dock. Open Settings to add a website — nothing runs "
                       "until you press Start.",
        .settingsButton = "Open Settings"};
    return content;
}

Command& commandOf(DashboardContent& content, CommandID id) {
    return *std::ranges::find(content.commands, id, &Command::id);
}

} // namespace kestrin
