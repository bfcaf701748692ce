#include "destinations/HostConversion.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace kestrin {
namespace {

TEST(ConvertingAHost, writesEachLabelInTheAlphabetOfDNS) {
    EXPECT_EQ(asciiHost("bücher.Example"), "xn--bcher-kva.example");
    EXPECT_EQ(asciiHost("الأردن"), "xn--igbhzh7gpa");
    EXPECT_EQ(asciiHost("ü."), "xn--tda.");
}

TEST(ConvertingAHost, keepsTheLettersThatTheTransitionWouldHaveReplaced) {
    EXPECT_EQ(asciiHost("faß.de"), "xn--fa-hia.de");
    EXPECT_EQ(asciiHost("βόλος.com"), "xn--nxasmm1c.com");
}

TEST(ConvertingAHost, admitsAJoinerOnlyWhereTheScriptNeedsIt) {
    EXPECT_EQ(asciiHost("ශ්\u200Dරී.com"), "xn--10cl1a0b660p.com");
    EXPECT_EQ(asciiHost("a\u200Db.com"), std::nullopt);
    EXPECT_EQ(asciiHost("a\u200Cb.com"), std::nullopt);
}

TEST(ConvertingAHost, refusesMixedDirectionsInALabel) {
    EXPECT_EQ(asciiHost("אa"), std::nullopt);
    EXPECT_EQ(asciiHost("0א"), std::nullopt);
    EXPECT_TRUE(asciiHost("אב.com"));
}

TEST(ConvertingAHost, refusesWhatBecomesASignOfTheURLItself) {
    for (const auto* host : {"a℀b", "a℁b", "a／b", "a？b", "a＃b", "a＠b", "a：b", "a％b", "a＼b", "a［b", "a⑴b"}) {
        EXPECT_EQ(asciiHost(host), std::nullopt) << host;
    }
}

TEST(ConvertingAHost, refusesAnEmptyNameAndLabelsOrNamesTooLongForDNS) {
    EXPECT_EQ(asciiHost(""), std::nullopt);
    EXPECT_EQ(asciiHost("\u00AD"), std::nullopt);
    EXPECT_EQ(asciiHost("ü" + std::string(70, 'a')), std::nullopt);
    std::string longName = "ü";
    for (int label = 0; label < 5; ++label)
        longName += "." + std::string(60, 'a');
    EXPECT_EQ(asciiHost(longName), std::nullopt);
    EXPECT_EQ(asciiHost("ü" + std::string(3'000'000, 'a')), std::nullopt);
}

TEST(ConvertingAHost, takesANameAsLongAsDNSAllows) {
    const std::string label(63, 'a');
    const std::string name = "ü." + label + "." + label + "." + std::string(53, 'a');
    const auto converted = asciiHost(name + ".example");
    ASSERT_TRUE(converted);
    EXPECT_EQ(converted->size(), 7 + 1 + 63 + 1 + 63 + 1 + 53 + 8);
}

TEST(ConvertingAHost, servesSeveralThreadsAtOnce) {
    std::vector<std::string> results(4);
    {
        std::vector<std::jthread> threads;
        for (auto& result : results) {
            threads.emplace_back([&result] {
                for (int round = 0; round < 200; ++round)
                    result = asciiHost("bücher.example").value_or("refused");
            });
        }
    }
    for (const auto& result : results)
        EXPECT_EQ(result, "xn--bcher-kva.example");
}

} // namespace
} // namespace kestrin
