#include "probing/SecureHTTPError.h"
#include "probing/TransportError.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

using Case = SecureHTTPError::Case;

TEST(DescribingSecureHTTPErrors, eachCaseHasItsSentenceAndItsPayload) {
    const auto destination = SecureHTTPError::invalidDestination("ftp://a/");
    EXPECT_EQ(destination.kind, Case::invalidDestination);
    EXPECT_EQ(destination.message, "Invalid or disallowed destination: ftp://a/");
    EXPECT_EQ(std::get<std::string>(destination.payload), "ftp://a/");

    const auto redirect = SecureHTTPError::blockedRedirect("HTTPS downgrade");
    EXPECT_EQ(redirect.kind, Case::blockedRedirect);
    EXPECT_EQ(redirect.message, "Redirect blocked: HTTPS downgrade");
    EXPECT_EQ(std::get<std::string>(redirect.payload), "HTTPS downgrade");

    const auto inside = SecureHTTPError::privateDestination("a.example");
    EXPECT_EQ(inside.kind, Case::privateDestination);
    EXPECT_EQ(inside.message, "Private or reserved network destination blocked: a.example");
    EXPECT_EQ(std::get<std::string>(inside.payload), "a.example");

    const auto large = SecureHTTPError::responseTooLarge(262144);
    EXPECT_EQ(large.kind, Case::responseTooLarge);
    EXPECT_EQ(large.message, "Response exceeded the 262144-byte safety limit");
    EXPECT_EQ(std::get<std::int64_t>(large.payload), 262144);

    const auto foreign = SecureHTTPError::nonHTTPResponse();
    EXPECT_EQ(foreign.kind, Case::nonHTTPResponse);
    EXPECT_EQ(foreign.message, "Non-HTTP response");
    EXPECT_TRUE(std::holds_alternative<std::monostate>(foreign.payload));
}

TEST(DescribingSecureHTTPErrors, theCasesKeepTheirOrder) {
    EXPECT_LT(Case::invalidDestination, Case::blockedRedirect);
    EXPECT_LT(Case::blockedRedirect, Case::privateDestination);
    EXPECT_LT(Case::privateDestination, Case::responseTooLarge);
    EXPECT_LT(Case::responseTooLarge, Case::nonHTTPResponse);
}

TEST(DescribingSecureHTTPErrors, aTransportErrorPassesItsSentenceThrough) {
    EXPECT_STREQ(TransportError("The connection was refused.").what(), "The connection was refused.");
}

} // namespace
} // namespace kestrin
