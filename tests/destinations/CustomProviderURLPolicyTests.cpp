#include "destinations/CustomProviderURLPolicy.h"

#include "destinations/URLSplitter.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace kestrin {
namespace {

using Error = CustomProviderURLPolicy::ValidationError;
using Case = Error::Case;

std::optional<Case> failure(std::string_view text) {
    try {
        static_cast<void>(validatedCustomProviderURL(text));
        return std::nullopt;
    } catch (const Error& error) {
        return error.kind;
    }
}

std::string ofLength(std::size_t bytes) {
    const std::string start = "https://example.com/";
    return start + std::string(bytes - start.size(), 'a');
}

TEST(AStatusPageURL, isTrimmedFirst) {
    EXPECT_EQ(validatedCustomProviderURL(" \t\r\n\u00A0\u3000https://status.example.com/ \u2028\n").text,
        "https://status.example.com/");
}

TEST(AStatusPageURL, isJudgedFurtherAt2048BytesAndTooLongWithOneMore) {
    EXPECT_EQ(failure(ofLength(2048)), std::nullopt);
    EXPECT_EQ(failure(ofLength(2049)), Case::tooLong);
    EXPECT_EQ(failure(std::string(2048, 'a')), Case::incomplete);
    EXPECT_EQ(failure(std::string(2049, 'a')), Case::tooLong);
}

TEST(AStatusPageURL, isMeasuredInBytesAfterTheTrimming) {
    EXPECT_EQ(failure("  " + ofLength(2048) + "\n"), std::nullopt);
    EXPECT_EQ(failure(ofLength(2046) + "ü"), std::nullopt);
    EXPECT_EQ(failure(ofLength(2047) + "ü"), Case::tooLong);
}

TEST(AStatusPageURL, isIncompleteWithoutASchemeOrAHost) {
    for (const auto* text : {"", "   ", "status.example.com", "https://", "https:///a", "https:host", "https://h:0",
             "https://h:65536", "https://a@b@c", "https://exa mple.com"}) {
        EXPECT_EQ(failure(text), Case::incomplete) << text;
    }
}

TEST(AStatusPageURL, mustUseHTTPSInAnyLetterCase) {
    EXPECT_EQ(failure("http://example.com"), Case::httpsRequired);
    EXPECT_EQ(failure("HTTPS://example.com"), std::nullopt);
}

TEST(AStatusPageURL, mustNotHaveAUserPartEvenAnEmptyOne) {
    for (const auto* text : {"https://user@example.com", "https://@example.com", "https://:@example.com"}) {
        EXPECT_EQ(failure(text), Case::embeddedCredentials) << text;
    }
}

TEST(AStatusPageURL, mustNotHaveAQueryOrAFragmentEvenAnEmptyOne) {
    for (const auto* text : {"https://example.com/?a", "https://example.com/#a", "https://example.com?",
             "https://example.com#", "https://example.com/?#"}) {
        EXPECT_EQ(failure(text), Case::queryOrFragment) << text;
    }
}

TEST(AStatusPageURL, mayHaveThePort443WrittenOutAndNoOther) {
    EXPECT_EQ(failure("https://example.com:443/"), std::nullopt);
    EXPECT_EQ(failure("https://example.com:/"), std::nullopt);
    EXPECT_EQ(failure("https://example.com:8443/"), Case::unsupportedPort);
    EXPECT_EQ(failure("https://example.com:80/"), Case::unsupportedPort);
    EXPECT_EQ(failure("https://[2606:4700::1]:444/"), Case::unsupportedPort);
}

TEST(AStatusPageURL, mustNotNameALocalHostOrAPrivateAddress) {
    for (const auto* text :
        {"https://localhost.", "https://Printer.LOCAL/", "https://a.localhost", "https://10.0.0.1", "https://[::1]",
            "https://[::ffff:10.0.0.1]/", "https://192.0.2.1", "https://１０.0.0.1"}) {
        EXPECT_EQ(failure(text), Case::privateDestination) << text;
    }
}

TEST(AStatusPageURL, mayNameAPublicAddressOrANameThatIsNotYetResolved) {
    for (const auto* text :
        {"https://8.8.8.8", "https://[::ffff:8.8.8.8]", "https://2130706433", "https://127.1/a"}) {
        EXPECT_EQ(failure(text), std::nullopt) << text;
    }
}

TEST(AStatusPageURL, isToldOfEachFailureInTheOrderOfTheCases) {
    EXPECT_EQ(failure("http://user@localhost:80/?#" + std::string(2048, 'a')), Case::tooLong);
    EXPECT_EQ(failure("http://user@:80/?"), Case::incomplete);
    EXPECT_EQ(failure("http://user@localhost:80/?"), Case::httpsRequired);
    EXPECT_EQ(failure("https://user@localhost:80/?"), Case::embeddedCredentials);
    EXPECT_EQ(failure("https://localhost:80/?"), Case::queryOrFragment);
    EXPECT_EQ(failure("https://localhost:80/"), Case::unsupportedPort);
    EXPECT_EQ(failure("https://localhost/"), Case::privateDestination);
}

TEST(AStatusPageURL, isReturnedInItsParts) {
    EXPECT_EQ(
        validatedCustomProviderURL("https://status.example.com/eu"), splitURL("https://status.example.com/eu"));
}

TEST(AStatusPageURLError, saysWhatIsWrong) {
    EXPECT_EQ(Error(Case::tooLong).message, "The public status page URL is too long.");
    EXPECT_EQ(Error(Case::incomplete).message, "Enter a complete public status page URL.");
    EXPECT_EQ(Error(Case::httpsRequired).message, "Public status page URLs must use HTTPS.");
    EXPECT_EQ(
        Error(Case::embeddedCredentials).message, "Public status page URLs cannot contain embedded credentials.");
    EXPECT_EQ(Error(Case::queryOrFragment).message, "Public status page URLs cannot contain a query or fragment.");
    EXPECT_EQ(Error(Case::unsupportedPort).message, "Public status page URLs must use the standard HTTPS port.");
    EXPECT_EQ(
        Error(Case::privateDestination).message, "Private, local, and reserved status destinations are blocked.");
}

} // namespace
} // namespace kestrin
