#include "services/CustomProviderValidation.h"

#include "services/CustomProviderSamples.h"
#include "services/CustomProviderStoreError.h"
#include "services/KnownServices.h"
#include "services/ProviderAdapters.h"
#include "state/ThrownMessage.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

using namespace kestrin;

namespace {

constexpr std::string_view newerFormat = "This status-service format needs a newer Kestrin version.";
constexpr std::string_view mismatched = "Kestrin refused mismatched status-service settings.";
constexpr std::string_view tooMany = "Kestrin refused an oversized custom-provider definition set.";
constexpr std::string_view unsafeID = "Kestrin refused an unsafe custom-provider identifier.";
constexpr std::string_view takenID = "Custom-provider identifiers must be unique.";
constexpr std::string_view newerAdapter = "This status-service adapter needs a newer Kestrin version.";
constexpr std::string_view badName = "A custom-provider name is invalid or too long.";
constexpr std::string_view incompletePage = "Enter a complete public status page URL.";
constexpr std::string_view takenHost = "Each additional status service must use a unique host.";
constexpr std::string_view accepted = "no error";

std::string verdict(std::int64_t version, const std::vector<CustomProviderDefinition>& providers) {
    return thrownMessage<CustomProviderStoreError>(
        [&] { validateCustomProviders({.schemaVersion = version, .providers = providers}); });
}

std::string verdict(const CustomProviderDefinition& definition) {
    return verdict(2, {definition});
}

template <class Field> CustomProviderDefinition with(Field CustomProviderDefinition::* field, Field value) {
    CustomProviderDefinition definition = addedService(1);
    definition.*field = std::move(value);
    return definition;
}

CustomProviderDefinition identified(std::string id) {
    return with(&CustomProviderDefinition::id, std::move(id));
}

CustomProviderDefinition named(std::string name) {
    return with(&CustomProviderDefinition::name, std::move(name));
}

CustomProviderDefinition onPage(std::string page, std::string adapter = "statuspage-v2") {
    CustomProviderDefinition definition = with(&CustomProviderDefinition::statusPageURL, std::move(page));
    definition.adapter = std::move(adapter);
    return definition;
}

CustomProviderDefinition readBy(std::string adapter, std::int64_t version = 1) {
    CustomProviderDefinition definition = with(&CustomProviderDefinition::adapter, std::move(adapter));
    definition.adapterVersion = version;
    return definition;
}

std::string repeated(std::string_view text, std::size_t count) {
    std::string all;
    for (; count > 0; --count)
        all += text;
    return all;
}

} // namespace

TEST(ValidatingAddedServices, acceptsNoneAndSomeInEitherVersion) {
    for (const std::int64_t version : {1, 2}) {
        EXPECT_EQ(verdict(version, {}), accepted);
        EXPECT_EQ(verdict(version, addedServices(3)), accepted);
    }
}

TEST(ValidatingAddedServices, needsANewerProgramForAnyOtherVersionWhateverElseIsWrong) {
    const std::vector<CustomProviderDefinition> wrong(101, identified("x"));
    for (const std::int64_t version : {std::int64_t{3}, std::int64_t{0}, std::int64_t{-1}, INT64_MAX, INT64_MIN}) {
        EXPECT_EQ(verdict(version, {}), newerFormat) << version;
        EXPECT_EQ(verdict(version, wrong), newerFormat) << version;
    }
}

TEST(
    ValidatingAddedServices, refusesVersion1WithAnInstatusDefinitionAsMismatchedAndAcceptsTheSameListWithVersion2) {
    const std::vector<CustomProviderDefinition> services = {addedService(2), readBy("instatus-summary")};
    EXPECT_EQ(verdict(1, services), mismatched);
    EXPECT_EQ(verdict(2, services), accepted);
}

TEST(ValidatingAddedServices, refusesAnyOtherIdentityInVersion1BeforeItCountsOrLooksAtIdentifiers) {
    EXPECT_EQ(verdict(1, {readBy("statuspage-v2", 2)}), mismatched);
    EXPECT_EQ(verdict(1, {readBy("unheard-of")}), mismatched);
    EXPECT_EQ(verdict(1, std::vector<CustomProviderDefinition>(101, readBy("instatus-summary"))), mismatched);
    CustomProviderDefinition unsafe = readBy("instatus-summary");
    unsafe.id = "x";
    EXPECT_EQ(verdict(1, {unsafe}), mismatched);
}

TEST(ValidatingAddedServices, acceptsAHundredAndRefusesOneMoreBeforeItLooksAtAny) {
    EXPECT_EQ(verdict(1, addedServices(100)), accepted);
    EXPECT_EQ(verdict(1, addedServices(101)), tooMany);
    EXPECT_EQ(verdict(1, std::vector<CustomProviderDefinition>(101, identified("x"))), tooMany);
}

