#include "dashboard/HeaderPresentation.h"

#include "dashboard/DashboardTest.h"
#include "dashboard/UpdateBannerPresentation.h"

namespace kestrin {
namespace {

struct DashboardHeader : DashboardTest {};

TEST_F(DashboardHeader, saysWhetherMonitoringIsActive) {
    load(configurationOf({"a"}));
    EXPECT_EQ(content().header.title, "Kestrin");
    EXPECT_EQ(content().header.subtitle, "Monitoring paused");
    model->startMonitoring();
    EXPECT_EQ(content().header.subtitle, "Monitoring active");
}

TEST_F(DashboardHeader, oneWebsiteAloneHasNoPicker) {
    load(configurationOf({"a"}));
    EXPECT_FALSE(content().header.picker);
}

TEST_F(DashboardHeader, thePickerListsEveryWebsiteInConfigurationOrderWithItsBadge) {
    SiteConfiguration configuration = configurationOf({"d", "c", "b", "a"});
    configuration.sites[3].enabled = false;
    writeSites(configuration);
    (void)files.appendCheck(checkOf("d", true));
    (void)files.appendCheck(checkOf("c", false));
    (void)files.appendCheck(checkOf("a", true));
    load();
    ASSERT_TRUE(content().header.picker);
    EXPECT_EQ(content().header.picker->accessibleLabel, "Site");
    const std::vector<SitePickerEntry> expected = {{"d", "Site d", "UP", StateColor::green},
        {"c", "Site c", "DOWN", StateColor::red}, {"b", "Site b", "NO DATA", StateColor::secondary},
        {"a", "Site a", "DISABLED", StateColor::secondary}};
    EXPECT_EQ(content().header.picker->entries, expected);
}

TEST_F(DashboardHeader, thePickerNamesTheWebsiteThatIsSelected) {
    load(configurationOf({"a", "b"}));
    EXPECT_EQ(content().header.picker->selectedID, "a");
    model->selectSite("b");
    settle();
    EXPECT_EQ(content().header.picker->selectedID, "b");
}

TEST_F(DashboardHeader, theServicesPageHasNoPickerEvenWithSeveralWebsites) {
    load(withServices(configurationOf({"a", "b"}), {"openai"}));
    EXPECT_TRUE(content().header.picker);
    model->setMonitorPage(MonitorPage::providers);
    EXPECT_FALSE(content().header.picker);
}

TEST_F(DashboardHeader, thePickerComesBackWhenServicesAreOffThoughTheirPageWasChosen) {
    load(configurationOf({"a", "b"}));
    model->setMonitorPage(MonitorPage::providers);
    EXPECT_TRUE(content().header.picker);
}

TEST_F(DashboardHeader, thePageSwitchAppearsOnlyWhileServicesAreOn) {
    load(configurationOf({"a"}));
    EXPECT_FALSE(content().pageSwitch);
    writeSites(withServices(configurationOf({"a"}), {"openai"}));
    model->reload();
    settle();
    EXPECT_EQ(content().pageSwitch, (PageSwitchContent{"Monitor section", "Sites", "Services", false}));
    model->setMonitorPage(MonitorPage::providers);
    EXPECT_TRUE(content().pageSwitch->showsServices);
}

TEST_F(DashboardHeader, aHugeNameIsShortenedInThePicker) {
    SiteConfiguration configuration = configurationOf({"a", "b"});
    configuration.sites[0].name = std::string(1'000'000, 'x');
    load(configuration);
    EXPECT_LT(content().header.picker->entries[0].name.size(), 500U);
    EXPECT_LT(body<WebsitePageContent>().summary.name.size(), 500U);
}

TEST(UpdateBanner, isAbsentWithoutAnUpdateController) {
    EXPECT_FALSE(updateBanner(nullptr));
}

TEST(UpdateBanner, isAbsentWhileTheControllerDoesNotAskForIt) {
    const UpdateObservation update{.showsPopoverAvailability = false, .version = "2.1.0", .build = 2100};
    EXPECT_FALSE(updateBanner(&update));
}

TEST(UpdateBanner, namesVersionAndBuildAndWhatPressingItDoes) {
    const UpdateObservation update{.showsPopoverAvailability = true, .version = "2.1.0", .build = 2100};
    EXPECT_EQ(
        updateBanner(&update), (UpdateBannerContent{"arrow.down.circle.fill", "Kestrin 2.1.0 is available",
                                   "Open the download page", "chevron.right", "Update to Kestrin 2.1.0, build 2100",
                                   "Opens the Kestrin download page in your default browser"}));
}

TEST_F(DashboardHeader, theBannerIsPartOfTheContent) {
    load();
    const UpdateObservation update{.showsPopoverAvailability = true, .version = "2.1.0", .build = 2100};
    EXPECT_EQ(dashboardContent(*model, &update, settings, formats).banner, updateBanner(&update));
    EXPECT_FALSE(content().banner);
}

} // namespace
} // namespace kestrin
