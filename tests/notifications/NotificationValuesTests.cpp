#include "notifications/NotificationManagementState.h"
#include "notifications/NotificationObservation.h"
#include "notifications/NotificationTargetKey.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace kestrin {
namespace {

TEST(NotificationTargetKey, sortsByTheWordOfItsKindAndThenByTheBytesOfItsID) {
    const NotificationTargetKey capital = {NotificationTargetKind::provider, "Z"};
    const NotificationTargetKey service = {NotificationTargetKind::provider, "openai"};
    const NotificationTargetKey accented = {NotificationTargetKind::provider, "\xC3\xA9tat"};
    const NotificationTargetKey website = {NotificationTargetKind::website, "a"};
    std::vector<NotificationTargetKey> keys = {website, accented, service, capital};
    std::ranges::sort(keys);
    EXPECT_EQ(keys, (std::vector{capital, service, accented, website}));
}

TEST(NotificationTargetKey, tellsAWebsiteFromAServiceOfTheSameID) {
    EXPECT_NE((NotificationTargetKey{NotificationTargetKind::provider, "a"}),
        (NotificationTargetKey{NotificationTargetKind::website, "a"}));
}

TEST(NotificationObservation, ofAWebsiteTellsWhetherItIsUp) {
    CheckRecord record;
    record.siteID = "site-1";
    record.timestamp = "2026-01-02T03:04:05Z";
    record.up = true;
    const NotificationObservation expected = {.target = {NotificationTargetKind::website, "site-1"},
        .recordID = "site-1-2026-01-02T03:04:05Z",
        .timestamp = "2026-01-02T03:04:05Z",
        .outcome = WebsiteOutcome{true}};
    EXPECT_EQ(observationOf(record), expected);
    record.up = false;
    EXPECT_EQ(observationOf(record).outcome, NotificationObservationOutcome(WebsiteOutcome{false}));
}

TEST(NotificationObservation, ofAServiceTellsItsState) {
    for (const ProviderState state : {ProviderState::operational, ProviderState::degraded, ProviderState::outage,
             ProviderState::maintenance, ProviderState::unknown}) {
        ProviderCheckRecord record;
        record.providerID = "openai";
        record.timestamp = "2026-01-02T03:04:05Z";
        record.state = state;
        const NotificationObservation expected = {.target = {NotificationTargetKind::provider, "openai"},
            .recordID = "openai-2026-01-02T03:04:05Z",
            .timestamp = "2026-01-02T03:04:05Z",
            .outcome = ProviderOutcome{state}};
        EXPECT_EQ(observationOf(record), expected);
    }
}

TEST(NotificationObservation, ofTwoRecordsWithOneTimeStampHasOneRecordID) {
    CheckRecord up;
    up.siteID = "a";
    up.timestamp = "2026-01-02T03:04:05Z";
    CheckRecord down = up;
    up.up = true;
    EXPECT_EQ(observationOf(up).recordID, observationOf(down).recordID);
}

TEST(NotificationManagementState, madeByDefaultIsTheInertOne) {
    const NotificationManagementState inert;
    EXPECT_TRUE(std::holds_alternative<NotificationsInert>(inert.availability));
    EXPECT_EQ(inert.authorization, NotificationAuthorizationState::unsupported);
    EXPECT_FALSE(inert.masterIntentEnabled);
    EXPECT_FALSE(inert.masterEffective);
    EXPECT_EQ(inert.websiteSensitivity, NotificationWebsiteSensitivity::twoConsecutiveFailures);
    EXPECT_TRUE(inert.targetPreferences.empty());
    EXPECT_TRUE(inert.targetContexts.empty());
    EXPECT_FALSE(inert.canResetMalformedState);
}

} // namespace
} // namespace kestrin
