#include "services/KnownServices.h"

#include "services/CustomProviderStoreError.h"
#include "services/IncludedServices.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace kestrin {
namespace {

using Words = std::vector<std::string>;

Words idsOf(const std::vector<ProviderDefinition>& services) {
    Words ids;
    for (const ProviderDefinition& service : services)
        ids.push_back(service.id);
    return ids;
}

CustomProviderDefinition addedService(const std::string& id, bool enabled = true) {
    return {.id = id,
        .name = "Added " + id,
        .statusPageURL = "https://status.example.com/",
        .adapter = "statuspage-v2",
        .adapterVersion = 1,
        .enabled = enabled};
}

/// Knows every added service, unlike the directory of this build.
class GenerousDirectory : public ServiceDirectory {
public:
    [[nodiscard]] const std::vector<ProviderDefinition>& includedServices() const override {
        return known_.includedServices();
    }
    [[nodiscard]] ProviderDefinition definition(const CustomProviderDefinition& stored) const override {
        if (stored.adapter == "unknown") throw CustomProviderStoreError("The adapter is not known.");
        ProviderDefinition service;
        service.id = stored.id;
        service.source = ProviderSource::custom;
        return service;
    }

private:
    KnownServices known_;
};

TEST(KnownServices, comeInTheirFixedOrder) {
    const KnownServices known;
    EXPECT_EQ(includedServiceIDs(), (Words{"openai", "claude"}));
    EXPECT_EQ(idsOf(known.includedServices()), includedServiceIDs());
}

TEST(KnownServices, areCompleteDefinitionsWithPublicAddresses) {
    const KnownServices known;
    std::set<std::string> names;
    for (const ProviderDefinition& service : known.includedServices()) {
        EXPECT_TRUE(names.insert(service.name).second) << service.name;
        EXPECT_EQ(service.adapter, (ProviderAdapterIdentity{"statuspage-v2", 1}));
        EXPECT_EQ(service.source, ProviderSource::bundledOfficial);
        EXPECT_EQ(service.publicStatusURL.scheme, "https");
        ASSERT_EQ(service.statusURLs.size(), 2U);
        EXPECT_EQ(service.statusURLs[0].text, service.publicStatusURL.text + "api/v2/status.json");
        EXPECT_EQ(service.statusURLs[1].text, service.publicStatusURL.text + "api/v2/summary.json");
        for (const WebURL& url : service.statusURLs)
            EXPECT_EQ(url.host, service.publicStatusURL.host);
    }
}

TEST(KnownServices, cannotCheckAnAddedServiceYet) {
    const KnownServices known;
    try {
        (void)known.definition(addedService("provider-1"));
        FAIL() << "no adapter of this build serves it";
    } catch (const CustomProviderStoreError& error) {
        EXPECT_EQ(error.message, "This status-service adapter needs a newer Kestrin version.");
    }
}

TEST(ServicesOfARun, areTheIncludedOnesSelectedInTheirOwnOrder) {
    const KnownServices known;
    EXPECT_EQ(idsOf(servicesOfRun(known, {"claude", "openai"}, {})), (Words{"openai", "claude"}));
    EXPECT_EQ(idsOf(servicesOfRun(known, {"claude"}, {})), (Words{"claude"}));
    EXPECT_EQ(idsOf(servicesOfRun(known, {}, {})), Words{});
}

TEST(ServicesOfARun, passOverIdentifiersThatNobodyKnowsAndRepetitions) {
    const KnownServices known;
    EXPECT_EQ(idsOf(servicesOfRun(known, {"nobody-knows", "claude", "claude"}, {})), (Words{"claude"}));
}

TEST(ServicesOfARun, areFollowedByTheEnabledAddedOnesInFileOrder) {
    const GenerousDirectory directory;
    CustomProviderConfiguration added;
    added.providers = {addedService("provider-3"), addedService("provider-2", false), addedService("provider-1")};
    const auto services = servicesOfRun(directory, {"claude"}, added);
    EXPECT_EQ(idsOf(services), (Words{"claude", "provider-3", "provider-1"}));
    EXPECT_EQ(services.back().source, ProviderSource::custom);
}

TEST(ServicesOfARun, failWithTheFirstAddedOneThatCannotBeBuilt) {
    const GenerousDirectory directory;
    CustomProviderConfiguration added;
    added.providers = {addedService("provider-1"), addedService("provider-2")};
    added.providers[1].adapter = "unknown";
    EXPECT_THROW((void)servicesOfRun(directory, {}, added), CustomProviderStoreError);
    added.providers[1].enabled = false;
    EXPECT_EQ(servicesOfRun(directory, {}, added).size(), 1U) << "one that is off need not be known";
}

} // namespace
} // namespace kestrin
