#include "fakes/TemporaryDirectory.h"
#include "fuzz/Choices.h"
#include "state/HistoryLine.h"
#include "state/StateReader.h"
#include "state/StateWriter.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <rapidcheck.h>
#include <string>
#include <string_view>
#include <vector>

using namespace kestrin;
using namespace std::string_view_literals;

namespace {

using Numbers = std::vector<std::uint32_t>;

const RepeatableCases repeatable("seed=20260131 max_success=100");

// Well-formed, as everything that gets into a record is; what bad bytes become is the writer's own test.
constexpr std::string_view texts[] = {"x"sv, ""sv, "2026-01-31T09:05:00Z"sv, "2026-01-31T09:05:00+0130"sv,
    "yesterday"sv, "https://example.com/a?b#c"sv, "\n"sv, "\r\n"sv, "\r"sv, "\0"sv, "\""sv, "\\"sv, "\\u0041"sv,
    "{\"up\":true}"sv, "ü"sv, "\u2028"sv, "\U0001F600"sv, "\uFFFD"sv, "\x7F"sv, "\x1B[2J"sv, "a\tb"sv, "null"sv};
constexpr std::int64_t integers[] = {200, 0, -1, 123, INT64_MAX, INT64_MIN, 1'000'000'000'000};
constexpr std::string_view garbage[] = {"garbage"sv, ""sv, "\r"sv, "{}"sv, "[]"sv, "null"sv, "\0\0\0"sv,
    "\xFF\xFE"sv, "{\"timestamp\":\"t\"}"sv,
    "{\"timestamp\":\"t\",\"site_id\":\"s\",\"url\":\"u\",\"dns_ok\":true,\"ips\":[],\"up\":1}"sv};

std::optional<std::int64_t> perhapsInteger(Choices& choose) {
    if (!choose.once(2)) return std::nullopt;
    return integers[choose.below(std::size(integers))];
}

std::optional<std::string> perhapsText(Choices& choose) {
    if (!choose.once(3)) return std::nullopt;
    return choose.of(texts);
}

CheckRecord anyCheck(Choices& choose) {
    CheckRecord record;
    record.up = !choose.once(3);
    record.timestamp = choose.of(texts);
    record.siteID = "target";
    record.url = choose.of(texts) + choose.of(texts);
    record.dnsOK = choose.once(2);
    for (std::size_t count = choose.below(4); count > 0; --count)
        record.ips.push_back(choose.of(texts));
    record.httpStatus = perhapsInteger(choose);
    record.elapsedMS = perhapsInteger(choose);
    record.error = perhapsText(choose);
    return record;
}

ProviderCheckRecord anyProviderCheck(Choices& choose) {
    constexpr ProviderState states[] = {ProviderState::operational, ProviderState::degraded, ProviderState::outage,
        ProviderState::maintenance, ProviderState::unknown};
    constexpr ProviderFailureCategory categories[] = {ProviderFailureCategory::unreachable,
        ProviderFailureCategory::unsafeDestination, ProviderFailureCategory::unsupportedFormat,
        ProviderFailureCategory::changedSchema, ProviderFailureCategory::unavailable,
        ProviderFailureCategory::malformed};
    ProviderCheckRecord record;
    record.timestamp = choose.of(texts);
    record.providerID = "target";
    record.endpoint = choose.of(texts);
    record.httpStatus = perhapsInteger(choose);
    record.elapsedMS = perhapsInteger(choose);
    record.state = states[choose.below(std::size(states))];
    record.summary = choose.of(texts) + choose.of(texts);
    record.officialUpdatedAt = perhapsText(choose);
    record.error = perhapsText(choose);
    if (choose.once(3)) record.failureCategory = categories[choose.below(std::size(categories))];
    return record;
}

/// The two kinds of history, told apart in nothing but these.
struct Websites {
    using Record = CheckRecord;
    using Projection = SiteHistoryProjection;
    static constexpr const char* file = "data/target.jsonl";
    static Record anyRecord(Choices& choose) { return anyCheck(choose); }
    static void append(StateWriter& writer, const Record& record) { static_cast<void>(writer.appendCheck(record)); }
    static Projection scanned(const StateReader& reader) {
        return reader.loadSiteSnapshots({{.id = "target", .name = "", .url = "", .enabled = true}}).front().history;
    }
};

struct Services {
    using Record = ProviderCheckRecord;
    using Projection = ProviderHistoryProjection;
    static constexpr const char* file = "data/providers/target.jsonl";
    static Record anyRecord(Choices& choose) { return anyProviderCheck(choose); }
    static void append(StateWriter& writer, const Record& record) {
        static_cast<void>(writer.appendProviderCheck(record));
    }
    static Projection scanned(const StateReader& reader) {
        ProviderDefinition target;
        target.id = "target";
        return reader.loadProviderSnapshots({target}).front().history;
    }
};

/// A history file that this program and others write to, and what must be found in it.
template <class Kind> class HistoryOnDisk {
public:
    using Record = Kind::Record;

    HistoryOnDisk() : writer_(root_.path()), reader_(root_.path()) { root_.write("sites.json", "{}"); }

    void append(const Record& record) {
        Kind::append(writer_, record);
        expected.append(record);
        endsInLineFeed_ = true;
    }

    /// Another program adds bytes; without a line feed at the end it was cut off.
    void addBytes(const std::string& bytes) {
        std::filesystem::create_directories((root_ / Kind::file).parent_path());
        std::ofstream(root_ / Kind::file, std::ios::binary | std::ios::app) << bytes;
        if (!bytes.empty()) endsInLineFeed_ = bytes.ends_with('\n');
    }

    void cutAt(std::uintmax_t size) { std::filesystem::resize_file(root_ / Kind::file, size); }

    [[nodiscard]] std::string content() const { return root_.read(Kind::file); }
    [[nodiscard]] bool endsInLineFeed() const { return endsInLineFeed_; }
    [[nodiscard]] Kind::Projection scanned() const { return Kind::scanned(reader_); }

    Kind::Projection expected;

private:
    TemporaryDirectory root_;
    StateWriter writer_;
    StateReader reader_;
    bool endsInLineFeed_ = true; ///< an empty file needs no seal either
};

template <class Kind> void writeSomething(HistoryOnDisk<Kind>& history, Choices& choose) {
    const auto record = Kind::anyRecord(choose);
    const std::string line = historyLine(record);
    // Another program that does not look for a torn line would lengthen it, so it writes to whole files only.
    switch (history.endsInLineFeed() ? choose.below(8) : 0) {
    case 5:
        return history.addBytes(choose.of(garbage) + (choose.once(2) ? "\r\n" : "\n"));
    case 6:
        history.expected.append(record);
        return history.addBytes(line + "\r\n");
    case 7: {
        const std::size_t written = choose.below(line.size() + 1);
        if (written == line.size()) history.expected.append(record);
        return history.addBytes(line.substr(0, written));
    }
    default:
        return history.append(record);
    }
}

template <class Kind> void expectFoldingToEqualScanning() {
    EXPECT_TRUE(rc::check("records folded one by one equal a fresh scan", [](const std::vector<Numbers>& steps) {
        HistoryOnDisk<Kind> history;
        for (const Numbers& numbers : steps) {
            Choices choose(numbers);
            writeSomething(history, choose);
        }
        RC_ASSERT(history.scanned() == history.expected);
    }));
}

template <class Kind> void expectACutToLoseOneLineAtMost() {
    EXPECT_TRUE(rc::check("a cut loses what stands behind it and one line",
        [](const std::vector<Numbers>& steps, std::uint32_t anywhere) {
            HistoryOnDisk<Kind> history;
            std::vector<typename Kind::Record> records;
            std::vector<std::size_t> ends; // of each line, its line feed not counted
            for (const Numbers& numbers : steps) {
                Choices choose(numbers);
                records.push_back(Kind::anyRecord(choose));
                history.append(records.back());
                ends.push_back(history.content().size() - 1);
            }
            const std::size_t cut = steps.empty() ? 0 : anywhere % (ends.back() + 2);
            if (!steps.empty()) history.cutAt(cut);

            history.expected = {};
            for (std::size_t line = 0; line < records.size(); ++line)
                if (ends[line] <= cut) history.expected.append(records[line]);
            const Numbers none;
            Choices plain(none);
            history.append(Kind::anyRecord(plain));
            RC_LOG() << "cut at byte " << cut << '\n';
            RC_ASSERT(history.scanned() == history.expected);
        }));
}

} // namespace

TEST(FoldingChecksOneByOne, equalsAFreshScanOfTheFileTheyWereAppendedTo) {
    expectFoldingToEqualScanning<Websites>();
}

TEST(FoldingServiceChecksOneByOne, equalsAFreshScanOfTheFileTheyWereAppendedTo) {
    expectFoldingToEqualScanning<Services>();
}

TEST(CuttingAHistoryAtAnyByte, losesNoLineInFrontOfItAndNoneAppendedLater) {
    expectACutToLoseOneLineAtMost<Websites>();
}

TEST(CuttingAServiceHistoryAtAnyByte, losesNoLineInFrontOfItAndNoneAppendedLater) {
    expectACutToLoseOneLineAtMost<Services>();
}
