#include "destinations/AddressTable.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {
namespace {

using namespace std::string_view_literals;

/// The first and the last address of a range that is not public, and the neighbours outside, empty where there is
/// none or where another range follows.
struct Borders {
    const char* before;
    const char* first;
    const char* last;
    const char* behind;
};

constexpr Borders ipv4Borders[] = {
    {"", "0.0.0.0", "0.255.255.255", "1.0.0.0"},
    {"9.255.255.255", "10.0.0.0", "10.255.255.255", "11.0.0.0"},
    {"126.255.255.255", "127.0.0.0", "127.255.255.255", "128.0.0.0"},
    {"100.63.255.255", "100.64.0.0", "100.127.255.255", "100.128.0.0"},
    {"169.253.255.255", "169.254.0.0", "169.254.255.255", "169.255.0.0"},
    {"172.15.255.255", "172.16.0.0", "172.31.255.255", "172.32.0.0"},
    {"191.255.255.255", "192.0.0.0", "192.0.0.255", "192.0.1.0"},
    {"192.0.1.255", "192.0.2.0", "192.0.2.255", "192.0.3.0"},
    {"192.167.255.255", "192.168.0.0", "192.168.255.255", "192.169.0.0"},
    {"198.17.255.255", "198.18.0.0", "198.19.255.255", "198.20.0.0"},
    {"198.51.99.255", "198.51.100.0", "198.51.100.255", "198.51.101.0"},
    {"203.0.112.255", "203.0.113.0", "203.0.113.255", "203.0.114.0"},
    {"223.255.255.255", "224.0.0.0", "255.255.255.255", ""},
};

constexpr Borders ipv6Borders[] = {
    {"", "::", "::1", "::2"},
    {"fbff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", "fc00::", "fdff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", "fe00::"},
    {"fe7f:ffff:ffff:ffff:ffff:ffff:ffff:ffff", "fe80::", "feff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", ""},
    {"", "ff00::", "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", ""},
    {"2001:db7:ffff:ffff:ffff:ffff:ffff:ffff", "2001:db8::", "2001:db8:ffff:ffff:ffff:ffff:ffff:ffff",
        "2001:db9::"},
};

void expectBorders(const Borders& range) {
    EXPECT_FALSE(isPublicAddress(range.first)) << range.first;
    EXPECT_FALSE(isPublicAddress(range.last)) << range.last;
    if (*range.before != '\0') {
        EXPECT_TRUE(isPublicAddress(range.before)) << range.before;
    }
    if (*range.behind != '\0') {
        EXPECT_TRUE(isPublicAddress(range.behind)) << range.behind;
    }
}

TEST(PublicAddresses, endAtBothBordersOfEveryIPv4Range) {
    for (const auto& range : ipv4Borders)
        expectBorders(range);
}

TEST(PublicAddresses, endAtBothBordersOfEveryIPv6Range) {
    for (const auto& range : ipv6Borders)
        expectBorders(range);
}

TEST(PublicAddresses, endAtTheSameBordersInTheMappedForm) {
    for (const auto& range : ipv4Borders) {
        const auto mapped = [](const char* address) { return "::ffff:" + std::string(address); };
        EXPECT_FALSE(isPublicAddress(mapped(range.first))) << range.first;
        EXPECT_FALSE(isPublicAddress(mapped(range.last))) << range.last;
        if (*range.before != '\0') {
            EXPECT_TRUE(isPublicAddress(mapped(range.before))) << range.before;
        }
        if (*range.behind != '\0') {
            EXPECT_TRUE(isPublicAddress(mapped(range.behind))) << range.behind;
        }
    }
}

/// The same table told a second time, in octets, to be compared with over all of the first two.
bool isListedByOctets(int first, int second, int third) {
    if (first == 0 || first == 10 || first == 127 || first >= 224) return true;
    if (first == 100) return second >= 64 && second <= 127;
    if (first == 169) return second == 254;
    if (first == 172) return second >= 16 && second <= 31;
    if (first == 192) return second == 168 || (second == 0 && (third == 0 || third == 2));
    if (first == 198) return second == 18 || second == 19 || (second == 51 && third == 100);
    return first == 203 && second == 0 && third == 113;
}

TEST(PublicAddresses, followTheTableInEveryFirstAndSecondOctet) {
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            for (const int third : {0, 1, 2, 100, 113}) {
                const auto address =
                    std::to_string(first) + "." + std::to_string(second) + "." + std::to_string(third) + ".7";
                ASSERT_EQ(isPublicAddress(address), !isListedByOctets(first, second, third)) << address;
            }
        }
    }
}

