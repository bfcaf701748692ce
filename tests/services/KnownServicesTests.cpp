#include "services/KnownServices.h"

#include "destinations/CustomProviderURLPolicy.h"
#include "services/CustomProviderStoreError.h"
#include "services/IncludedServices.h"
#include "services/ProviderAdapters.h"

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

Words textsOf(const std::vector<WebURL>& urls) {
    Words texts;
    for (const WebURL& url : urls)
        texts.push_back(url.text);
    return texts;
}

CustomProviderDefinition addedService(const std::string& id, bool enabled = true) {
    return {.id = id,
        .name = "Added " + id,
        .statusPageURL = "https://status.example.com/",
        .adapter = "statuspage-v2",
        .adapterVersion = 1,
        .enabled = enabled};
}

template <class Error> std::string refusal(const CustomProviderDefinition& stored) {
    try {
        (void)KnownServices().definition(stored);
    } catch (const Error& error) {
        return error.message;
    }
    return "not refused";
}

TEST(KnownServices, comeInTheirFixedOrder) {
    const KnownServices known;
    EXPECT_EQ(includedServiceIDs(), (Words{"openai", "claude"}));
    EXPECT_EQ(idsOf(known.includedServices()), includedServiceIDs());
    EXPECT_EQ(known.includedServices().at(0).name, "OpenAI");
    EXPECT_EQ(known.includedServices().at(1).name, "Claude");
}

TEST(KnownServices, areCompleteDefinitionsWithPublicAddresses) {
    const KnownServices known;
    for (const ProviderDefinition& service : known.includedServices()) {
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

TEST(KnownServices, areBuiltOnce) {
    EXPECT_EQ(&bundledProviderDefinitions(), &bundledProviderDefinitions());
    EXPECT_EQ(&KnownServices().includedServices(), &bundledProviderDefinitions());
}

TEST(TheDefinitionOfAnAddedService, takesItsRecordAndBothEndpointsOfAStatuspage) {
    const ProviderDefinition service = KnownServices().definition(addedService("provider-1"));
    EXPECT_EQ(service.id, "provider-1");
    EXPECT_EQ(service.name, "Added provider-1");
    EXPECT_EQ(service.adapter, (ProviderAdapterIdentity{"statuspage-v2", 1}));
    EXPECT_EQ(service.source, ProviderSource::custom);
    EXPECT_EQ(service.publicStatusURL, validatedCustomProviderURL("https://status.example.com/"));
    EXPECT_EQ(textsOf(service.statusURLs),
        (Words{"https://status.example.com/api/v2/status.json", "https://status.example.com/api/v2/summary.json"}));
}

TEST(TheDefinitionOfAnAddedService, knowsEveryFeedFormatThereIs) {
    for (const ProviderAdapterIdentity& adapter : supportedProviderAdapters()) {
        CustomProviderDefinition stored = addedService("provider-1");
        stored.adapter = adapter.id;
        stored.statusPageURL = "https://slack-status.com/some/page";
        const ProviderDefinition service = KnownServices().definition(stored);
        EXPECT_EQ(service.adapter, adapter);
        EXPECT_EQ(service.statusURLs, statusEndpoints(service.publicStatusURL, adapter.id, adapter.version));
        EXPECT_FALSE(service.statusURLs.empty()) << adapter.id;
    }
}

TEST(TheDefinitionOfAnAddedService, hasNoEndpointWhereItsFormatIsNotSpoken) {
    CustomProviderDefinition stored = addedService("provider-1");
    stored.adapter = "slack-status-v2";
    EXPECT_EQ(KnownServices().definition(stored).statusURLs, std::vector<WebURL>());
}

TEST(TheDefinitionOfAnAddedService, needsANewerProgramForAnAdapterThatIsNotKnown) {
    const std::string newer = "This status-service adapter needs a newer Kestrin version.";
    CustomProviderDefinition stored = addedService("provider-1");
    stored.adapter = "statuspage-v3";
    EXPECT_EQ(refusal<CustomProviderStoreError>(stored), newer);
    stored.adapter = "Statuspage-v2";
    EXPECT_EQ(refusal<CustomProviderStoreError>(stored), newer);
    stored.adapter = "statuspage-v2";
    stored.adapterVersion = 2;
    EXPECT_EQ(refusal<CustomProviderStoreError>(stored), newer);
}

TEST(TheDefinitionOfAnAddedService, judgesThePageBeforeTheAdapter) {
    CustomProviderDefinition stored = addedService("provider-1");
    stored.adapter = "unknown";
    stored.statusPageURL = "http://status.example.com/";
    EXPECT_EQ(refusal<CustomProviderURLPolicy::ValidationError>(stored), "Public status page URLs must use HTTPS.");
    stored.statusPageURL = "https://10.0.0.1/";
    EXPECT_EQ(refusal<CustomProviderURLPolicy::ValidationError>(stored),
        "Private, local, and reserved status destinations are blocked.");
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
    const KnownServices directory;
    CustomProviderConfiguration added;
    added.providers = {addedService("provider-3"), addedService("provider-2", false), addedService("provider-1")};
    const auto services = servicesOfRun(directory, {"claude"}, added);
    EXPECT_EQ(idsOf(services), (Words{"claude", "provider-3", "provider-1"}));
    EXPECT_EQ(services.back().source, ProviderSource::custom);
}

TEST(ServicesOfARun, mayHaveTwoAddedOnesWithTheSameName) {
    const KnownServices directory;
    CustomProviderConfiguration added;
    added.providers = {addedService("provider-1"), addedService("provider-2")};
    added.providers[0].name = added.providers[1].name = "Twin";
    added.providers[1].statusPageURL = "https://status.example.org/";
    const auto services = servicesOfRun(directory, {}, added);
    EXPECT_EQ(idsOf(services), (Words{"provider-1", "provider-2"}));
    EXPECT_EQ(services[0].name, services[1].name);
}

TEST(ServicesOfARun, failWithTheFirstAddedOneThatCannotBeBuilt) {
    const KnownServices directory;
    CustomProviderConfiguration added;
    added.providers = {addedService("provider-1"), addedService("provider-2")};
    added.providers[1].adapter = "unknown";
    EXPECT_THROW((void)servicesOfRun(directory, {}, added), CustomProviderStoreError);
    added.providers[1].enabled = false;
    EXPECT_EQ(servicesOfRun(directory, {}, added).size(), 1U) << "one that is off need not be known";
}

} // namespace
} // namespace kestrin
