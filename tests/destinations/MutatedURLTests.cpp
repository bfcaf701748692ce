#include "destinations/AddressTable.h"
#include "destinations/HostileURLs.h"
#include "destinations/URLReference.h"
#include "destinations/URLSplitter.h"
#include "destinations/WireTarget.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace kestrin {
namespace {

bool isPlain(const std::string& host) {
    if (host.find(':') != std::string::npos) return isNumericAddress(host);
    return !host.empty() && std::ranges::all_of(host, [](unsigned char sign) {
        return sign < 0x80 && (isalnum(sign) != 0 || sign == '-' || sign == '.' || sign == '_');
    });
}

/// Cuts two of the hostile URLs together and strews signs into them that mean something to some reader.
std::string mutatedURL(std::mt19937& random) {
    constexpr std::string_view signs(":/?#@[]\\%.\0\t\n -_0aA\xC3\xBC\xFF", 22);
    const auto below = [&](std::size_t bound) { return random() % bound; };
    const auto& urls = hostileURLs();
    const std::string first(urls[below(urls.size())].text);
    const std::string second(urls[below(urls.size())].text);
    std::string text = first.substr(0, below(first.size() + 1)) + second.substr(below(second.size() + 1));
    if (below(2) == 0) text.insert(0, "https://");
    for (std::size_t count = below(4); count > 0; --count) {
        text.insert(below(text.size() + 1), 1, signs[below(signs.size())]);
    }
    return text;
}

TEST(SplittingMutatedURLs, yieldsOnlyPlainHostsAndPartsThatSplitTheSameWayAgain) {
    std::mt19937 random(20240229); // the default sequence of this engine is the same everywhere
    int accepted = 0;
    for (int round = 0; round < 20'000; ++round) {
        const std::string text = mutatedURL(random);
        const auto url = splitURL(text);
        if (!url) continue;
        ++accepted;
        ASSERT_TRUE(isPlain(url->host)) << text;
        ASSERT_NE(url->port, 0) << text;
        auto again = splitURL(joinURL(*url));
        ASSERT_TRUE(again) << text;
        again->text = url->text;
        ASSERT_EQ(again, url) << text;
    }
    EXPECT_GT(accepted, 1'000);
    EXPECT_LT(accepted, 19'000);
}

TEST(SplittingMutatedURLs, yieldsTargetsThatFitIntoARequestLine) {
    std::mt19937 random(20240301);
    for (int round = 0; round < 20'000; ++round) {
        const auto url = splitURL(mutatedURL(random));
        if (!url) continue;
        const std::string target = wireTarget(*url);
        ASSERT_TRUE(target.starts_with('/'));
        ASSERT_TRUE(std::ranges::all_of(target, [](unsigned char sign) { return sign > 0x20 && sign < 0x7F; }));
    }
}

TEST(ResolvingMutatedReferences, staysOnTheHostUnlessTheReferenceNamesOne) {
    std::mt19937 random(20240302);
    const auto base = splitURL("https://base.example:8443/a/b?c");
    ASSERT_TRUE(base);
    for (int round = 0; round < 20'000; ++round) {
        const std::string location = mutatedURL(random);
        const auto url = resolveReference(*base, location);
        if (!url) continue;
        ASSERT_TRUE(isPlain(url->host)) << location;
        if (location.substr(0, location.find_first_of("?#")).find("//") == std::string::npos) {
            ASSERT_EQ(url->host, "base.example") << location;
        }
    }
}

} // namespace
} // namespace kestrin
