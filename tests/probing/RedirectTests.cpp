#include "probing/ProbingLab.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using testing::ElementsAre;

/// A website and its twin, both of which exist.
struct RedirectLab : ProbingLab {
    RedirectLab() {
        names->answer("a.example", {"192.88.99.1"});
        names->answer("www.a.example", {"192.88.99.2"});
    }
    std::string outcomeOfRedirectTo(const std::string& location) {
        internet.redirect("a.example", {location});
        return outcomeOfWebsite("https://a.example/dir/page?q");
    }
};

TEST(FollowingRedirects, aWebsiteAndItsTwinRedirectIntoEachOther) {
    RedirectLab lab;
    lab.internet.redirect("www.a.example", {"https://a.example/"});
    lab.internet.redirect("a.example", {"https://www.a.example/home"});
    lab.internet.answer("www.a.example", 200);
    EXPECT_EQ(lab.outcomeOfWebsite("https://www.a.example/"), "status 200");
    EXPECT_THAT(lab.contacted(), ElementsAre("www.a.example:443/", "a.example:443/", "www.a.example:443/home"));
}

TEST(FollowingRedirects, everyHopIsResolvedAfreshAndPinnedToItsOwnAddresses) {
    RedirectLab lab;
    lab.names->answer("a.example", {"192.88.99.9"});
    lab.internet.redirect("a.example", {"/next"});
    lab.internet.answer("a.example", 200);
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "status 200");
    EXPECT_THAT(lab.names->asked(), ElementsAre("a.example", "a.example"));
    ASSERT_EQ(lab.internet.sent().size(), 2U);
    EXPECT_THAT(lab.internet.sent()[0].addresses, ElementsAre("192.88.99.1"));
    EXPECT_THAT(lab.internet.sent()[1].addresses, ElementsAre("192.88.99.9"));
    EXPECT_EQ(lab.internet.sent()[1].headers, lab.internet.sent()[0].headers);
}

TEST(FollowingRedirects, anySubdomainIsBlocked) {
    RedirectLab lab;
    EXPECT_EQ(
        lab.outcomeOfRedirectTo("https://shop.a.example/"), "Redirect blocked: destination host shop.a.example");
    EXPECT_THAT(lab.names->asked(), ElementsAre("a.example"));
}

TEST(FollowingRedirects, aWebsiteOnItsOwnPortIsBlockedOnTheStandardPort) {
    RedirectLab lab;
    lab.internet.redirect("a.example", {"https://a.example/"});
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example:8443/"), "Redirect blocked: destination port 443");
}

TEST(FollowingRedirects, aDowngradeIsBlockedBeforeTheHostIsLookedAt) {
    RedirectLab lab;
    EXPECT_EQ(lab.outcomeOfRedirectTo("http://elsewhere.example/"), "Redirect blocked: HTTPS downgrade");
}

TEST(FollowingRedirects, userInfoInALocationIsRefused) {
    RedirectLab lab;
    EXPECT_EQ(lab.outcomeOfRedirectTo("https://me@a.example/"),
        "Invalid or disallowed destination: https://me@a.example/");
}

TEST(FollowingRedirects, fiveAreFollowedForAWebsiteAndTheSixthIsTooMany) {
    RedirectLab lab;
    for (int count = 1; count <= 5; ++count)
        lab.internet.redirect("a.example", {"/" + std::to_string(count)});
    lab.internet.answer("a.example", 200);
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "status 200");

    for (int count = 1; count <= 6; ++count)
        lab.internet.redirect("a.example", {"/" + std::to_string(count)});
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "Redirect blocked: too many redirects");
    EXPECT_EQ(lab.internet.sent().size(), 12U);
}

TEST(FollowingRedirects, tooManyIsToldBeforeTheTargetIsJudged) {
    RedirectLab lab;
    for (int count = 1; count <= 5; ++count)
        lab.internet.redirect("a.example", {"/"});
    EXPECT_EQ(lab.outcomeOfRedirectTo("http://elsewhere.example/"), "Redirect blocked: too many redirects");
}

TEST(FollowingRedirects, twoAreFollowedForAFeedAndTheThirdIsTooMany) {
    RedirectLab lab;
    const auto policy = providerPolicy({urlOf("https://a.example/1"), urlOf("https://a.example/2")}, 100);
    lab.internet.redirect("a.example", {"/2"});
    lab.internet.redirect("a.example", {"/1"});
    lab.internet.answer("a.example", 200, "{}");
    EXPECT_EQ(lab.outcomeOfFetch("https://a.example/1", policy), "status 200");

    lab.internet.redirect("a.example", {"/2"});
    lab.internet.redirect("a.example", {"/1"});
    lab.internet.redirect("a.example", {"/2"});
    EXPECT_EQ(lab.outcomeOfFetch("https://a.example/1", policy), "Redirect blocked: too many redirects");
}

