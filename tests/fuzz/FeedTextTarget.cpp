#include "fuzz/FuzzTarget.h"
#include "text/FeedText.h"

#include <memory>
#include <string>
#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

// The first byte is the limit, the others are a text of any bytes. Cleaning comes out as a plain cleaning in UTF-16
// does, and cleaning again changes nothing.

using namespace kestrin;

namespace {

icu::UnicodeString onOneLine(const icu::UnicodeString& text) {
    icu::UnicodeString line;
    for (std::int32_t place = 0; place < text.length(); place = text.moveIndex32(place, 1)) {
        const UChar32 letter = text.char32At(place);
        const int category = u_charType(letter);
        const bool blank = category == U_CONTROL_CHAR || category == U_FORMAT_CHAR || category == U_UNASSIGNED ||
                           category == U_SPACE_SEPARATOR || category == U_LINE_SEPARATOR ||
                           category == U_PARAGRAPH_SEPARATOR;
        if (!blank)
            line.append(letter);
        else if (!line.endsWith(u' '))
            line.append(u' ');
    }
    return line.trim();
}

std::string plainlyCleaned(std::string_view text, std::int32_t limit) {
    icu::UnicodeString line =
        onOneLine(icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())}));
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> breaks(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    breaks->setText(line);
    const std::int32_t end = limit == 0 ? 0 : breaks->next(limit);
    if (end != icu::BreakIterator::DONE) line.truncate(end);
    std::string bytes;
    line.trim().toUTF8String(bytes);
    return bytes;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size == 0) return 0;
    const std::size_t limit = bytes[0];
    const std::string_view text = inputText(bytes + 1, size - 1);
    const std::string clean = cleanFeedText(text, limit);
    require(clean == plainlyCleaned(text, bytes[0]), "a text is cleaned as a plain cleaning does");
    require(cleanFeedText(clean, limit) == clean, "cleaning a cleaned text changes nothing");
    return 0;
}
