#include "dashboard/ServicesPagePresentation.h"

#include "dashboard/DashboardTest.h"
#include "dashboard/ServiceStateLook.h"

#include <tuple>

namespace kestrin {
namespace {

using enum ProviderState;

std::vector<ProviderSnapshot> servicesIn(const std::vector<ProviderState>& states) {
    std::vector<ProviderSnapshot> snapshots;
    for (const ProviderState state : states)
        snapshots.push_back(serviceWith({reportAt("2026-01-31T09:05:00Z", state)}));
    return snapshots;
}

TEST(OverallState, anOutageOutweighsEverything) {
    EXPECT_EQ(overallState(servicesIn({operational, degraded, unknown, maintenance, outage})), outage);
}

TEST(OverallState, thenADegradedServiceThenAnUnknownOneThenMaintenance) {
    EXPECT_EQ(overallState(servicesIn({operational, unknown, maintenance, degraded})), degraded);
    EXPECT_EQ(overallState(servicesIn({operational, maintenance, unknown})), unknown);
    EXPECT_EQ(overallState(servicesIn({operational, maintenance})), maintenance);
    EXPECT_EQ(overallState(servicesIn({operational, operational})), operational);
}

TEST(OverallState, aServiceWithoutRecordsIsUnknown) {
    auto snapshots = servicesIn({operational});
    snapshots.push_back(serviceWith({}));
    EXPECT_EQ(overallState(snapshots), unknown);
}

TEST(OverallState, anEmptyListIsUnknown) {
    EXPECT_EQ(overallState({}), unknown);
}

TEST(OverallState, onlyTheLastRecordOfAServiceCounts) {
    const std::vector<ProviderSnapshot> snapshots = {
        serviceWith({reportAt("2026-01-31T09:00:00Z", outage), reportAt("2026-01-31T09:05:00Z", operational)})};
    EXPECT_EQ(overallState(snapshots), operational);
}

TEST(ServiceStates, eachHasItsWordSymbolAndColour) {
    using Row = std::tuple<ProviderState, const char*, const char*, StateColor>;
    for (const auto& [state, word, symbol, color] :
        {Row{operational, "Operational", "checkmark.circle.fill", StateColor::green},
            Row{degraded, "Degraded", "exclamationmark.triangle.fill", StateColor::orange},
            Row{outage, "Outage", "xmark.octagon.fill", StateColor::red},
            Row{maintenance, "Maintenance", "wrench.and.screwdriver.fill", StateColor::blue},
            Row{unknown, "Unknown", "questionmark.circle.fill", StateColor::secondary}}) {
        EXPECT_EQ(title(state), word);
        EXPECT_EQ(lookOf(state), (ServiceStateLook{symbol, color})) << word;
    }
}

TEST(ServicesPage, theSummaryNamesTheOverallStateInCapitals) {
    const auto page = servicesPage(servicesIn({operational, degraded}), std::nullopt, formatsOf("en_US"));
    EXPECT_EQ(page.summary, (ServicesSummaryContent{"exclamationmark.triangle.fill", StateColor::orange,
                                "Service Status", "Published public status feeds", "DEGRADED"}));
}

TEST(ServicesPage, theGroupListsTheServicesInTheirOrder) {
    auto snapshots = servicesIn({operational, operational});
    snapshots[0].provider.name = "Zeta";
    snapshots[1].provider.name = "Alpha";
    const auto page = servicesPage(snapshots, std::nullopt, formatsOf("en_US"));
    EXPECT_EQ(page.groupTitle, "Services");
    ASSERT_EQ(page.services.size(), 2U);
    EXPECT_EQ(page.services[0].name, "Zeta");
    EXPECT_EQ(page.services[1].name, "Alpha");
}

TEST(ServicesPage, theNoteSaysWhatTheReportsAreNot) {
    EXPECT_EQ(servicesPage(servicesIn({operational}), std::nullopt, formatsOf("en_US")).note,
        (NoteContent{
            "info.circle", StateColor::secondary, "Published status reports; not independent API verification."}));
}

TEST(ServicesPage, aProblemOfTheAddedServicesIsShownAndShortened) {
    EXPECT_FALSE(servicesPage(servicesIn({operational}), std::nullopt, formatsOf("en_US")).issue);
    const auto page = servicesPage(servicesIn({operational}), std::string(100'000, 'x'), formatsOf("en_US"));
    ASSERT_TRUE(page.issue);
    EXPECT_EQ(page.issue->symbol, "exclamationmark.triangle.fill");
    EXPECT_EQ(page.issue->color, StateColor::orange);
    EXPECT_LT(page.issue->text.size(), 2'100U);
}

} // namespace
} // namespace kestrin
