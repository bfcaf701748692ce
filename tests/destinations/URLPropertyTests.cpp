#include "destinations/CustomProviderURLPolicy.h"
#include "destinations/URLSplitter.h"
#include "destinations/WebsiteURLPolicy.h"
#include "fuzz/Choices.h"
#include "fuzz/CurlAgreement.h"

#include <gtest/gtest.h>
#include <optional>
#include <rapidcheck.h>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {
namespace {

using namespace std::string_view_literals;
using Numbers = std::vector<std::uint32_t>;

const RepeatableCases repeatable("seed=20260131 max_success=4000");

constexpr std::string_view labels[] = {"example"sv, "com"sv, "www"sv, "a"sv, "status"sv, "under_score"sv, "-x-"sv,
    "xn--bcher-kva"sv, "LOCAL"sv, "localhost"sv, "1"sv, "127"sv, "0x7f"sv, "bücher"sv, "例え"sv, "１２７"sv,
    "loc\u00ADal"sv, "ｅxample"sv, "℀"sv, ""sv};
constexpr std::string_view dots[] = {"."sv, "."sv, "."sv, ".."sv, "。"sv, "．"sv};
constexpr std::string_view octets[] = {
    "8"sv, "1"sv, "127"sv, "10"sv, "192"sv, "168"sv, "0"sv, "255"sv, "256"sv, "08"sv};
constexpr std::string_view literals[] = {"[2606:4700::1111]"sv, "[::ffff:8.8.8.8]"sv, "[::1]"sv,
    "[::ffff:10.0.0.1]"sv, "[fe80::1%25eth0]"sv, "[64:ff9b::a00:1]"sv, "[2001:DB8::1]"sv, "[127.0.0.1]"sv, "[::1"sv,
    "[]"sv};
constexpr std::string_view schemes[] = {"https"sv, "https"sv, "https"sv, "HTTPS"sv, "http"sv, "ftp"sv, ""sv};
constexpr std::string_view users[] = {"user"sv, ""sv, "u:p"sv, ":"sv, "good.example"sv, "a@b"sv, "[x]"sv};
constexpr std::string_view ports[] = {
    ":443"sv, ":8443"sv, ":"sv, ":1"sv, ":65535"sv, ":000443"sv, ":0"sv, ":65536"sv, ":x"sv, ":443:443"sv};
constexpr std::string_view segments[] = {"/"sv, "/a"sv, "/b c"sv, "/.."sv, "/."sv, "//evil.example"sv, "/@evil"sv,
    "/ü"sv, "/%2f"sv, "/%"sv, "/a:b"sv, "/[x]"sv};
constexpr std::string_view tails[] = {
    "x"sv, ""sv, "a[]=1"sv, "//evil.example/"sv, "@evil.example"sv, "a?b"sv, "ß"sv};
constexpr std::string_view spoilers[] = {"@"sv, "\\"sv, "/"sv, "?"sv, "#"sv, ":"sv, "\t"sv, "\n"sv, "\0"sv, " "sv,
    "%"sv, "[", "\xFF"sv, "\u202E"sv, "."sv};

std::string name(Choices& choose) {
    std::string host = choose.of(labels);
    for (std::size_t more = choose.below(4); more > 0; --more)
        host += choose.of(dots) + choose.of(labels);
    return host;
}

std::string quad(Choices& choose) {
    std::string host = choose.of(octets);
    for (std::size_t more = choose.once(4) ? choose.below(3) : 3; more > 0; --more)
        host += "." + choose.of(octets);
    return host;
}

std::string host(Choices& choose) {
    switch (choose.below(5)) {
    case 3:
        return quad(choose);
    case 4:
        return choose.of(literals);
    default:
        return name(choose);
    }
}

/// A URL by the grammar, of pieces that some reader takes for something else, and at times spoilt.
std::string typedURL(Choices& choose) {
    std::string text = choose.of(schemes) + "://";
    if (choose.once(8)) text += choose.of(users) + "@";
    text += host(choose);
    if (choose.once(3)) text += choose.of(ports);
    for (std::size_t count = choose.below(3); count > 0; --count)
        text += choose.of(segments);
    if (choose.once(3)) text += "?" + choose.of(tails);
    if (choose.once(4)) text += "#" + choose.of(tails);
    if (choose.once(6)) text.insert(choose.below(text.size() + 1), choose.of(spoilers));
    return text;
}

/// Lets a policy judge many URLs; what it accepts must be the same destination to libcurl. A good share must be
/// accepted, or nothing would be shown.
template <class Error> void expectAgreement(WebURL (*validated)(std::string_view)) {
    int judged = 0;
    int accepted = 0;
    EXPECT_TRUE(rc::check("libcurl sees the host that was judged", [&](const Numbers& numbers) {
        Choices choose(numbers);
        const std::string text = typedURL(choose);
        RC_LOG() << text << '\n';
        ++judged;
        std::optional<WebURL> url;
        try {
            url = validated(text);
        } catch (const Error&) {
            return;
        }
        ++accepted;
        const std::string disagreement = disagreementWithCurl(*url);
        RC_LOG() << disagreement << '\n';
        RC_ASSERT(disagreement.empty());
    }));
    EXPECT_GT(accepted, judged / 10) << "of " << judged;
    EXPECT_LT(accepted, judged) << "nothing was refused";
}

TEST(AnAcceptedURL, ofAWebsiteNamesNoOtherHostToTheFetcher) {
    expectAgreement<WebsiteURLPolicy::ValidationError>(validatedWebsiteURL);
}

TEST(AnAcceptedURL, ofAStatusPageNamesNoOtherHostToTheFetcher) {
    expectAgreement<CustomProviderURLPolicy::ValidationError>(validatedCustomProviderURL);
}

TEST(SplittingAURL, andJoiningItAgainChangesNothing) {
    int split = 0;
    int judged = 0;
    EXPECT_TRUE(rc::check("what was split and joined splits the same way", [&](const Numbers& numbers) {
        Choices choose(numbers);
        const std::string text = typedURL(choose);
        RC_LOG() << text << '\n';
        ++judged;
        const auto url = splitURL(text);
        if (!url) return;
        ++split;
        auto again = splitURL(joinURL(*url));
        RC_ASSERT(again.has_value());
        RC_ASSERT(joinURL(*again) == again->text);
        again->text = url->text;
        RC_ASSERT(again == url);
    }));
    EXPECT_GT(split, judged / 4) << "of " << judged;
}

TEST(SplittingAURL, findsThePartsItWasJoinedFrom) {
    constexpr std::string_view plainHosts[] = {"example.com"sv, "EXAMPLE.com."sv, "a..b"sv, "8.8.8.8"sv, "::1"sv,
        "2606:4700::1111"sv, "under_score"sv, "127.1"sv};
    constexpr std::string_view passwords[] = {"secret"sv, ""sv, "a:b"sv, ":"sv, "ß"sv};
    constexpr std::string_view plainUsers[] = {""sv, "user"sv, "%40"sv, "ü"sv};
    EXPECT_TRUE(rc::check("parts that are joined are found again", [&](const Numbers& numbers) {
        Choices choose(numbers);
        WebURL url;
        url.scheme = choose.of(std::span(schemes).first(6));
        url.host = choose.of(plainHosts);
        if (choose.once(3)) url.user = choose.of(plainUsers);
        if (url.user && choose.once(2)) url.password = choose.of(passwords);
        if (choose.once(2)) url.port = static_cast<std::uint16_t>(1 + choose.below(65'535));
        for (std::size_t count = choose.below(4); count > 0; --count)
            url.path += choose.of(segments);
        if (choose.once(2)) url.query = choose.of(tails);
        if (choose.once(2)) url.fragment = choose.of(tails);
        url.text = joinURL(url);
        RC_LOG() << url.text << '\n';
        RC_ASSERT(splitURL(url.text) == url);
    }));
}

} // namespace
} // namespace kestrin
