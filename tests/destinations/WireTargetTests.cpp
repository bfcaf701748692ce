#include "destinations/WireTarget.h"

#include "destinations/URLSplitter.h"

#include <gtest/gtest.h>
#include <string>

namespace kestrin {
namespace {

std::string target(const std::string& text) {
    return wireTarget(*splitURL(text));
}

TEST(TheWireTarget, isASlashForAnEmptyPath) {
    EXPECT_EQ(target("https://h"), "/");
    EXPECT_EQ(target("https://h?q"), "/?q");
    EXPECT_EQ(target("https://h?"), "/?");
    EXPECT_EQ(target("https://h/"), "/");
}

TEST(TheWireTarget, holdsNoFragment) {
    EXPECT_EQ(target("https://h/a?b#c"), "/a?b");
    EXPECT_EQ(target("https://h#c"), "/");
}

TEST(TheWireTarget, encodesBlanksAndLettersOutsideASCII) {
    EXPECT_EQ(target("https://h/a b/ü?ö =ß"), "/a%20b/%C3%BC?%C3%B6%20=%C3%9F");
    EXPECT_EQ(target("https://h/\U0001F600"), "/%F0%9F%98%80");
}

TEST(TheWireTarget, encodesControlsThatAPathWasGivenWithoutTheSplitter) {
    WebURL url;
    url.path = std::string("/\0\t\r\n\x7F", 6);
    url.query = "\x1B";
    EXPECT_EQ(wireTarget(url), "/%00%09%0D%0A%7F?%1B");
}

TEST(TheWireTarget, leavesExistingCodesAlone) {
    EXPECT_EQ(target("https://h/%20%c3%BC%2F%zz?a=%41&b=%25"), "/%20%c3%BC%2F%25zz?a=%41&b=%25");
}

TEST(TheWireTarget, encodesAPercentSignThatBeginsNoCode) {
    EXPECT_EQ(target("https://h/100%"), "/100%25");
    EXPECT_EQ(target("https://h/100%2"), "/100%252");
    EXPECT_EQ(target("https://h/%%41?%g1"), "/%25%41?%25g1");
}

TEST(TheWireTarget, leavesBracketsAndReservedSignsAsTyped) {
    EXPECT_EQ(target("https://h/a;b=c/[d]?a[]=1&b[x]=2/?:@"), "/a;b=c/[d]?a[]=1&b[x]=2/?:@");
    EXPECT_EQ(target("https://h/-._~!$&'()*+,;=:@"), "/-._~!$&'()*+,;=:@");
}

TEST(TheWireTarget, encodesSignsThatARequestLineCannotHold) {
    EXPECT_EQ(target("https://h/\"<>^`{|}"), "/%22%3C%3E%5E%60%7B%7C%7D");
}

TEST(TheWireTarget, keepsDotSegmentsAndDoubledSlashesAsTyped) {
    EXPECT_EQ(target("https://h/a/../b//./c"), "/a/../b//./c");
}

TEST(TheWireHost, isInBracketsWhenItIsAnIPv6Address) {
    EXPECT_EQ(asciiHostForWire(*splitURL("https://[::1]:8443/")), "[::1]");
    EXPECT_EQ(asciiHostForWire(*splitURL("https://8.8.8.8/")), "8.8.8.8");
    EXPECT_EQ(asciiHostForWire(*splitURL("https://bücher.example./")), "xn--bcher-kva.example.");
}

} // namespace
} // namespace kestrin
