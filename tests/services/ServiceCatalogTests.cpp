#include "services/ServiceCatalog.h"

#include "destinations/CustomProviderURLPolicy.h"
#include "services/KnownServices.h"
#include "services/ProviderAdapters.h"
#include "services/ServiceTable.h"
#include "state/SafeIdentifier.h"

#include <gmock/gmock.h>
#include <set>

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Words = std::vector<std::string>;

Words found(std::string_view query, const std::string& locale = "en_US.UTF-8") {
    Words ids;
    for (const ServiceCatalogEntry& entry : searchServiceCatalog(query, locale))
        ids.push_back(entry.id);
    return ids;
}

/// A row as it reads: identifier, name, category and aliases.
std::string rowText(const ServiceCatalogEntry& entry) {
    std::string text = entry.id + " | " + entry.name + " | " + entry.category + " |";
    for (const std::string& alias : entry.searchAliases)
        text += " " + alias + ";";
    return text;
}

TEST(ServiceCatalog, hasTheseRowsInThisOrder) {
    Words rows;
    for (const ServiceCatalogEntry& entry : serviceCatalog())
        rows.push_back(rowText(entry));
    EXPECT_THAT(
        rows, ElementsAre("github | GitHub | Developer platform | GitHub Actions; GitHub Packages;",
                  "atlassian | Atlassian | Developer platform | Jira; Confluence; Bitbucket;",
                  "vercel | Vercel | Hosting and edge | Vercel hosting;",
                  "npm | npm | Developer platform | npm registry;",
                  "circleci | CircleCI | Developer platform | CircleCI builds;",
                  "sentry | Sentry | Developer platform | Sentry monitoring;",
                  "cloudflare | Cloudflare | Hosting and edge | Cloudflare DNS; Cloudflare CDN; Workers;",
                  "digitalocean | DigitalOcean | Hosting and edge | DigitalOcean Cloud;",
                  "render | Render | Hosting and edge | Render hosting;",
                  "fly-io | Fly.io | Hosting and edge | Fly hosting;",
                  "supabase | Supabase | Data and backend | Supabase database;",
                  "mongodb-atlas | MongoDB Atlas | Data and backend | MongoDB Cloud; Atlas;",
                  "slack | Slack | Communication and work | Slack messaging;",
                  "discord | Discord | Communication and work | Discord messaging;",
                  "zoom | Zoom | Communication and work | Zoom meetings;",
                  "figma | Figma | Communication and work | Figma design;",
                  "dropbox | Dropbox | Communication and work | Dropbox storage;",
                  "1password | 1Password | Identity and access | 1Password password manager;",
                  "shopify | Shopify | Commerce | Shopify commerce;",
                  "twilio | Twilio | Communication API | Twilio messaging; SendGrid;",
                  "datadog | Datadog | Observability and data | Datadog monitoring;",
                  "grafana-cloud | Grafana Cloud | Observability and data | Grafana;",
                  "snyk | Snyk | Security | Snyk security;", "twitch | Twitch | Consumer and work services |",
                  "epic-games | Epic Games | Consumer and work services | Fortnite;"));
}

struct KnownService {
    std::string id;
    std::string name;
    WebURL page;
};

std::vector<KnownService> everyKnownService() {
    std::vector<KnownService> all;
    for (const ProviderDefinition& service : bundledProviderDefinitions())
        all.push_back({service.id, service.name, service.publicStatusURL});
    for (const ServiceCatalogEntry& entry : serviceCatalog())
        all.push_back({entry.id, entry.name, entry.statusPageURL});
    return all;
}

TEST(ServiceTable, everyAddressIsAPlainPublicHTTPSPageWithThePathSlash) {
    EXPECT_THAT(everyKnownService(), SizeIs(27));
    for (const KnownService& service : everyKnownService()) {
        EXPECT_EQ(service.page.text, "https://" + service.page.host + "/") << service.id;
        EXPECT_EQ(service.page.scheme, "https") << service.id;
        EXPECT_EQ(service.page.path, "/") << service.id;
        EXPECT_FALSE(service.page.port) << service.id;
        EXPECT_EQ(service.page, validatedCustomProviderURL(service.page.text)) << service.id;
        EXPECT_NE(service.page.host.find('.'), std::string::npos) << service.id;
    }
}