TEST(ValidatingAddedServices, refusesTheIdentifiersProvider0AndProvider01AsUnsafeAndAcceptsProvider10) {
    EXPECT_EQ(verdict(identified("provider-0")), unsafeID);
    EXPECT_EQ(verdict(identified("provider-01")), unsafeID);
    EXPECT_EQ(verdict(identified("provider-10")), accepted);
}

TEST(ValidatingAddedServices, judgesEveryIdentifierByItsPattern) {
    for (const char* id : {"", "provider-", "provider", "1", "Provider-1", "provider-1 ", " provider-1",
             "provider-1\n", "provider-1a", "provider--1", "provider-+1", "provider-1.0", "provider-\xD9\xA1",
             "../provider-1", "provider-1/2", "xprovider-1", "site-1"})
        EXPECT_EQ(verdict(identified(id)), unsafeID) << id;
    EXPECT_EQ(verdict(identified(std::string("provider-1\0", 11))), unsafeID);
    EXPECT_EQ(verdict(identified("provider-9")), accepted);
    EXPECT_EQ(verdict(identified("provider-1" + std::string(5'000, '0'))), accepted) << "of any length";
}

TEST(ValidatingAddedServices, refusesAnIdentifierThatWasSeenBefore) {
    CustomProviderDefinition again = addedService(2);
    again.id = "provider-1";
    EXPECT_EQ(verdict(2, {addedService(1), again}), takenID);
}

TEST(ValidatingAddedServices, acceptsTheFourAdaptersInVersion1AndNoOther) {
    ASSERT_EQ(supportedProviderAdapters().size(), 4U);
    for (const char* adapter : {"statuspage-v2", "betterstack-index", "instatus-summary"}) {
        EXPECT_EQ(verdict(readBy(adapter)), accepted) << adapter;
        for (const std::int64_t version : {std::int64_t{0}, std::int64_t{2}, INT64_MAX})
            EXPECT_EQ(verdict(readBy(adapter, version)), newerAdapter) << adapter << version;
    }
    EXPECT_EQ(verdict(onPage("https://slack-status.com/", "slack-status-v2")), accepted);
    for (const char* adapter : {"", "Statuspage-v2", "statuspage-v3", "statuspage-v2 "})
        EXPECT_EQ(verdict(readBy(adapter)), newerAdapter) << adapter;
}

TEST(ValidatingAddedServices, refusesANameWithADoubleBlankSinceCleaningWouldChangeIt) {
    EXPECT_EQ(verdict(named("Status  Page")), badName);
    EXPECT_EQ(verdict(named("Status Page")), accepted);
}

TEST(ValidatingAddedServices, refusesEveryNameThatIsEmptyOrThatCleaningWouldChange) {
    for (const char* name :
        {"", " ", " Name", "Name ", "Na\nme", "Na\tme", "Na\u202Eme", "Na\u0007me", "Na\u2028me", "Na\xFFme"})
        EXPECT_EQ(verdict(named(name)), badName) << name;
    EXPECT_EQ(verdict(named(std::string("Na\0me", 5))), badName);
}

TEST(ValidatingAddedServices, acceptsANameOfEightyCharactersAndRefusesOneMore) {
    EXPECT_EQ(verdict(named(std::string(80, 'n'))), accepted);
    EXPECT_EQ(verdict(named(std::string(81, 'n'))), badName);
    EXPECT_EQ(verdict(named(repeated("e\u0301", 80))), accepted) << "characters are what a reader takes for one";
    EXPECT_EQ(verdict(named(repeated("e\u0301", 81))), badName);
}

TEST(ValidatingAddedServices, allowsTheSameNameTwice) {
    CustomProviderDefinition namesake = addedService(2);
    namesake.name = addedService(1).name;
    EXPECT_EQ(verdict(1, {addedService(1), namesake}), accepted);
}

TEST(ValidatingAddedServices, passesOnWhatTheURLPolicySays) {
    const std::vector<std::pair<std::string, std::string_view>> pages = {
        {"https://a.example/" + std::string(2'031, 'p'), "The public status page URL is too long."},
        {"", incompletePage},
        {"status.example.com", incompletePage},
        {"https:///path", incompletePage},
        {"https://status.example.com/\xFF", incompletePage},
        {"http://status.example.com", "Public status page URLs must use HTTPS."},
        {"https://me@status.example.com", "Public status page URLs cannot contain embedded credentials."},
        {"https://status.example.com/?", "Public status page URLs cannot contain a query or fragment."},
        {"https://status.example.com/#top", "Public status page URLs cannot contain a query or fragment."},
        {"https://status.example.com:8443/", "Public status page URLs must use the standard HTTPS port."},
        {"https://printer.local/", "Private, local, and reserved status destinations are blocked."},
        {"https://192.168.1.1/", "Private, local, and reserved status destinations are blocked."},
    };
    for (const auto& [page, message] : pages)
        EXPECT_EQ(verdict(onPage(page)), message) << page;
    EXPECT_EQ(verdict(onPage("https://a.example/" + std::string(2'030, 'p'))), accepted) << "2,048 bytes";
    EXPECT_EQ(verdict(onPage("https://status.example.com:443")), accepted);
}

TEST(ValidatingAddedServices, needsAPageOnWhichTheAdapterHasAnEndpoint) {
    EXPECT_EQ(verdict(onPage("https://status.example.com/", "slack-status-v2")), incompletePage);
    EXPECT_EQ(verdict(onPage("https://slack-status.com.example/", "slack-status-v2")), incompletePage);
}

TEST(ValidatingAddedServices, refusesADefinitionOnTheHostOfAnIncludedServiceAsNotUnique) {
    for (const ProviderDefinition& included : bundledProviderDefinitions()) {
        const std::string host = included.publicStatusURL.host;
        EXPECT_EQ(verdict(onPage("https://" + host + "/")), takenHost) << host;
        EXPECT_EQ(verdict(onPage("https://" + host + "/another/path")), takenHost) << "whatever its path";
        EXPECT_EQ(verdict(onPage("HTTPS://" + host + ".:443")), takenHost) << "with a dot at its end";
        EXPECT_EQ(verdict(onPage("https://sub." + host)), accepted) << "a name below it is another host";
    }
}

TEST(ValidatingAddedServices, refusesAHostThatWasSeenBeforeInAnyLetterCaseAndWithAnyPath) {
    for (const char* page :
        {"https://status1.example.com/", "https://STATUS1.example.COM./path", "https://.status1.example.com"})
        EXPECT_EQ(verdict(1, {addedService(1),
                                 [&] {
                                     CustomProviderDefinition again = addedService(2);
                                     again.statusPageURL = page;
                                     return again;
                                 }()}),
            takenHost)
            << page;
}

TEST(ValidatingAddedServices, judgesADefinitionStepByStepInTheSetOrder) {
    // Everything is wrong; then one thing after the other is put right.
    CustomProviderDefinition wrong = {.id = "provider-01",
        .name = "a  b",
        .statusPageURL = "http://status1.example.com/",
        .adapter = "slack-status-v2",
        .adapterVersion = 2,
        .enabled = false};
    const auto judged = [&] { return verdict(2, {addedService(1), wrong}); };
    EXPECT_EQ(judged(), unsafeID);
    wrong.id = "provider-1";
    EXPECT_EQ(judged(), takenID);
    wrong.id = "provider-2";
    EXPECT_EQ(judged(), newerAdapter);
    wrong.adapterVersion = 1;
    EXPECT_EQ(judged(), badName);
    wrong.name = "a b";
    EXPECT_EQ(judged(), "Public status page URLs must use HTTPS.");
    wrong.statusPageURL = "https://status1.example.com/";
    EXPECT_EQ(judged(), incompletePage);
    wrong.adapter = "betterstack-index";
    EXPECT_EQ(judged(), takenHost);
    wrong.statusPageURL = "https://status2.example.com/";
    EXPECT_EQ(judged(), accepted);
}

TEST(ValidatingAddedServices, judgesThemInListOrder) {
    CustomProviderDefinition first = addedService(1);
    first.statusPageURL = "http://status1.example.com";
    CustomProviderDefinition second = addedService(2);
    second.id = "x";
    EXPECT_EQ(verdict(1, {first, second}), "Public status page URLs must use HTTPS.");
    EXPECT_EQ(verdict(1, {second, first}), unsafeID);
}

TEST(ValidatingAddedServices, judgesThoseThatAreSwitchedOffLikeOthers) {
    CustomProviderDefinition off = addedService(1);
    off.enabled = false;
    EXPECT_EQ(verdict(off), accepted);
    off.name = "";
    EXPECT_EQ(verdict(off), badName);
}

TEST(TheVersionOfTheFormat, isTheLowestThatFits) {
    EXPECT_EQ(customProviderSchemaVersion({}), 1);
    EXPECT_EQ(customProviderSchemaVersion(addedServices(2)), 1);
    for (const char* adapter : {"betterstack-index", "instatus-summary", "slack-status-v2"})
        EXPECT_EQ(customProviderSchemaVersion({addedService(2), readBy(adapter)}), 2) << adapter;
    EXPECT_EQ(customProviderSchemaVersion({readBy("statuspage-v2", 2)}), 2);
}

TEST(ValidatingAListAlone, takesTheVersionThatFits) {
    const CustomProviderValidation validation;
    const auto judged = [&](const std::vector<CustomProviderDefinition>& list) {
        return thrownMessage<CustomProviderStoreError>([&] { validation.validate(list); });
    };
    EXPECT_EQ(judged({}), accepted);
    EXPECT_EQ(judged({addedService(2), readBy("instatus-summary")}), accepted);
    EXPECT_EQ(judged({readBy("unheard-of")}), newerAdapter);
    EXPECT_EQ(judged(addedServices(101)), tooMany);
}
