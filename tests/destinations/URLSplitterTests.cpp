#include "destinations/URLSplitter.h"

#include "destinations/HostileURLs.h"

#include <gtest/gtest.h>
#include <string>

namespace kestrin {
namespace {

TEST(SplittingAURL, readsEveryHostileURLAsListedOrRefusesIt) {
    ASSERT_GE(hostileURLs().size(), 120U);
    for (const auto& [text, host] : hostileURLs()) {
        const auto url = splitURL(text);
        EXPECT_EQ(url.has_value(), host.has_value()) << text << " -> " << (url ? url->host : "refused");
        if (url && host) {
            EXPECT_EQ(url->host, *host) << text;
        }
    }
}

TEST(SplittingAURL, reportsEveryPartAndKeepsTheText) {
    const std::string text = "HttpS://us%20er:se:cret@Example.COM:8443/a b/ü?q=[1]&r?#frag#ment";
    WebURL expected;
    expected.text = text;
    expected.scheme = "HttpS";
    expected.user = "us%20er";
    expected.password = "se:cret";
    expected.host = "Example.COM";
    expected.port = 8443;
    expected.path = "/a b/ü";
    expected.query = "q=[1]&r?";
    expected.fragment = "frag#ment";
    EXPECT_EQ(splitURL(text), expected);
}

TEST(SplittingAURL, leavesOutWhatIsAbsent) {
    const auto url = splitURL("https://example.com");
    ASSERT_TRUE(url);
    EXPECT_FALSE(url->user);
    EXPECT_FALSE(url->password);
    EXPECT_FALSE(url->port);
    EXPECT_EQ(url->path, "");
    EXPECT_FALSE(url->query);
    EXPECT_FALSE(url->fragment);
}

TEST(SplittingAURL, tellsAnEmptyPartFromAnAbsentOne) {
    const auto url = splitURL("https://:@example.com/?#");
    ASSERT_TRUE(url);
    EXPECT_EQ(url->user, "");
    EXPECT_EQ(url->password, "");
    EXPECT_EQ(url->path, "/");
    EXPECT_EQ(url->query, "");
    EXPECT_EQ(url->fragment, "");

    const auto onlyUser = splitURL("https://@example.com#");
    ASSERT_TRUE(onlyUser);
    EXPECT_EQ(onlyUser->user, "");
    EXPECT_FALSE(onlyUser->password);
    EXPECT_FALSE(onlyUser->query);
    EXPECT_EQ(onlyUser->fragment, "");
}

TEST(SplittingAURL, takesAnEmptyPortForNone) {
    const auto url = splitURL("https://example.com:/a");
    ASSERT_TRUE(url);
    EXPECT_FALSE(url->port);
    EXPECT_EQ(url->path, "/a");
    EXPECT_EQ(url->text, "https://example.com:/a");
}

TEST(SplittingAURL, readsPortsFromOneToTheLast) {
    EXPECT_EQ(splitURL("https://h:1")->port, 1);
    EXPECT_EQ(splitURL("https://h:0443")->port, 443);
    EXPECT_EQ(splitURL("https://h:65535")->port, 65535);
    EXPECT_FALSE(splitURL("https://h:65536"));
    EXPECT_FALSE(splitURL("https://h:0"));
}

TEST(SplittingAURL, readsThePortBehindAnIPv6Literal) {
    const auto url = splitURL("https://[2606:4700::1111]:8443/a");
    ASSERT_TRUE(url);
    EXPECT_EQ(url->host, "2606:4700::1111");
    EXPECT_EQ(url->port, 8443);
    EXPECT_EQ(url->path, "/a");
}

TEST(SplittingAURL, readsEveryHostByteAsAllowedOrRefusesIt) {
    for (int byte = 1; byte < 0x80; ++byte) {
        const std::string text = std::string("https://a") + static_cast<char>(byte) + "b.example/";
        const bool endsTheHost = byte == '/' || byte == '?' || byte == '#';
        const bool beginsAPort = byte == ':'; // "b.example" is no port
        const bool endsAUser = byte == '@';
        const bool belongsToIt = isalnum(byte) != 0 || byte == '-' || byte == '.' || byte == '_';
        const auto url = splitURL(text);
        ASSERT_EQ(url.has_value(), !beginsAPort && (endsTheHost || endsAUser || belongsToIt)) << byte;
        if (!url) continue;
        const std::string whole = text.substr(8, text.size() - 9);
        EXPECT_EQ(url->host, endsTheHost ? "a" : endsAUser ? "b.example" : whole) << byte;
    }
}

TEST(SplittingAURL, copesWithVeryLongTexts) {
    const std::string million(1'000'000, 'a');
    EXPECT_EQ(splitURL("https://example.com/" + million)->path.size(), million.size() + 1);
    EXPECT_EQ(splitURL("https://" + million)->host, million);
    EXPECT_FALSE(splitURL(million));
    EXPECT_FALSE(splitURL("https://" + std::string(1'000'000, '@') + "h"));
    EXPECT_FALSE(splitURL("https://h:" + std::string(1'000'000, '9')));
    EXPECT_EQ(splitURL("https://h:" + std::string(1'000'000, '0') + "1")->port, 1);
    EXPECT_FALSE(splitURL("https://[" + std::string(1'000'000, ':') + "]"));
    std::string umlauts;
    for (int count = 0; count < 100'000; ++count)
        umlauts += "ü";
    EXPECT_FALSE(splitURL("https://" + umlauts + ".example"));
    EXPECT_EQ(splitURL("https://example.com/" + umlauts)->path.size(), umlauts.size() + 1);
}

TEST(JoiningAURL, givesBackTheTextThatWasSplit) {
    for (const auto& [text, host] : hostileURLs()) {
        const auto url = splitURL(text);
        if (!url) continue;
        const bool converted = text.find(url->host) == std::string_view::npos;
        const bool portRewritten = text.find(":000") != std::string_view::npos;
        const bool emptyPort = !url->port && text.substr(0, text.find_first_of("/?#", 8)).ends_with(':');
        if (converted || portRewritten || emptyPort) continue;
        EXPECT_EQ(joinURL(*url), text);
    }
}

TEST(JoiningAURL, givesATextThatSplitsIntoTheSameParts) {
    for (const auto& hostile : hostileURLs()) {
        const auto url = splitURL(hostile.text);
        if (!url) continue;
        auto again = splitURL(joinURL(*url));
        ASSERT_TRUE(again) << hostile.text;
        again->text = url->text;
        EXPECT_EQ(again, url);
    }
}

TEST(JoiningAURL, writesAConvertedHostConvertedAndAnIPv6AddressInBrackets) {
    EXPECT_EQ(joinURL(*splitURL("https://bücher.example:8443/ü?ü#ü")), "https://xn--bcher-kva.example:8443/ü?ü#ü");
    EXPECT_EQ(joinURL(*splitURL("https://h:/a")), "https://h/a");
    WebURL url;
    url.scheme = "https";
    url.host = "2606:4700::1111";
    url.path = "/api/v2/status.json";
    EXPECT_EQ(joinURL(url), "https://[2606:4700::1111]/api/v2/status.json");
}

TEST(JoiningAURL, keepsEmptyUsersAndPasswords) {
    EXPECT_EQ(joinURL(*splitURL("https://@h")), "https://@h");
    EXPECT_EQ(joinURL(*splitURL("https://:@h")), "https://:@h");
    EXPECT_EQ(joinURL(*splitURL("https://h?#")), "https://h?#");
}

} // namespace
} // namespace kestrin