TEST(PublicAddresses, excludeLinkLocalLoopbackAndMappedPrivateOnes) {
    for (const auto* address : {"169.254.1.1", "::1", "fe90::1", "::ffff:10.0.0.1", "::ffff:7f00:1"}) {
        EXPECT_FALSE(isPublicAddress(address)) << address;
    }
}

TEST(PublicAddresses, includeAMappedPublicOne) {
    EXPECT_TRUE(isPublicAddress("::ffff:8.8.8.8"));
}

TEST(PublicAddresses, includeTheNeighbourOfTheDocumentationRangeAndOfTheSharedSpace) {
    EXPECT_TRUE(isPublicAddress("192.0.1.1"));
    EXPECT_FALSE(isPublicAddress("192.0.2.1"));
    EXPECT_TRUE(isPublicAddress("100.63.0.1"));
    EXPECT_TRUE(isPublicAddress("100.128.0.1"));
}

TEST(PublicAddresses, includeTheOldRelayRange) {
    EXPECT_TRUE(isPublicAddress("192.88.99.0"));
    EXPECT_TRUE(isPublicAddress("192.88.99.255"));
}

TEST(PublicAddresses, includeEverythingElseOfIPv6) {
    for (const auto* address : {"2606:4700:4700::1111", "2001:4860:4860::8888", "::2", "::8.8.8.8", "64:ff9b::1",
             "2002:808:808::1", "100::1", "fe00::1", "fe7f::1", "::fffe:10.0.0.1", "1::ffff:10.0.0.1"}) {
        EXPECT_TRUE(isPublicAddress(address)) << address;
    }
}

TEST(PublicAddresses, includeNoTextThatIsNoAddress) {
    for (const auto text : {""sv, "example.com"sv, "127.1"sv, "2130706433"sv, "8.8.8"sv, "8.8.8.8."sv, " 8.8.8.8"sv,
             "8.8.8.8 "sv, "8.8.8.8\n"sv, "08.8.8.8"sv, "8.8.8.256"sv, "0x8.8.8.8"sv, "8.8.8.8/32"sv,
             "8.8.8.8:53"sv, "[2606:4700::1]"sv, "2606:4700::1::"sv, "2606:4700::g"sv, "８.8.8.8"sv, "8.8.8.8\0"sv,
             "8.8.8.8\0.evil"sv, "2606:4700::1\0"sv}) {
        EXPECT_FALSE(isPublicAddress(text)) << text;
        EXPECT_FALSE(isNumericAddress(text)) << text;
    }
}

TEST(PublicAddresses, includeNoAddressWithAZone) {
    EXPECT_FALSE(isPublicAddress("fe80::1%en0"));
    EXPECT_FALSE(isPublicAddress("2606:4700::1%en0"));
    EXPECT_FALSE(isNumericAddress("fe80::1%en0"));
}

TEST(NumericAddresses, areThoseOfBothFamilies) {
    for (const auto* text :
        {"127.0.0.1", "8.8.8.8", "::", "::1", "FE80::1", "::ffff:10.0.0.1", "1:2:3:4:5:6:7:8"}) {
        EXPECT_TRUE(isNumericAddress(text)) << text;
    }
}

TEST(NumericAddresses, areNoIntegersAndNoShortForms) {
    EXPECT_FALSE(isNumericAddress("2130706433"));
    EXPECT_FALSE(isNumericAddress("127.1"));
    EXPECT_FALSE(isNumericAddress("0x7f.1"));
}

TEST(NumericAddresses, areNoVeryLongTexts) {
    EXPECT_FALSE(isNumericAddress(std::string(1'000'000, '1')));
    EXPECT_FALSE(isNumericAddress(std::string(1'000'000, ':')));
}

TEST(AResolution, isPublicWhenEveryAddressIs) {
    EXPECT_TRUE(allAddressesPublic(true, std::vector<std::string>{"8.8.8.8", "2606:4700::1"}));
}

TEST(AResolution, isNotPublicWithOnePrivateAddressAmongPublicOnes) {
    EXPECT_FALSE(allAddressesPublic(true, std::vector<std::string>{"8.8.8.8", "10.0.0.1", "1.1.1.1"}));
    EXPECT_FALSE(allAddressesPublic(true, std::vector<std::string>{"8.8.8.8", "fe80::1%en0"}));
}

TEST(AResolution, isNotPublicWhenItFailedOrGaveNothing) {
    EXPECT_FALSE(allAddressesPublic(false, std::vector<std::string>{"8.8.8.8"}));
    EXPECT_FALSE(allAddressesPublic(true, {}));
    EXPECT_FALSE(allAddressesPublic(false, {}));
}

} // namespace
} // namespace kestrin
