#include "destinations/URLReference.h"

#include "destinations/URLSplitter.h"

#include <gtest/gtest.h>
#include <string>

namespace kestrin {
namespace {

std::string resolved(const char* base, std::string_view location) {
    const auto url = resolveReference(*splitURL(base), location);
    if (!url) return "refused";
    EXPECT_EQ(splitURL(url->text), url); // the parts are those of the text
    return url->text;
}

struct Example {
    const char* location;
    const char* target;
};

// RFC 3986 section 5.4 with the base "http://a/b/c/d;p?q". References with a scheme but no authority are no URL
// here.
constexpr Example examplesOfTheStandard[] = {
    {"g:h", "refused"},
    {"g", "http://a/b/c/g"},
    {"./g", "http://a/b/c/g"},
    {"g/", "http://a/b/c/g/"},
    {"/g", "http://a/g"},
    {"//g", "http://g"},
    {"?y", "http://a/b/c/d;p?y"},
    {"g?y", "http://a/b/c/g?y"},
    {"#s", "http://a/b/c/d;p?q#s"},
    {"g#s", "http://a/b/c/g#s"},
    {"g?y#s", "http://a/b/c/g?y#s"},
    {";x", "http://a/b/c/;x"},
    {"g;x", "http://a/b/c/g;x"},
    {"g;x?y#s", "http://a/b/c/g;x?y#s"},
    {"", "http://a/b/c/d;p?q"},
    {".", "http://a/b/c/"},
    {"./", "http://a/b/c/"},
    {"..", "http://a/b/"},
    {"../", "http://a/b/"},
    {"../g", "http://a/b/g"},
    {"../..", "http://a/"},
    {"../../", "http://a/"},
    {"../../g", "http://a/g"},
    {"../../../g", "http://a/g"},
    {"../../../../g", "http://a/g"},
    {"/./g", "http://a/g"},
    {"/../g", "http://a/g"},
    {"g.", "http://a/b/c/g."},
    {".g", "http://a/b/c/.g"},
    {"g..", "http://a/b/c/g.."},
    {"..g", "http://a/b/c/..g"},
    {"./../g", "http://a/b/g"},
    {"./g/.", "http://a/b/c/g/"},
    {"g/./h", "http://a/b/c/g/h"},
    {"g/../h", "http://a/b/c/h"},
    {"g;x=1/./y", "http://a/b/c/g;x=1/y"},
    {"g;x=1/../y", "http://a/b/c/y"},
    {"g?y/./x", "http://a/b/c/g?y/./x"},
    {"g?y/../x", "http://a/b/c/g?y/../x"},
    {"g#s/./x", "http://a/b/c/g#s/./x"},
    {"g#s/../x", "http://a/b/c/g#s/../x"},
    {"http:g", "refused"},
};

TEST(ResolvingAReference, agreesWithTheExamplesOfTheStandard) {
    for (const auto& [location, target] : examplesOfTheStandard) {
        EXPECT_EQ(resolved("http://a/b/c/d;p?q", location), target) << location;
    }
}

TEST(ResolvingAReference, takesAnAbsoluteURLWithoutItsDotSegments) {
    EXPECT_EQ(resolved("https://a/b", "https://example.com:8443/a/../b?c#d"), "https://example.com:8443/b?c#d");
    EXPECT_EQ(resolved("https://a/b", "HTTP://Example.com"), "HTTP://Example.com");
    EXPECT_EQ(resolved("https://a/b", "https://example.com?x"), "https://example.com?x");
}

TEST(ResolvingAReference, keepsThePortButNotTheQueryAndTheFragmentOfTheBase) {
    EXPECT_EQ(resolved("https://a:8443/x?q#f", "/y"), "https://a:8443/y");
    EXPECT_EQ(resolved("https://a:8443/x?q#f", ""), "https://a:8443/x?q");
    EXPECT_EQ(resolved("https://a:8443/x?q#f", "#"), "https://a:8443/x?q#");
    EXPECT_EQ(resolved("https://a:8443/x?q#f", "?"), "https://a:8443/x?");
    EXPECT_EQ(resolved("https://a:8443/x?q#f", "//b/y"), "https://b/y");
}

TEST(ResolvingAReference, startsAtTheRootWhenTheBaseHasNoPath) {
    EXPECT_EQ(resolved("https://a", "g"), "https://a/g");
    EXPECT_EQ(resolved("https://a?q", "../g"), "https://a/g");
    EXPECT_EQ(resolved("https://a", "?y"), "https://a?y");
}

TEST(ResolvingAReference, neverTakesAPathForAHost) {
    EXPECT_EQ(resolved("https://a/b/", "/.//evil.com"), "https://a//evil.com");
    EXPECT_EQ(resolveReference(*splitURL("https://a/b/"), "/.//evil.com")->host, "a");
    EXPECT_EQ(resolved("https://a/b/", "x/..//evil.com"), "https://a/b//evil.com");
    EXPECT_EQ(resolveReference(*splitURL("https://a/b/"), "@evil.com")->host, "a");
    EXPECT_EQ(resolveReference(*splitURL("https://a"), ".evil.com")->host, "a");
    EXPECT_EQ(resolveReference(*splitURL("https://a"), "?@evil.com")->host, "a");
}

TEST(ResolvingAReference, writesHostsOfTheBaseInTheFormThatWasJudged) {
    EXPECT_EQ(resolved("https://bücher.example/a", "b"), "https://xn--bcher-kva.example/b");
    EXPECT_EQ(resolved("https://[2606:4700::1]:8443/a", "/b"), "https://[2606:4700::1]:8443/b");
}

TEST(ResolvingAReference, convertsAndReportsTheHostThatTheLocationNames) {
    EXPECT_EQ(resolveReference(*splitURL("https://a/"), "//１２７.0.0.1/")->host, "127.0.0.1");
    EXPECT_EQ(resolveReference(*splitURL("https://a/"), "//[::1]/")->host, "::1");
    EXPECT_EQ(resolveReference(*splitURL("https://a/"), "//user@b/")->user, "user");
}

TEST(ResolvingAReference, leavesEncodedDotsAndLettersOfAnyScriptAlone) {
    EXPECT_EQ(resolved("https://a/b/c", "%2e%2e/ü ö?ä#ß"), "https://a/b/%2e%2e/ü ö?ä#ß");
}

TEST(ResolvingAReference, refusesWhatIsNoURL) {
    for (const auto* location : {"https:", "https:/", "https://", "https:///x", "//", "///x", "//?x", "//user@",
             "https://a@b@c", "//a b/", "//h:0/", "//h:65536", "https:g", "mailto:a@b", "1http://b/", "a b://c/",
             ":x", "x:y", "\\\\evil.com", "/\\evil.com", "a\tb", "/a\n", "/\xFF", "/a\\b/../c", "/\x01/../c",
             "//[::1", "//[fe80::1%25eth0]/", "//ex%61mple/"}) {
        EXPECT_EQ(resolved("https://a/b", location), "refused") << location;
    }
    EXPECT_EQ(resolved("https://a/b", std::string_view("/a\0b", 4)), "refused");
}

TEST(ResolvingAReference, acceptsAColonBehindTheFirstSegmentOrInTheQuery) {
    EXPECT_EQ(resolved("https://a/b", "./x:y"), "https://a/x:y");
    EXPECT_EQ(resolved("https://a/b", "/x:y"), "https://a/x:y");
    EXPECT_EQ(resolved("https://a/b", "?next=https://c/"), "https://a/b?next=https://c/");
    EXPECT_EQ(resolved("https://a/b", "x?y:z#u:v"), "https://a/x?y:z#u:v");
}

TEST(ResolvingAReference, copesWithVeryLongPaths) {
    std::string climb;
    std::string descent;
    for (int step = 0; step < 100'000; ++step) {
        climb += "../";
        descent += "a/";
    }
    EXPECT_EQ(resolved("https://a/b", climb + "c"), "https://a/c");
    EXPECT_EQ(resolved("https://a/b", descent + climb + "c"), "https://a/c");
    EXPECT_EQ(resolved("https://a/b", descent).size(), descent.size() + 10);
}

} // namespace
} // namespace kestrin
