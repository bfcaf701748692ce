#include "text/Words.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace kestrin {

namespace {

struct Step {
    std::size_t bytes;
    bool isWhiteSpace;
};

Step firstCharacter(std::string_view text) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto length = static_cast<std::int32_t>(std::min(text.size(), std::size_t{U8_MAX_LENGTH}));
    std::int32_t used = 0;
    UChar32 character = 0;
    // NOLINTNEXTLINE(bugprone-inc-dec-in-conditions): ICU's macro is made so.
    U8_NEXT(bytes, used, length, character);
    return {static_cast<std::size_t>(used), character >= 0 && u_isUWhiteSpace(character)};
}

} // namespace

std::vector<std::string_view> wordsOf(std::string_view text) {
    std::vector<std::string_view> words;
    std::size_t start = 0;
    for (std::size_t offset = 0; offset < text.size();) {
        const Step step = firstCharacter(text.substr(offset));
        if (step.isWhiteSpace) {
            if (offset > start) words.push_back(text.substr(start, offset - start));
            start = offset + step.bytes;
        }
        offset += step.bytes;
    }
    if (start < text.size()) words.push_back(text.substr(start));
    return words;
}

} // namespace kestrin
