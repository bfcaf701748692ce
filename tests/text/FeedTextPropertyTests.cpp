#include "fuzz/Choices.h"
#include "text/FeedText.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <rapidcheck.h>
#include <string>
#include <string_view>
#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <vector>

namespace kestrin {
namespace {

using namespace std::string_view_literals;
using Numbers = std::vector<std::uint32_t>;

const RepeatableCases repeatable("seed=20260131 max_success=4000");

/// Pieces of text that break, join or disappear, alone or beside one another.
constexpr std::string_view pieces[] = {"a"sv, "b c"sv, " "sv, "  "sv, "\t\n"sv, "\u00A0"sv, "\u2028"sv, "\u0301"sv,
    "e\u0301"sv, "\u200D"sv, "\u200B"sv, "\u202E"sv, "\u00AD"sv, "👩"sv, "👩\u200D🚒"sv, "🇩"sv, "🇩🇪"sv, "\uFE0F"sv,
    "👍🏽"sv, "\u1112"sv, "\u1161"sv, "\u11AB"sv, "\u0600"sv, "\u0378"sv, "\uFFFE"sv, "\uFFFD"sv, "\uE000"sv,
    "\0"sv, "\r"sv, "\n"sv, "\x7F"sv, "\xFF"sv, "\xE2\x82"sv, "\x80"sv, "\xED\xA0\x80"sv, "\xF0\x9F"sv, "\u0E33"sv,
    "\u0903"sv, "\u0D4E"sv, "漢"sv, "longer words for the cut"sv};

std::string text(Choices& choose) {
    std::string all;
    for (std::size_t more = choose.below(30); more > 0; --more)
        all += choose.of(pieces);
    return all;
}

std::size_t clustersOf(const std::string& text) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> breaks(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    const icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(text);
    breaks->setText(unicode);
    std::size_t count = 0;
    while (breaks->next() != icu::BreakIterator::DONE)
        ++count;
    return count;
}

bool isUTF8(const std::string& text) {
    std::string again;
    icu::UnicodeString::fromUTF8(text).toUTF8String(again);
    return again == text;
}

/// Letters, marks, figures, signs: what can be seen, alone or on the letter before it.
bool isVisible(UChar32 character) {
    return u_isgraph(character) && u_charType(character) != U_FORMAT_CHAR;
}

bool holdsSomethingVisible(const std::string& text) {
    const icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(text);
    for (int32_t place = 0; place < unicode.length(); place = unicode.moveIndex32(place, 1))
        if (isVisible(unicode.char32At(place))) return true;
    return false;
}

/// Calls the check with a made-up text and limit.
void forAnyText(const std::string& promise, const std::function<void(const std::string&, std::size_t)>& check) {
    EXPECT_TRUE(rc::check(promise, [&](const Numbers& numbers) {
        Choices choose(numbers);
        const std::size_t limit = choose.below(12);
        const std::string input = text(choose);
        RC_LOG() << "limit " << limit << ", text: " << input << '\n';
        check(input, limit);
    }));
}

TEST(ACleanedFeedText, isNotChangedByCleaningItAgain) {
    forAnyText("idempotent", [](const std::string& input, std::size_t limit) {
        const std::string once = cleanFeedText(input, limit);
        RC_ASSERT(cleanFeedText(once, limit) == once);
        RC_ASSERT(cleanFeedText(once, 1000) == once);
    });
}

TEST(ACleanedFeedText, isNeverLongerThanTheLimit) {
    forAnyText("limit", [](const std::string& input, std::size_t limit) {
        RC_ASSERT(clustersOf(cleanFeedText(input, limit)) <= limit);
    });
}

TEST(ACleanedFeedText, isCutNoEarlierThanItMust) {
    forAnyText("no shorter", [](const std::string& input, std::size_t limit) {
        const std::string whole = cleanFeedText(input, 1000);
        const std::string cut = cleanFeedText(input, limit);
        RC_ASSERT(whole.starts_with(cut));
        // One less where the cut left a blank.
        RC_ASSERT(cut == whole || clustersOf(cut) + 1 >= limit);
    });
}

TEST(ACleanedFeedText, isNotEmptyWhereAnythingWasVisible) {
    forAnyText("visible", [](const std::string& input, std::size_t limit) {
        RC_ASSERT(cleanFeedText(input, limit + 1).empty() != holdsSomethingVisible(input));
    });
}

TEST(ACleanedFeedText, isUTF8OnOneLineWithSingleBlanks) {
    forAnyText("form", [](const std::string& input, std::size_t limit) {
        const std::string clean = cleanFeedText(input, limit);
        RC_ASSERT(isUTF8(clean));
        RC_ASSERT(clean.find("  ") == std::string::npos);
        RC_ASSERT(!clean.starts_with(' ') && !clean.ends_with(' '));
        const icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(clean);
        for (int32_t place = 0; place < unicode.length(); place = unicode.moveIndex32(place, 1))
            RC_ASSERT(unicode.char32At(place) == ' ' || isVisible(unicode.char32At(place)));
    });
}

} // namespace
} // namespace kestrin
