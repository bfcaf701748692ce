#include "destinations/EffectivePort.h"

#include "destinations/URLSplitter.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(TheEffectivePort, isTheWrittenOne) {
    EXPECT_EQ(effectivePort(*splitURL("https://h:8443")), 8443);
    EXPECT_EQ(effectivePort(*splitURL("http://h:443")), 443);
    EXPECT_EQ(effectivePort(*splitURL("https://h:80")), 80);
}

TEST(TheEffectivePort, isElseThatOfTheScheme) {
    EXPECT_EQ(effectivePort(*splitURL("http://h")), 80);
    EXPECT_EQ(effectivePort(*splitURL("HTTP://h:")), 80);
    EXPECT_EQ(effectivePort(*splitURL("https://h")), 443);
    EXPECT_EQ(effectivePort(*splitURL("ftp://h")), 443);
    EXPECT_EQ(effectivePort(WebURL{}), 443);
}

TEST(EquivalentHosts, areANameAndItsTwin) {
    const std::set<std::string> expected{"example.com", "www.example.com"};
    EXPECT_EQ(equivalentHosts("example.com"), expected);
    EXPECT_EQ(equivalentHosts("www.example.com"), expected);
    EXPECT_EQ(equivalentHosts(".WWW.Example.COM."), expected);
}

TEST(EquivalentHosts, loseOneLeadingTwinLabelOnly) {
    EXPECT_EQ(
        equivalentHosts("www.www.example.com"), (std::set<std::string>{"www.example.com", "www.www.example.com"}));
    EXPECT_EQ(
        equivalentHosts("www2.example.com"), (std::set<std::string>{"www2.example.com", "www.www2.example.com"}));
    EXPECT_EQ(equivalentHosts("www."), (std::set<std::string>{"www", "www.www"}));
}

TEST(TheNormalizedEndpoint, isTheTextWithoutItsFragment) {
    EXPECT_EQ(normalizedEndpoint(*splitURL("https://H:443/a?b#c")), "https://H:443/a?b");
    EXPECT_EQ(normalizedEndpoint(*splitURL("https://h/#")), "https://h/");
    EXPECT_EQ(normalizedEndpoint(*splitURL("https://h/#a#b")), "https://h/");
    EXPECT_EQ(normalizedEndpoint(*splitURL("https://h/a?")), "https://h/a?");
}

} // namespace
} // namespace kestrin
