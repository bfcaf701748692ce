#include "services/ConfigurationValidation.h"

#include "services/CustomProviderValidation.h"
#include "services/IncludedServices.h"
#include "state/StateErrors.h"

#include <gtest/gtest.h>

using namespace kestrin;

namespace {

/// Refuses a definition without a name.
struct NamesRequired : CustomProviderValidating {
    void validate(const std::vector<CustomProviderDefinition>& providers) const override {
        for (const CustomProviderDefinition& provider : providers)
            if (provider.name.empty()) throw MessageError("A custom-provider name is invalid or too long.");
    }
};

SiteConfiguration acceptable() {
    return {.sites = {{.id = "site-1", .name = "One", .url = "https://one.example"},
                {.id = "site-2", .name = "Two", .url = "http://two.example", .enabled = false}},
        .activeSiteID = "site-2",
        .intervalSeconds = 600,
        .providerStatus = {.enabled = true, .providerIDs = {"claude"}}};
}

using Custom = std::optional<std::vector<CustomProviderDefinition>>;

CustomProviderDefinition custom(std::string name, bool enabled) {
    return {.id = "provider-1",
        .name = std::move(name),
        .statusPageURL = "https://status.example",
        .adapter = "statuspage-v2",
        .adapterVersion = 1,
        .enabled = enabled};
}

std::string verdict(const SiteConfiguration& configuration, const Custom& customProviders = std::nullopt,
    bool readFailed = false, bool supportedInterval = true) {
    try {
        validateConfiguration(configuration, customProviders, readFailed, supportedInterval, NamesRequired());
    } catch (const MessageError& error) {
        return error.message;
    }
    return "accepted";
}

constexpr const char* noServices =
    "The selected Kestrin configuration enables Service Status without selecting a service.";

} // namespace

TEST(ValidatingAConfiguration, acceptsOneThatMeetsEveryTest) {
    EXPECT_EQ(verdict(acceptable()), "accepted");
    SiteConfiguration configuration = acceptable();
    configuration.activeSiteID.reset();
    configuration.providerStatus.providerIDs = includedServiceIDs();
    EXPECT_EQ(verdict(configuration), "accepted");
}

TEST(ValidatingAConfiguration, needsAWebsite) {
    EXPECT_EQ(verdict(SiteConfiguration()), "The selected Kestrin configuration contains no websites.");
}

TEST(ValidatingAConfiguration, needsDifferentWebsiteIdentifiers) {
    SiteConfiguration configuration = acceptable();
    configuration.sites[1].id = "site-1";
    EXPECT_EQ(verdict(configuration), "The selected Kestrin configuration contains duplicate website identifiers.");
}

TEST(ValidatingAConfiguration, judgesEverySiteInListOrder) {
    SiteConfiguration configuration = acceptable();
    configuration.sites[0].url = "ftp://one.example";
    configuration.sites[1].name = " ";
    EXPECT_EQ(verdict(configuration),
        "Every imported website needs a complete HTTP(S) URL without embedded credentials.");
    configuration.sites[0].url = "https://one.example";
    EXPECT_EQ(verdict(configuration), "Every imported website needs a display name.");
}

TEST(ValidatingAConfiguration, needsAKnownActiveWebsite) {
    SiteConfiguration configuration = acceptable();
    configuration.activeSiteID = "site-3";
    EXPECT_EQ(verdict(configuration), "The selected Kestrin configuration refers to an unknown active website.");
}

TEST(ValidatingAConfiguration, needsASupportedIntervalOnlyWhereThatIsAsked) {
    SiteConfiguration configuration = acceptable();
    for (const std::int64_t seconds : {300, 600, 900, 1800, 3600}) {
        configuration.intervalSeconds = seconds;
        EXPECT_EQ(verdict(configuration), "accepted") << seconds;
    }
    for (const std::int64_t seconds : {-300, 0, 30, 301, 7200}) {
        configuration.intervalSeconds = seconds;
        EXPECT_EQ(verdict(configuration),
            "Choose a supported check interval in the download version before importing this data.")
            << seconds;
        EXPECT_EQ(verdict(configuration, std::nullopt, false, false), "accepted") << seconds;
    }
}