TEST(ServiceTable, noIdentifierNameOrHostStandsTwiceAndEveryIdentifierCanNameAFile) {
    std::set<std::string> ids;
    std::set<std::string> names;
    std::set<std::string> hosts;
    for (const KnownService& service : everyKnownService()) {
        EXPECT_TRUE(ids.insert(service.id).second) << service.id;
        EXPECT_TRUE(names.insert(service.name).second) << service.name;
        EXPECT_TRUE(hosts.insert(service.page.host).second) << service.page.host;
        EXPECT_NO_THROW(validateSafeIdentifier(service.id)) << service.id;
    }
}

TEST(ServiceTable, noAliasFollowsAnEmptyOne) {
    for (const CatalogServiceRow& row : catalogServiceTable)
        for (std::size_t index = 1; index < row.aliases.size(); ++index)
            EXPECT_FALSE(row.aliases[index - 1].empty() && !row.aliases[index].empty()) << row.id;
}

TEST(ServiceCatalog, onlySlackIsOnTheHostOfTheSlackAdapter) {
    for (const KnownService& service : everyKnownService())
        EXPECT_EQ(service.page.host == slackStatusHost, service.id == "slack") << service.id;
}

TEST(ServiceCatalog, isBuiltOnce) {
    EXPECT_EQ(&serviceCatalog(), &serviceCatalog());
}

TEST(SearchingTheCatalog, aQueryOfOnlyBlanksReturnsAll25Rows) {
    for (const char* query : {"", " ", " \t\n\u00A0\u3000 "})
        EXPECT_EQ(searchServiceCatalog(query), serviceCatalog());
    EXPECT_THAT(searchServiceCatalog("  "), SizeIs(25));
}

TEST(SearchingTheCatalog, theWordJiraInAnyCaseFindsAtlassian) {
    for (const char* query : {"Jira", "jira", "JIRA", "jIrA"})
        EXPECT_THAT(found(query), ElementsAre("atlassian")) << query;
}

TEST(SearchingTheCatalog, theWordsMessagingAndTwilioFindOnlyTwilio) {
    EXPECT_THAT(found("messaging Twilio"), ElementsAre("twilio"));
    EXPECT_THAT(found("Twilio messaging"), ElementsAre("twilio"));
    EXPECT_THAT(found("messaging"), ElementsAre("slack", "discord", "twilio"));
}

TEST(SearchingTheCatalog, thePiecesDigitalAndCloudFindDigitalOcean) {
    EXPECT_THAT(found("digital cloud"), ElementsAre("digitalocean"));
    EXPECT_THAT(found("\tCLOUD\u2003 digital "), ElementsAre("digitalocean"));
}

TEST(SearchingTheCatalog, anIdentifierFindsNothing) {
    EXPECT_THAT(found("mongodb-atlas"), IsEmpty());
    EXPECT_THAT(found("fly-io"), IsEmpty());
    EXPECT_THAT(found("mongodb atlas"), ElementsAre("mongodb-atlas"));
}

TEST(SearchingTheCatalog, anAddressFindsNothing) {
    EXPECT_THAT(found("https"), IsEmpty());
    EXPECT_THAT(found("githubstatus"), IsEmpty());
}

TEST(SearchingTheCatalog, twitchHasNoAliasesAndIsFoundByItsNameAndItsCategory) {
    EXPECT_THAT(found("twitch"), ElementsAre("twitch"));
    EXPECT_THAT(found("consumer"), ElementsAre("twitch", "epic-games"));
    EXPECT_THAT(found("twitch consumer"), ElementsAre("twitch"));
}

TEST(SearchingTheCatalog, everyWordMustBeFoundSomewhere) {
    EXPECT_THAT(found("slack zoom"), IsEmpty());
    EXPECT_THAT(found("sla ork"), ElementsAre("slack"));
}

TEST(SearchingTheCatalog, aPieceNeverReachesFromOneNameIntoTheNext) {
    EXPECT_THAT(found("githubdeveloper"), IsEmpty());
    EXPECT_THAT(found("npmdeveloper"), IsEmpty());
}

TEST(SearchingTheCatalog, lowersByTheRulesOfTheLocale) {
    EXPECT_THAT(found("JİRA", "tr_TR.UTF-8"), ElementsAre("atlassian"));
    EXPECT_THAT(found("JIRA", "tr_TR.UTF-8"), IsEmpty()) << "the capital of a dotless letter";
    EXPECT_THAT(found("JİRA", "en_US.UTF-8"), IsEmpty());
}

TEST(SearchingTheCatalog, findsEveryServiceByItsOwnName) {
    for (const ServiceCatalogEntry& entry : serviceCatalog())
        EXPECT_THAT(found(entry.name), testing::Contains(entry.id));
}

} // namespace
} // namespace kestrin
