#include "destinations/LocalHostName.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(LocalHostNames, areLocalhostAndNamesBelowItAndBelowLocal) {
    for (const auto* host : {"localhost", "LocalHost", "localhost.", "localhost...", ".localhost", "a.localhost",
             "a.b.LOCALHOST.", "printer.local", "Printer.LOCAL", "printer.local.", "..local..localhost"}) {
        EXPECT_TRUE(isLocalHostName(host)) << host;
    }
}

TEST(LocalHostNames, areNothingElse) {
    for (const auto* host : {"", ".", "...", "local", ".local", "local.", "localhost.com", "mylocalhost",
             "notlocal", "a.locals", "localdomain", "a.localdomain", "intranet", "a.internal", "a.lan",
             "a.home.arpa", "a.test", "127.0.0.1", "::1", "localhost.example.com", "local.example.com"}) {
        EXPECT_FALSE(isLocalHostName(host)) << host;
    }
}

TEST(NormalizedHosts, areInLowerCaseWithoutDotsAtTheEnds) {
    EXPECT_EQ(normalizedHost("..WWW.Example.COM.."), "www.example.com");
    EXPECT_EQ(normalizedHost("example.com"), "example.com");
    EXPECT_EQ(normalizedHost("a..B"), "a..b");
    EXPECT_EQ(normalizedHost("FE80::A"), "fe80::a");
    EXPECT_EQ(normalizedHost("..."), "");
    EXPECT_EQ(normalizedHost(""), "");
}

TEST(NormalizedHosts, lowerLettersOfASCIIOnly) {
    EXPECT_EQ(normalizedHost("ÜA@[`{Z"), "Üa@[`{z");
}

} // namespace
} // namespace kestrin
