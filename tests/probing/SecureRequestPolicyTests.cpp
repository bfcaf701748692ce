#include "probing/SecureRequestPolicy.h"

#include "destinations/URLSplitter.h"
#include "probing/SecureHTTPError.h"

#include <functional>
#include <gtest/gtest.h>

namespace kestrin {
namespace {

WebURL url(const std::string& text) {
    return splitURL(text).value();
}

std::string refusal(const std::function<void()>& attempt) {
    try {
        attempt();
    } catch (const SecureHTTPError& error) {
        return error.message;
    }
    return "accepted";
}

std::string verdict(const SecureRequestPolicy& policy, const WebURL& target) {
    return refusal([&] { validateDestination(policy, target); });
}
std::string websiteVerdict(const std::string& site, const std::string& target) {
    return verdict(websitePolicy(url(site)), url(target));
}
std::string feedVerdict(const std::string& feed, const std::string& target) {
    return verdict(providerPolicy({url(feed)}, 262144), url(target));
}

SecureRequestPolicy plainHTTPPolicy() {
    SecureRequestPolicy policy;
    policy.allowedHosts = {"a.example"};
    policy.originalScheme = "http";
    policy.originalEffectivePort = 80;
    return policy;
}

TEST(BuildingPolicies, aWebsiteMayReachItsTwinOnItsPortForHeadersAlone) {
    SecureRequestPolicy expected;
    expected.allowedHosts = {"example.com", "www.example.com"};
    expected.originalScheme = "https";
    expected.originalEffectivePort = 8443;
    expected.headersOnly = true;
    expected.maximumBodyBytes = 0;
    expected.maximumRedirects = 5;
    EXPECT_EQ(websitePolicy(url("https://WWW.Example.com.:8443/path?q#f")), expected);
}

TEST(BuildingPolicies, aFeedMayReachExactlyTheGivenURLs) {
    SecureRequestPolicy expected;
    expected.allowedHosts = {"status.example.com", "other.example"};
    expected.allowedEndpointURLs = {{"https://Status.example.com:444/api?x=1", "https://other.example./b"}};
    expected.originalScheme = "https";
    expected.originalEffectivePort = 444;
    expected.headersOnly = false;
    expected.maximumBodyBytes = 262144;
    expected.maximumRedirects = 2;
    EXPECT_EQ(providerPolicy(
                  {url("https://Status.example.com:444/api?x=1#top"), url("https://other.example./b")}, 262144),
        expected);
}

TEST(BuildingPolicies, anUnacceptableWebsiteIsAnInvalidDestinationInThePolicysWords) {
    EXPECT_EQ(refusal([] { static_cast<void>(websitePolicy(url("http://a.example/"))); }),
        "Invalid or disallowed destination: Website URLs must use HTTPS.");
    EXPECT_EQ(refusal([] { static_cast<void>(websitePolicy(url("https://10.0.0.1/"))); }),
        "Invalid or disallowed destination: Private, local, and reserved network destinations are blocked.");
    EXPECT_EQ(refusal([] { static_cast<void>(websitePolicy(url("https://@a.example/"))); }),
        "Invalid or disallowed destination: Website URLs cannot contain embedded credentials.");
}

TEST(BuildingPolicies, aWebsiteWithoutAHostIsAnInvalidDestination) {
    WebURL hostless = url("https://a.example/");
    hostless.host.clear();
    EXPECT_EQ(refusal([&] { static_cast<void>(websitePolicy(hostless)); }),
        "Invalid or disallowed destination: https://a.example/");
}

TEST(BuildingPolicies, aListOfFeedsThatIsEmptyOrNotAllHTTPSIsRefused) {
    const std::string refused = "Invalid or disallowed destination: Provider endpoint allowlist";
    EXPECT_EQ(refusal([] { static_cast<void>(providerPolicy({}, 1)); }), refused);
    EXPECT_EQ(refusal([] {
        static_cast<void>(providerPolicy({url("https://a.example/"), url("http://a.example/")}, 1));
    }),
        refused);
    WebURL hostless = url("https://a.example/");
    hostless.host.clear();
    EXPECT_EQ(refusal([&] { static_cast<void>(providerPolicy({hostless}, 1)); }), refused);
}

TEST(JudgingDestinations, userInfoIsRefusedWithTheWholeURLEvenWhenItIsEmpty) {
    EXPECT_EQ(websiteVerdict("https://a.example/", "https://user:pw@a.example/x"),
        "Invalid or disallowed destination: https://user:pw@a.example/x");
    EXPECT_EQ(websiteVerdict("https://a.example/", "https://@a.example/"),
        "Invalid or disallowed destination: https://@a.example/");
}

TEST(JudgingDestinations, aForeignSchemeOrAMissingPartIsRefusedWithTheWholeURL) {
    EXPECT_EQ(websiteVerdict("https://a.example/", "ftp://a.example/"),
        "Invalid or disallowed destination: ftp://a.example/");
    WebURL partial = url("https://a.example/");
    partial.scheme.clear();
    EXPECT_EQ(verdict(websitePolicy(url("https://a.example/")), partial),
        "Invalid or disallowed destination: https://a.example/");
    partial = url("https://a.example/");
    partial.host.clear();
    EXPECT_EQ(verdict(websitePolicy(url("https://a.example/")), partial),
        "Invalid or disallowed destination: https://a.example/");
}

TEST(JudgingDestinations, aDowngradeIsToldBeforeAForeignHost) {
    EXPECT_EQ(
        websiteVerdict("https://a.example/", "http://elsewhere.example/"), "Redirect blocked: HTTPS downgrade");
}

TEST(JudgingDestinations, aSchemeInCapitalsCounts) {
    EXPECT_EQ(websiteVerdict("https://a.example/", "HTTPS://a.example/"), "accepted");
    EXPECT_EQ(websiteVerdict("https://a.example/", "HTTP://a.example/"), "Redirect blocked: HTTPS downgrade");
}

TEST(JudgingDestinations, theWWWTwinIsAllowedAndAnySubdomainIsNot) {
    EXPECT_EQ(websiteVerdict("https://a.example/", "https://www.a.example/"), "accepted");
    EXPECT_EQ(websiteVerdict("https://www.a.example/", "https://A.Example./"), "accepted");
    EXPECT_EQ(websiteVerdict("https://a.example/", "https://Shop.A.example./"),
        "Redirect blocked: destination host shop.a.example");
    EXPECT_EQ(websiteVerdict("https://a.example/", "https://www.www.a.example/"),
        "Redirect blocked: destination host www.www.a.example");
}

TEST(JudgingDestinations, aWebsiteOnItsOwnPortMayNotGoToAnotherPort) {
    EXPECT_EQ(websiteVerdict("https://a.example:8443/", "https://a.example:8443/x"), "accepted");
    EXPECT_EQ(
        websiteVerdict("https://a.example:8443/", "https://a.example/"), "Redirect blocked: destination port 443");
    EXPECT_EQ(
        websiteVerdict("https://a.example/", "https://a.example:8443/"), "Redirect blocked: destination port 8443");
    EXPECT_EQ(websiteVerdict("https://a.example/", "https://a.example:443/"), "accepted");
}

TEST(JudgingDestinations, onlyAFirstRequestWithoutEncryptionMayBeUpgraded) {
    EXPECT_EQ(verdict(plainHTTPPolicy(), url("http://a.example/")), "accepted");
    EXPECT_EQ(verdict(plainHTTPPolicy(), url("https://a.example/")), "accepted");
    EXPECT_EQ(
        verdict(plainHTTPPolicy(), url("https://a.example:8443/")), "Redirect blocked: destination port 8443");
    EXPECT_EQ(websiteVerdict("https://a.example:444/", "https://a.example:443/"),
        "Redirect blocked: destination port 443");
}

TEST(JudgingDestinations, aFeedIsComparedWholeButForItsFragment) {
    EXPECT_EQ(feedVerdict("https://s.example/feed.json", "https://s.example/feed.json#part"), "accepted");
    EXPECT_EQ(feedVerdict("https://s.example/feed.json", "https://s.example/other.json"),
        "Redirect blocked: unapproved provider endpoint");
    EXPECT_EQ(feedVerdict("https://s.example/feed.json", "https://s.example/feed.json?x"),
        "Redirect blocked: unapproved provider endpoint");
    EXPECT_EQ(feedVerdict("https://s.example/feed.json", "https://t.example/feed.json"),
        "Redirect blocked: destination host t.example");
}

TEST(JudgingDestinations, anIPv6AddressIsAHostLikeAnyOther) {
    EXPECT_EQ(websiteVerdict("https://[2606:4700::1111]/", "https://[2606:4700::1111]/x"), "accepted");
    EXPECT_EQ(websiteVerdict("https://[2606:4700::1111]/", "https://[2606:4700::1112]/"),
        "Redirect blocked: destination host 2606:4700::1112");
}

} // namespace
} // namespace kestrin
