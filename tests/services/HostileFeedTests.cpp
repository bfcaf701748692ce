#include "FeedReading.h"
#include "json/JSONParser.h"

#include <array>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

// What a feed may send that no feed should. Each adapter gets all of it.

namespace kestrin {
namespace {

using Kind = ProviderAdapterParseError::Kind;

constexpr std::size_t mostThatIsFetched = 262144;

struct Sample {
    std::string adapterID;
    std::string feed;                    ///< operational, and without white space
    std::vector<std::string> knownPaths; ///< of every known key, the steps parted by "/", a list meant by its first
};

const std::array<Sample, 4>& samples() {
    static const std::array<Sample, 4> all = {{
        {"statuspage-v2",
            R"({"page":{"id":"1","name":"Example","updated_at":"now"},)"
            R"("status":{"indicator":"none","description":"Fine"}})",
            {"page", "page/name", "page/updated_at", "status", "status/indicator", "status/description"}},
        {"betterstack-index",
            R"({"data":{"id":"1","type":"status_page","attributes":{"company_name":"Example",)"
            R"("aggregate_state":"operational","updated_at":"now"}},"included":[]})",
            {"data", "data/type", "data/attributes", "data/attributes/company_name",
                "data/attributes/aggregate_state", "data/attributes/updated_at"}},
        {"instatus-summary",
            R"({"page":{"name":"Example","status":"UP"},)"
            R"("activeIncidents":[{"name":"A","status":"RESOLVED","impact":"MAJOROUTAGE"}],)"
            R"("activeMaintenances":[{"name":"B","status":"COMPLETED"}]})",
            {"page", "page/name", "page/status", "activeIncidents", "activeIncidents/0", "activeIncidents/0/name",
                "activeIncidents/0/status", "activeIncidents/0/impact", "activeMaintenances",
                "activeMaintenances/0", "activeMaintenances/0/name", "activeMaintenances/0/status"}},
        {"slack-status-v2",
            R"({"status":"ok","date_updated":"now",)"
            R"("active_incidents":[{"id":1,"title":"A","type":"notice","status":"scheduled"}]})",
            {"status", "date_updated", "active_incidents", "active_incidents/0", "active_incidents/0/title",
                "active_incidents/0/type", "active_incidents/0/status"}},
    }};
    return all;
}

/// What takes the place of a member.
using Change = std::function<std::vector<JSONValue::Member>(const JSONValue::Member&)>;

/// The document with the member at the path changed; a step into a list leads to its first element.
JSONValue changedAt(const JSONValue& document, std::string_view path, const Change& change) {
    const std::string_view step = path.substr(0, path.find('/'));
    const std::string_view rest = step.size() < path.size() ? path.substr(step.size() + 1) : std::string_view();
    const auto changedMember = [&](const JSONValue::Member& member) -> std::vector<JSONValue::Member> {
        if (rest.empty()) return change(member);
        return {{member.first, changedAt(member.second, rest, change)}};
    };
    if (const JSONValue::Array* list = document.asArray()) {
        JSONValue::Array changed = *list;
        const auto elements = changedMember({std::string(step), changed.front()});
        changed.erase(changed.begin());
        for (const auto& [index, element] : elements)
            changed.insert(changed.begin(), element);
        return changed;
    }
    JSONValue::Object changed;
    for (const JSONValue::Member& member : *document.asObject())
        for (JSONValue::Member& now : member.first == step ? changedMember(member) : std::vector{member})
            changed.push_back(std::move(now));
    return changed;
}

JSONValue withReplaced(const JSONValue& document, std::string_view path, const JSONValue& replacement) {
    return changedAt(document, path,
        [&](const auto& member) { return std::vector{JSONValue::Member(member.first, replacement)}; });
}

JSONValue without(const JSONValue& document, std::string_view path) {
    return changedAt(document, path, [](const auto&) { return std::vector<JSONValue::Member>(); });
}

JSONValue withDoubled(const JSONValue& document, std::string_view path) {
    return changedAt(document, path, [](const auto& member) { return std::vector{member, member}; });
}

/// The sample with one more member in front of the others.
std::string withMember(const Sample& sample, const std::string& member) {
    return "{" + member + "," + sample.feed.substr(1);
}

TEST(AHostileFeed, isNotWhatTheSamplesAre) {
    for (const Sample& sample : samples()) {
        EXPECT_EQ(readFeed(sample.adapterID, sample.feed).state, ProviderState::operational) << sample.adapterID;
        // Or else the tests below would replace nothing.
        for (const std::string& path : sample.knownPaths)
            EXPECT_NE(withReplaced(parseJSON(sample.feed), path, 7), parseJSON(sample.feed)) << path;
    }
}

TEST(AHostileFeed, cutAfterAnyByteIsMalformed) {
    for (const Sample& sample : samples())
        for (std::size_t length = 0; length < sample.feed.size(); ++length)
            EXPECT_EQ(refusalOf(sample.adapterID, sample.feed.substr(0, length)), Kind::malformed)
                << sample.adapterID << " after " << length;
}

TEST(AHostileFeed, withAWrongTypeAtAnyKnownKeyIsMalformed) {
    const std::array<JSONValue, 6> values = {JSONValue(true), JSONValue(7), JSONValue(0.5), JSONValue("text"),
        JSONValue(JSONValue::Array{}), JSONValue(JSONValue::Object{})};
    for (const Sample& sample : samples()) {
        const JSONValue document = parseJSON(sample.feed);
        for (const std::string& path : sample.knownPaths) {
            std::size_t refused = 0;
            for (const JSONValue& value : values)
                if (refusalOf(sample.adapterID, writeCompact(withReplaced(document, path, value))) ==
                    Kind::malformed)
                    ++refused;
            // One of the types is the right one.
            EXPECT_EQ(refused, values.size() - 1) << sample.adapterID << " " << path;
        }
    }
}

TEST(AHostileFeed, withNullAtAKnownKeyIsReadAsIfTheKeyWereAbsent) {
    for (const Sample& sample : samples()) {
        for (const std::string& path : sample.knownPaths) {
            const std::string feed = writeCompact(withReplaced(parseJSON(sample.feed), path, nullptr));
            if (path.ends_with("/0")) {
                EXPECT_EQ(refusalOf(sample.adapterID, feed), Kind::malformed) << "null is no element of " << path;
                continue;
            }
            const std::string absent = writeCompact(without(parseJSON(sample.feed), path));
            EXPECT_EQ(refusalOf(sample.adapterID, feed), refusalOf(sample.adapterID, absent)) << path;
            if (!refusalOf(sample.adapterID, absent)) {
                EXPECT_EQ(readFeed(sample.adapterID, feed), readFeed(sample.adapterID, absent)) << path;
            }
        }
    }
}

TEST(AHostileFeed, ofAnotherTypeAltogetherIsMalformed) {
    for (const Sample& sample : samples())
        for (const char* document : {"", " ", "null", "true", "0", "\"ok\"", "[]", "[{}]", "{", "}", "{]", "nul",
                 "{\"page\":{},}", "{'page':{}}", "{} {}", "{}\n{}", "// none\n{}", "{\"status\":NaN}"})
            EXPECT_EQ(refusalOf(sample.adapterID, document), Kind::malformed) << sample.adapterID << document;
}

TEST(AHostileFeed, nestedAHundredThousandLevelsDeepIsMalformed) {
    for (const Sample& sample : samples()) {
        for (const std::string open : {"[", "{\"a\":"}) {
            std::string nested;
            for (int level = 0; level < 100000; ++level)
                nested += open;
            EXPECT_EQ(refusalOf(sample.adapterID, nested), Kind::malformed);
            EXPECT_EQ(refusalOf(sample.adapterID, withMember(sample, "\"x\":" + nested)), Kind::malformed);
        }
        const std::string closed = "\"x\":" + std::string(100000, '[') + std::string(100000, ']');
        EXPECT_EQ(refusalOf(sample.adapterID, withMember(sample, closed)), Kind::malformed);
        const std::string bearable = "\"x\":" + std::string(127, '[') + std::string(127, ']');
        EXPECT_EQ(readFeed(sample.adapterID, withMember(sample, bearable)).state, ProviderState::operational);
    }
}

TEST(AHostileFeed, withANumberOfAMegabyteUnderAnUnknownKeyDoesNotHurt) {
    const std::string digits(1 << 20, '9');
    for (const Sample& sample : samples()) {
        // An integer that long is beyond what a double holds, a fraction that long is not.
        EXPECT_EQ(refusalOf(sample.adapterID, withMember(sample, "\"x\":" + digits)), Kind::malformed);
        EXPECT_EQ(refusalOf(sample.adapterID, withMember(sample, "\"x\":-1e" + digits)), Kind::malformed);
        EXPECT_EQ(
            readFeed(sample.adapterID, withMember(sample, "\"x\":0." + digits)).state, ProviderState::operational);
        EXPECT_EQ(readFeed(sample.adapterID, withMember(sample, "\"x\":18446744073709551616")).state,
            ProviderState::operational);
    }
}

TEST(AHostileFeed, thatGivesAKnownKeyTwiceIsMalformedAndAnUnknownOneDoesNotMatter) {
    for (const Sample& sample : samples()) {
        for (const std::string& path : sample.knownPaths) {
            if (path.ends_with("/0")) continue;
            const std::string feed = writeCompact(withDoubled(parseJSON(sample.feed), path));
            EXPECT_EQ(refusalOf(sample.adapterID, feed), Kind::malformed) << sample.adapterID << " " << path;
        }
        for (const char* twice : {R"("x":1,"x":"a")", R"("x":1,"\u0078":1)", R"("x":{"y":1,"y":{"z":[],"z":1}})"})
            EXPECT_EQ(
                readFeed(sample.adapterID, withMember(sample, twice)), readFeed(sample.adapterID, sample.feed))
                << sample.adapterID << twice;
    }
}

TEST(AHostileFeed, withAByteOrderMarkInFrontIsReadAsIfThereWereNone) {
    for (const Sample& sample : samples()) {
        const std::string marked = "\xEF\xBB\xBF" + sample.feed;
        EXPECT_EQ(readFeed(sample.adapterID, marked), readFeed(sample.adapterID, sample.feed)) << sample.adapterID;
        EXPECT_EQ(refusalOf(sample.adapterID, "\xEF\xBB\xBF" + marked), Kind::malformed) << sample.adapterID;
    }
}

TEST(AHostileFeed, withBytesThatAreNoTextIsMalformed) {
    using namespace std::string_view_literals;
    for (const Sample& sample : samples()) {
        for (const std::string_view bytes :
            {"\xFF"sv, "\xC0\xAF"sv, "\xED\xA0\x80"sv, "\xF4\x90\x80\x80"sv, "\xE2\x82"sv, "\x80"sv, "\0"sv,
                "\x01"sv, "\n"sv, R"(\ud800)"sv, R"(\udc00\ud800)"sv, R"(\u12)"sv, R"(\x41)"sv})
            EXPECT_EQ(refusalOf(sample.adapterID, withMember(sample, "\"x\":\"" + std::string(bytes) + "\"")),
                Kind::malformed)
                << sample.adapterID;
        EXPECT_EQ(refusalOf(sample.adapterID, sample.feed + std::string(1, '\0')), Kind::malformed);
        EXPECT_EQ(refusalOf(sample.adapterID, std::string("\xFF\xFE{\0}\0", 6)), Kind::malformed);
    }
}

TEST(AHostileFeed, cannotTurnOrHideItsTexts) {
    const std::string bad = R"(\u202Eevil\u2066\u0000\u0007\u001B[31m\u200D\u2028name\u00A0\uFEFF\uDB40\uDC41)";
    EXPECT_EQ(readFeed("statuspage-v2", R"({"page":{"name":")" + bad +
                                            R"("},"status":{"indicator":"none","description":")" + bad + R"("}})"),
        (ParsedProviderStatus{ProviderState::operational, "evil [31m name", std::nullopt, "evil [31m name"}));
    EXPECT_EQ(
        readFeed("betterstack-index", R"({"data":{"attributes":{"company_name":")" + bad + R"("}}})").pageName,
        "evil [31m name");
    EXPECT_EQ(
        readFeed("instatus-summary", R"({"page":{"status":"hasissues"},"activeIncidents":[{"status":"monitoring",)"
                                     R"("impact":"minoroutage","name":")" +
                                         bad + R"("}]})")
            .summary,
        "evil [31m name");
    EXPECT_EQ(readFeed("slack-status-v2",
                  R"({"status":"active","active_incidents":[{"type":"notice","status":"active","title":")" + bad +
                      R"("}]})")
                  .summary,
        "evil [31m name");
}