TEST(ValidatingAConfiguration, needsDifferentServiceIdentifiersThatAreIncluded) {
    SiteConfiguration configuration = acceptable();
    configuration.providerStatus.providerIDs = {"claude", "other", "claude"};
    EXPECT_EQ(
        verdict(configuration), "The selected Kestrin configuration contains duplicate provider identifiers.");
    configuration.providerStatus.providerIDs = {"claude", "other"};
    EXPECT_EQ(
        verdict(configuration), "The selected Kestrin configuration contains an unsupported provider identifier.");
    configuration.providerStatus.enabled = false;
    EXPECT_EQ(
        verdict(configuration), "The selected Kestrin configuration contains an unsupported provider identifier.")
        << "also when switched off";
}

TEST(ValidatingAConfiguration, passesOnWhatIsWrongWithAddedServices) {
    EXPECT_EQ(verdict(acceptable(), Custom({custom("", false)})), "A custom-provider name is invalid or too long.");
    EXPECT_EQ(verdict(acceptable(), Custom({custom("Added", false)})), "accepted");
}

TEST(ValidatingAConfiguration, needsAServiceWhenServicesAreOn) {
    SiteConfiguration configuration = acceptable();
    configuration.providerStatus.providerIDs.clear();
    EXPECT_EQ(verdict(configuration), noServices);
    EXPECT_EQ(verdict(configuration, Custom({custom("Added", false)})), noServices);
    EXPECT_EQ(verdict(configuration, Custom({custom("Added", true)})), "accepted");
    EXPECT_EQ(verdict(configuration, std::nullopt, true), "accepted") << "they could not be read";
    configuration.providerStatus.enabled = false;
    EXPECT_EQ(verdict(configuration), "accepted");
}

TEST(ValidatingAConfiguration, stopsAtTheFirstFailure) {
    SiteConfiguration configuration = acceptable();
    configuration.activeSiteID = "site-3";
    configuration.intervalSeconds = 1;
    configuration.providerStatus.providerIDs = {"x", "x"};
    const Custom wrong({custom("", false)});
    EXPECT_EQ(
        verdict(configuration, wrong), "The selected Kestrin configuration refers to an unknown active website.");
    configuration.activeSiteID.reset();
    EXPECT_EQ(verdict(configuration, wrong),
        "Choose a supported check interval in the download version before importing this data.");
    configuration.intervalSeconds = 300;
    EXPECT_EQ(verdict(configuration, wrong),
        "The selected Kestrin configuration contains duplicate provider identifiers.");
    configuration.providerStatus.providerIDs.clear();
    EXPECT_EQ(verdict(configuration, wrong), "A custom-provider name is invalid or too long.");
}

TEST(ValidatingAConfiguration, judgesAddedServicesAsTheirStoreDoes) {
    const CustomProviderValidation real;
    SiteConfiguration configuration = acceptable();
    configuration.providerStatus.providerIDs.clear();
    const auto judged = [&](const std::vector<CustomProviderDefinition>& added) -> std::string {
        try {
            validateConfiguration(configuration, added, false, true, real);
        } catch (const MessageError& error) {
            return error.message;
        }
        return "accepted";
    };
    EXPECT_EQ(judged({custom("Added", true)}), "accepted");
    EXPECT_EQ(judged({custom("Added", false)}), noServices);
    EXPECT_EQ(judged({custom("Ad  ded", true)}), "A custom-provider name is invalid or too long.");
    CustomProviderDefinition other = custom("Other format", true);
    other.adapter = "instatus-summary";
    EXPECT_EQ(judged({other}), "accepted") << "whatever version of their file fits";
    EXPECT_EQ(judged({custom("Added", true), other}), "Custom-provider identifiers must be unique.");
    other.id = "provider-2";
    EXPECT_EQ(judged({custom("Added", true), other}), "Each additional status service must use a unique host.");
}
