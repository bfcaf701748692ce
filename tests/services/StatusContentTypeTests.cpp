#include "services/StatusContentType.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(StatusContentType, isJSONInMixedCaseWithACharset) {
    EXPECT_TRUE(isAcceptedStatusContentType("application/json"));
    EXPECT_TRUE(isAcceptedStatusContentType("Application/JSON; charset=utf-8"));
    EXPECT_TRUE(isAcceptedStatusContentType(" \tapplication/json\r\n ;charset=utf-8"));
    EXPECT_TRUE(isAcceptedStatusContentType("application/json;"));
}

TEST(StatusContentType, isAnyApplicationTypeThatEndsInJSON) {
    EXPECT_TRUE(isAcceptedStatusContentType("application/vnd.api+json"));
    EXPECT_TRUE(isAcceptedStatusContentType("APPLICATION/Problem+Json; profile=\"x;y\""));
}

TEST(StatusContentType, isNoTextTypeAndNeverMissing) {
    EXPECT_FALSE(isAcceptedStatusContentType(std::nullopt));
    EXPECT_FALSE(isAcceptedStatusContentType("text/json"));
    EXPECT_FALSE(isAcceptedStatusContentType("text/html; charset=utf-8"));
    EXPECT_FALSE(isAcceptedStatusContentType("text/plain+json"));
}

TEST(StatusContentType, isNothingThatMerelyLooksLikeIt) {
    for (const char* type : {"", ";", "json", "application", "application/", "application/xml", "application/json5",
             "application/json, text/html", "application/jsonp", "application/x+json5", "application/ json",
             "image/svg+json", "xapplication/json", "text/html; type=application/json", "application/javascript"})
        EXPECT_FALSE(isAcceptedStatusContentType(type)) << type;
}

} // namespace
} // namespace kestrin