TEST(AHostileFeed, ofTheLargestSizeIsReadAndOneByteMoreChangesNothing) {
    for (const Sample& sample : samples()) {
        for (const std::size_t size : {mostThatIsFetched, mostThatIsFetched + 1}) {
            const std::string blanks(size - sample.feed.size(), ' ');
            EXPECT_EQ(readFeed(sample.adapterID, sample.feed + blanks).state, ProviderState::operational);
            const std::string quoted(size - sample.feed.size() - 7, 'q');
            const std::string feed = withMember(sample, "\"x\":\"" + quoted + "\"");
            EXPECT_GE(feed.size(), size);
            EXPECT_EQ(readFeed(sample.adapterID, feed).state, ProviderState::operational);
        }
    }
}

TEST(AHostileFeed, fullOfIncidentsIsStillJudgedToTheLast) {
    std::string incidents;
    while (incidents.size() < mostThatIsFetched - 300)
        incidents += R"({"title":"A","type":"notice","status":"scheduled"},)";
    const std::string begin = R"({"status":"ok","active_incidents":[)" + incidents;
    EXPECT_EQ(readFeed("slack-status-v2", begin + R"({"title":"B","type":"notice","status":"resolved"}]})").state,
        ProviderState::operational);
    EXPECT_EQ(readFeed("slack-status-v2", begin + R"({"title":"B","type":"notice","status":"active"}]})").state,
        ProviderState::unknown);
    EXPECT_EQ(refusalOf("slack-status-v2", begin + "7]}"), Kind::malformed);
}

} // namespace
} // namespace kestrin