TEST(FollowingRedirects, aFeedMayOnlyGainAFragment) {
    RedirectLab lab;
    const auto policy = providerPolicy({urlOf("https://a.example/feed")}, 100);
    lab.internet.redirect("a.example", {"https://a.example/feed#now"});
    lab.internet.answer("a.example", 200, "{}");
    EXPECT_EQ(lab.outcomeOfFetch("https://a.example/feed", policy), "status 200");
    EXPECT_EQ(lab.contacted().back(), "a.example:443/feed");

    lab.internet.redirect("a.example", {"/other"});
    EXPECT_EQ(
        lab.outcomeOfFetch("https://a.example/feed", policy), "Redirect blocked: unapproved provider endpoint");
}

TEST(FollowingRedirects, aTargetWithPublicAndPrivateAddressesIsNeverContacted) {
    ProbingLab lab;
    lab.names->answer("a.example", {"192.88.99.1"});
    lab.names->answer("www.a.example", {"192.168.0.1", "192.88.99.1"});
    lab.internet.redirect("a.example", {"https://www.a.example/"});
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"),
        "Private or reserved network destination blocked: www.a.example");
    EXPECT_THAT(lab.contacted(), ElementsAre("a.example:443/"));
}

TEST(FollowingRedirects, aRelativeLocationIsMeantFromWhereItWasMet) {
    RedirectLab lab;
    lab.internet.redirect("a.example", {"//www.a.example/x/y"});
    lab.internet.redirect("www.a.example", {"../z?k=v"});
    lab.internet.redirect("www.a.example", {"?only"});
    lab.internet.answer("www.a.example", 200);
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/dir/page"), "status 200");
    EXPECT_THAT(lab.contacted(), ElementsAre("a.example:443/dir/page", "www.a.example:443/x/y",
                                     "www.a.example:443/z?k=v", "www.a.example:443/z?only"));
}

TEST(FollowingRedirects, aLocationThatIsNoURLIsMissing) {
    RedirectLab lab;
    for (const char* location : {"https://", "https:page", "https://a b.example/", "https://a.example:0/",
             "https://[::1/", "https://a.example\\@b.example/", "mailto:me@a.example"})
        EXPECT_EQ(lab.outcomeOfRedirectTo(location), "Redirect blocked: missing destination URL") << location;
}

TEST(FollowingRedirects, twoLocationsThatDifferAreMissingAndTwoThatAgreeAreFollowed) {
    RedirectLab lab;
    lab.internet.redirect("a.example", {"/a", "/b"});
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "Redirect blocked: missing destination URL");
    lab.internet.redirect("a.example", {"", "/b"});
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "Redirect blocked: missing destination URL");

    lab.internet.redirect("a.example", {"/a", "/a"});
    lab.internet.answer("a.example", 200);
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "status 200");
}

TEST(FollowingRedirects, aRedirectWithoutATargetIsTheFinalStatus) {
    RedirectLab lab;
    lab.internet.redirect("a.example", {}, 301);
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "status 301");
    lab.internet.redirect("a.example", {""}, 302);
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "status 302");
}

class RedirectStatus : public testing::TestWithParam<std::int64_t> {};

TEST_P(RedirectStatus, isFollowed) {
    RedirectLab lab;
    lab.internet.redirect("a.example", {"/next"}, GetParam());
    lab.internet.answer("a.example", 200);
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "status 200");
}
INSTANTIATE_TEST_SUITE_P(Each, RedirectStatus, testing::Values(301, 302, 303, 307, 308));

class StatusWithALocation : public testing::TestWithParam<std::int64_t> {};

TEST_P(StatusWithALocation, isFinalWhenItIsNoRedirect) {
    RedirectLab lab;
    lab.internet.redirect("a.example", {"/next"}, GetParam());
    EXPECT_EQ(lab.outcomeOfWebsite("https://a.example/"), "status " + std::to_string(GetParam()));
}
INSTANTIATE_TEST_SUITE_P(Each, StatusWithALocation, testing::Values(200, 201, 300, 304, 305, 306, 404));

} // namespace
} // namespace kestrin
