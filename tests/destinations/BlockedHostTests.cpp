#include "destinations/BlockedHost.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(BlockedHosts, areLocalNamesAndAddressesThatAreNotPublic) {
    for (const auto* host :
        {"localhost.", "Printer.LOCAL", "a.localhost", "127.0.0.1", "10.1.2.3", "::1", "fe90::1"}) {
        EXPECT_TRUE(isBlockedHost(host)) << host;
    }
}

TEST(BlockedHosts, areNeitherPublicAddressesNorNamesThatHaveToBeResolved) {
    for (const auto* host :
        {"example.com", "8.8.8.8", "2606:4700::1", "127.1", "2130706433", "127.0.0.1.", "intranet"}) {
        EXPECT_FALSE(isBlockedHost(host)) << host;
    }
}

} // namespace
} // namespace kestrin
