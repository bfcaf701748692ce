#include "fuzz/FeedJudgement.h"

#include "fuzz/FuzzTarget.h"
#include "services/ProviderAdapterParseError.h"
#include "services/ProviderAdapters.h"
#include "text/FeedText.h"
#include "json/JSONParser.h"

#include <memory>
#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace kestrin {

namespace {

using Kind = ProviderAdapterParseError::Kind;

struct Reading {
    std::optional<ParsedProviderStatus> status;
    std::optional<Kind> refusal;
};

Reading adapterReading(std::string_view response, const std::string& adapterID) {
    try {
        return {parseProviderStatus(response, adapterID, 1), std::nullopt};
    } catch (const ProviderAdapterParseError& refusal) {
        require(!refusal.message.empty(), "a refusal has a sentence");
        return {std::nullopt, refusal.kind};
    }
}

std::optional<JSONValue> parsed(std::string_view response) {
    try {
        return parseForeignJSON(response);
    } catch (const JSONError&) {
        return std::nullopt;
    }
}

Reading secondReading(std::string_view response, SecondOpinion opinion) {
    const auto document = parsed(response);
    if (!document) return {std::nullopt, Kind::malformed};
    bool wrongType = false;
    auto status = opinion(FeedWalk(&*document, wrongType));
    if (wrongType) return {std::nullopt, Kind::malformed};
    if (!status) return {std::nullopt, Kind::unrecognized};
    status->summary = cleanFeedText(status->summary, 160);
    if (status->summary.empty()) status->summary = title(status->state);
    if (status->pageName) status->pageName = cleanFeedText(*status->pageName, 80);
    if (status->pageName && status->pageName->empty()) status->pageName.reset();
    return {std::move(status), std::nullopt};
}

void requireFitToBeShown(const std::string& text, std::int32_t limit) {
    const icu::UnicodeString letters = icu::UnicodeString::fromUTF8(text);
    std::string again;
    letters.toUTF8String(again);
    require(!text.empty() && again == text, "a text is there and is UTF-8");
    require(!text.starts_with(' ') && !text.ends_with(' ') && text.find("  ") == std::string::npos,
        "a text has single blanks inside");
    for (std::int32_t place = 0; place < letters.length(); place = letters.moveIndex32(place, 1)) {
        const UChar32 letter = letters.char32At(place);
        require(letter == ' ' || (u_isgraph(letter) && u_charType(letter) != U_FORMAT_CHAR), "a text is visible");
    }
    if (letters.countChar32() <= limit) return;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> breaks(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    breaks->setText(letters);
    std::int32_t characters = 0;
    while (breaks->next() != icu::BreakIterator::DONE)
        ++characters;
    require(characters <= limit, "a text is within its limit");
}

} // namespace

void judgeFeed(std::string_view response, const std::string& adapterID, SecondOpinion opinion) {
    const Reading reading = adapterReading(response, adapterID);
    const Reading expected = secondReading(response, opinion);
    require(
        reading.refusal == expected.refusal, "a feed is refused for what is wrong with it, and for nothing else");
    if (!reading.status) return;
    require(reading.status->state == expected.status->state, "the state is the one that the feed states");
    require(*reading.status == *expected.status, "texts and time are those of the feed");
    requireFitToBeShown(reading.status->summary, 160);
    if (reading.status->pageName) requireFitToBeShown(*reading.status->pageName, 80);
}

bool isAnyOf(const std::string* text, std::initializer_list<std::string_view> words) {
    if (text == nullptr) return false;
    for (const std::string_view word : words) {
        bool same = text->size() == word.size();
        for (std::size_t place = 0; same && place < word.size(); ++place)
            same = (*text)[place] == word[place] || (word[place] >= 'a' && (*text)[place] == word[place] - 32);
        if (same) return true;
    }
    return false;
}

ParsedProviderStatus nothingKnown(const std::string* pageName, const std::string* officialUpdatedAt) {
    ParsedProviderStatus status;
    if (pageName != nullptr) status.pageName = *pageName;
    if (officialUpdatedAt != nullptr) status.officialUpdatedAt = *officialUpdatedAt;
    return status;
}

} // namespace kestrin
