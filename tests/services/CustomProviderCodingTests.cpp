#include "services/CustomProviderCoding.h"

#include "services/CustomProviderSamples.h"
#include "services/CustomProviderStoreError.h"
#include "state/ThrownMessage.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

using namespace kestrin;

namespace {

constexpr std::string_view unsupported = "Kestrin refused unsupported custom-provider settings.";
constexpr std::string_view unreadable = "Kestrin could not read custom-provider settings.";

constexpr std::string_view golden = R"({
  "providers": [
    {
      "adapter": "statuspage-v2",
      "adapter_version": 1,
      "enabled": true,
      "id": "provider-2",
      "name": "Ä \"B\"",
      "status_page_url": "https://status.example.com/a/b"
    },
    {
      "adapter": "instatus-summary",
      "adapter_version": 1,
      "enabled": false,
      "id": "provider-1",
      "name": "Second",
      "status_page_url": "https://second.example.com"
    }
  ],
  "schema_version": 2
}
)";

const CustomProviderConfiguration configuration = {.schemaVersion = 2,
    .providers = {{.id = "provider-2",
                      .name = "Ä \"B\"",
                      .statusPageURL = "https://status.example.com/a/b",
                      .adapter = "statuspage-v2",
                      .adapterVersion = 1,
                      .enabled = true},
        {.id = "provider-1",
            .name = "Second",
            .statusPageURL = "https://second.example.com",
            .adapter = "instatus-summary",
            .adapterVersion = 1,
            .enabled = false}}};

std::string refusal(std::string_view text) {
    return thrownMessage<CustomProviderStoreError>([&] { static_cast<void>(decodeCustomProviders(text)); });
}

/// A file of one definition with these members.
std::string fileWith(std::string_view members) {
    return R"({"schema_version": 1, "providers": [{)" + std::string(members) + "}]}";
}

const std::string members =
    R"("id": "provider-1", "name": "N", "status_page_url": "u", "adapter": "a", "adapter_version": 1)";

std::string replaced(std::string text, std::string_view part, std::string_view by) {
    const auto place = text.find(part);
    if (place == std::string::npos) throw std::logic_error("no such part");
    return text.replace(place, part.size(), by);
}

} // namespace

TEST(TheFileOfAddedServices, hasTheGoldenBytes) {
    EXPECT_EQ(fileOf(configuration), golden);
}

TEST(TheFileOfAddedServices, readsBackTheSameInTheOrderOfTheList) {
    EXPECT_EQ(decodeCustomProviders(golden), configuration);
}

TEST(TheFileOfAddedServices, ofNoServiceIsReadAndWritten) {
    const CustomProviderConfiguration none = {.schemaVersion = 1, .providers = {}};
    EXPECT_EQ(fileOf(none), "{\n  \"providers\": [],\n  \"schema_version\": 1\n}\n");
    EXPECT_EQ(decodeCustomProviders(fileOf(none)), none);
}

TEST(TheFileOfAddedServices, mayHoldItsKeysInAnyOrderAndWithAnyWhiteSpace) {
    EXPECT_EQ(refusal(fileWith(R"("enabled":true,)" + members)), "no error");
    EXPECT_EQ(decodeCustomProviders(" {\"providers\":[]\t,\"schema_version\":1}\r\n").schemaVersion, 1);
}

TEST(TheFileOfAddedServices, keepsWhatAFieldHoldsUnjudged) {
    const CustomProviderConfiguration odd = {.schemaVersion = -7,
        .providers = {
            {.id = "", .name = "", .statusPageURL = "", .adapter = "", .adapterVersion = 1 - (1LL << 62)}}};
    EXPECT_EQ(decodeCustomProviders(fileOf(odd)), odd);
}

TEST(TheFileOfAddedServices, withAnExtraKeyInADefinitionIsRefusedEvenIfEveryKnownKeyIsRight) {
    EXPECT_EQ(refusal(fileWith(members + R"(, "enabled": true)")), "no error");
    EXPECT_EQ(refusal(fileWith(members + R"(, "enabled": true, "note": "")")), unsupported);
}

