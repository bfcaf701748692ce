#include "FeedReading.h"

#include <initializer_list>

namespace kestrin {
namespace {

JSONValue incident(const char* name, const char* status, const char* impact) {
    return JSONValue::object({{"name", name}, {"status", status}, {"impact", impact}});
}

JSONValue maintenance(const char* name, const char* status) {
    return JSONValue::object({{"name", name}, {"status", status}});
}

ParsedProviderStatus read(const char* pageStatus, std::initializer_list<JSONValue> incidents,
    std::initializer_list<JSONValue> maintenances = {}) {
    return readFeed(
        "instatus-summary", writeCompact(JSONValue::object({
                                {"page", JSONValue::object({{"name", "Example"}, {"status", pageStatus}})},
                                {"activeIncidents", JSONValue::array(incidents)},
                                {"activeMaintenances", JSONValue::array(maintenances)},
                            })));
}

ParsedProviderStatus expected(ProviderState state, const std::string& summary) {
    return {state, summary, std::nullopt, "Example"};
}

const ParsedProviderStatus unknown = expected(ProviderState::unknown, "Unknown");
const ParsedProviderStatus operational = expected(ProviderState::operational, "Operational");

TEST(InstatusFeed, hasIssuesWithOnlyResolvedIncidentsIsUnknown) {
    EXPECT_EQ(read("HASISSUES", {incident("A", "RESOLVED", "MAJOROUTAGE")}), unknown);
}

TEST(InstatusFeed, upWithAResolvedIncidentOfUnknownImpactIsOperational) {
    EXPECT_EQ(read("UP", {incident("A", "RESOLVED", "CATASTROPHE")}), operational);
}

TEST(InstatusFeed, upWithAnIncidentOfUnknownStatusIsUnknown) {
    EXPECT_EQ(read("UP", {incident("A", "FORGOTTEN", "MINOROUTAGE")}), unknown);
}

TEST(InstatusFeed, underMaintenanceWithAnIncidentIsTheIncident) {
    EXPECT_EQ(read("UNDERMAINTENANCE", {incident("API is slow", "IDENTIFIED", "MINOROUTAGE")},
                  {maintenance("Disks", "INPROGRESS")}),
        expected(ProviderState::degraded, "API is slow"));
}

TEST(InstatusFeed, ofTwoLiveIncidentsIsNamedByTheFirstAndJudgedByTheWorst) {
    EXPECT_EQ(read("HASISSUES",
                  {incident("A", "IDENTIFIED", "MINOROUTAGE"), incident("B", "INVESTIGATING", "MAJOROUTAGE")}),
        expected(ProviderState::outage, "A"));
}

TEST(InstatusFeed, upBesideAnOpenIncidentIsUnknown) {
    EXPECT_EQ(read("UP", {incident("A", "MONITORING", "DEGRADEDPERFORMANCE")}), unknown);
}

TEST(InstatusFeed, isUnknownWhereOneIncidentOfManyIsIncomplete) {
    const JSONValue whole = incident("A", "IDENTIFIED", "MINOROUTAGE");
    const JSONValue nameless = JSONValue::object({{"status", "IDENTIFIED"}, {"impact", "MINOROUTAGE"}});
    EXPECT_EQ(read("HASISSUES", {whole, nameless}), unknown);
    EXPECT_EQ(read("HASISSUES", {nameless, whole}), unknown);
}

TEST(InstatusFeed, doesNotLookAtMaintenancesUnlessTheyDecide) {
    const JSONValue nonsense = maintenance("Disks", "SOMEHOW");
    EXPECT_EQ(read("UP", {}, {nonsense}), operational);
    EXPECT_EQ(read("UNDERMAINTENANCE", {}, {maintenance("Network", "INPROGRESS"), nonsense}), unknown);
}

} // namespace
} // namespace kestrin
