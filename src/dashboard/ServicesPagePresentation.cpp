#include "dashboard/ServicesPagePresentation.h"

#include "dashboard/ForeignText.h"
#include "dashboard/ServiceRowPresentation.h"
#include "dashboard/ServiceStateLook.h"

#include <algorithm>

namespace kestrin {

namespace {

std::string inCapitals(std::string_view word) {
    std::string capitals(word);
    std::ranges::transform(capitals, capitals.begin(),
        [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return capitals;
}

} // namespace

ServicesPageContent servicesPage(std::span<const ProviderSnapshot> snapshots,
    const std::optional<std::string>& issue, const LocaleFormats& formats) {
    ServicesPageContent page;
    if (issue) page.issue = NoteContent{"exclamationmark.triangle.fill", StateColor::orange, shownMessage(*issue)};
    const ProviderState state = overallState(snapshots);
    const ServiceStateLook look = lookOf(state);
    page.summary = {.symbol = look.symbol,
        .color = look.color,
        .title = "Service Status",
        .subtitle = "Published public status feeds",
        .state = inCapitals(title(state))};
    page.groupTitle = "Services";
    for (const ProviderSnapshot& snapshot : snapshots)
        page.services.push_back(serviceRow(snapshot, formats));
    page.note = {
        "info.circle", StateColor::secondary, "Published status reports; not independent API verification."};
    return page;
}

} // namespace kestrin