TEST(TheFileOfAddedServices, withAnyOtherSetOfKeysIsRefused) {
    const std::vector<std::string> files = {
        "{}",
        R"({"schema_version": 1})",
        R"({"providers": []})",
        R"({"schema_version": 1, "providers": [], "note": 1})",
        R"({"schema_version": 1, "Providers": []})",
        R"({"schemaVersion": 1, "providers": []})",
        fileWith(members),                                                  // one is missing
        fileWith(replaced(members, R"("id")", R"("enabled": true, "ID")")), // another letter case
        fileWith(replaced(members, R"("adapter")", R"("enabled": true, "adapter_identifier")")),
    };
    for (const std::string& file : files)
        EXPECT_EQ(refusal(file), unsupported) << file;
}

TEST(TheFileOfAddedServices, ofAnotherShapeIsRefused) {
    for (const std::string_view file : {"null", "1", "\"text\"", "[]", "true", R"([{"schema_version": 1}])",
             R"({"schema_version": 1, "providers": {}})", R"({"schema_version": 1, "providers": null})",
             R"({"schema_version": 1, "providers": [[]]})", R"({"schema_version": 1, "providers": [null]})",
             R"({"schema_version": 1, "providers": ["provider-1"]})"})
        EXPECT_EQ(refusal(file), unsupported) << file;
}

TEST(TheFileOfAddedServices, isJudgedByItsShapeBeforeItsTypes) {
    EXPECT_EQ(refusal(R"({"schema_version": "1", "providers": [{}]})"), unsupported);
    EXPECT_EQ(refusal(R"({"schema_version": "1", "providers": []})"), unreadable);
}

TEST(TheFileOfAddedServices, withAValueOfAnotherTypeCannotBeRead) {
    const std::string good = members + R"(, "enabled": true)";
    const std::vector<std::pair<std::string_view, std::string_view>> changes = {{R"("provider-1")", "1"},
        {R"("N")", "null"}, {R"("u")", "[]"}, {R"("a",)", "true,"},
        {R"("adapter_version": 1)", R"("adapter_version": 1.0)"},
        {R"("adapter_version": 1)", R"("adapter_version": 1e0)"},
        {R"("adapter_version": 1)", R"("adapter_version": "1")"},
        {R"("adapter_version": 1)", R"("adapter_version": true)"},
        {R"("adapter_version": 1)", R"("adapter_version": 9223372036854775808)"},
        {R"("enabled": true)", R"("enabled": 1)"}, {R"("enabled": true)", R"("enabled": null)"}};
    for (const auto& [part, by] : changes)
        EXPECT_EQ(refusal(fileWith(replaced(good, part, by))), unreadable) << part << " " << by;
    for (const std::string_view version : {"1.0", "true", "null", "\"1\"", "9223372036854775808", "[]"})
        EXPECT_EQ(refusal(R"({"providers": [], "schema_version": )" + std::string(version) + "}"), unreadable)
            << version;
}

TEST(TheFileOfAddedServices, thatIsNoStrictJSONCannotBeRead) {
    const std::string good(golden);
    const std::vector<std::string> files = {"", " ", "{", good.substr(0, good.size() - 3), good + "{}", good + ",",
        "\xEF\xBB\xBF" + good, good + std::string(1, '\0'), std::string(1, '\0'), replaced(good, "Second", "\xFF"),
        replaced(good, "Second", "\xC3"), replaced(good, "Second", "\\ud800"), replaced(good, "Second", "a\nb"),
        replaced(good, "true", "True"), replaced(good, "2\n}", "02\n}"), replaced(good, "2\n}", "2,\n}"),
        replaced(good, R"("enabled": true)", R"("enabled": true, "enabled": true)"),
        R"({"schema_version": 1, "schema_version": 1, "providers": []})",
        "{\"schema_version\": 1, \"providers\": [] // none\n}", std::string(200, '[') + std::string(200, ']')};
    for (const std::string& file : files)
        EXPECT_EQ(refusal(file), unreadable) << file;
}
