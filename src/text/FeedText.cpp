#include "text/FeedText.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

namespace kestrin {

namespace {

constexpr UChar32 replacementCharacter = 0xFFFD;
constexpr std::string_view replacementText = "\uFFFD";

/// Unassigned characters are drawn as nothing, or as whatever a later Unicode makes of them.
bool isUnfit(UChar32 character) {
    return (U_MASK(u_charType(character)) & (U_GC_CC_MASK | U_GC_CF_MASK | U_GC_CN_MASK | U_GC_CS_MASK)) != 0;
}

/// The character at `offset`, and `offset` moved behind it; U+FFFD for bytes that encode none.
UChar32 nextCharacter(std::string_view text, std::size_t& offset) {
    const auto first = static_cast<unsigned char>(text[offset]);
    if (first < 0x80) {
        ++offset;
        return first;
    }
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data() + offset);
    const auto length = static_cast<std::int32_t>(std::min(text.size() - offset, std::size_t{U8_MAX_LENGTH}));
    std::int32_t used = 0;
    UChar32 character = 0;
    // NOLINTNEXTLINE(bugprone-inc-dec-in-conditions): ICU's macro is made so.
    U8_NEXT(bytes, used, length, character);
    offset += static_cast<std::size_t>(used);
    return character < 0 ? replacementCharacter : character;
}

/// The visible pieces, with one blank between two; `characters` counts what was written.
std::string onOneLine(std::string_view text, std::size_t& characters) {
    std::string line;
    line.reserve(text.size());
    bool blankDue = false;
    for (std::size_t offset = 0; offset < text.size();) {
        const std::size_t begin = offset;
        const UChar32 character = nextCharacter(text, offset);
        if (isUnfit(character) || u_isUWhiteSpace(character)) {
            blankDue = !line.empty();
            continue;
        }
        if (blankDue) line += ' ';
        characters += blankDue ? 2 : 1;
        blankDue = false;
        line += character == replacementCharacter ? replacementText : text.substr(begin, offset - begin);
    }
    return line;
}

/// Where the first `limit` clusters of a text end that has more characters than that.
std::size_t endOfClusters(std::string_view text, std::size_t limit) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> clusters(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    UText view = UTEXT_INITIALIZER;
    utext_openUTF8(&view, text.data(), static_cast<std::int64_t>(text.size()), &status);
    const std::unique_ptr<UText, decltype(&utext_close)> closing(&view, utext_close);
    if (U_SUCCESS(status)) clusters->setText(&view, status);
    // Only for want of memory.
    if (U_FAILURE(status)) throw std::bad_alloc();

    std::int32_t end = clusters->first();
    for (std::size_t counted = 0; counted < limit; ++counted) {
        end = clusters->next();
        if (end == icu::BreakIterator::DONE) return text.size();
    }
    return static_cast<std::size_t>(end);
}

} // namespace

std::string cleanFeedText(std::string_view text, std::size_t limit) {
    std::size_t characters = 0;
    std::string line = onOneLine(text, characters);
    // A cluster has one character at least, so most texts need no search for clusters.
    if (characters > limit) line.resize(endOfClusters(line, limit));
    // The cut may have left the blank in front of what it took away; there is no other white space.
    if (line.ends_with(' ')) line.pop_back();
    return line;
}

} // namespace kestrin
