#include "text/Shortening.h"

#include <algorithm>

namespace kestrin {

namespace {

bool continuesALetter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

bool isControl(char byte) {
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
}

// Beyond ASCII, what would still begin a new line: U+0085, U+2028 and U+2029.
void blankOutLineBreaks(std::string& text) {
    for (const std::string_view lineBreak : {"\u0085", "\u2028", "\u2029"})
        for (auto at = text.find(lineBreak); at != std::string::npos; at = text.find(lineBreak, at + 1))
            text.replace(at, lineBreak.size(), 1, ' ');
}

} // namespace

std::string shortenedForDisplay(std::string_view text, std::size_t maximumBytes) {
    std::size_t length = std::min(text.size(), maximumBytes);
    while (length > 0 && length < text.size() && continuesALetter(text[length]))
        --length;
    std::string shown(text.substr(0, length));
    std::ranges::replace_if(shown, isControl, ' ');
    blankOutLineBreaks(shown);
    if (length < text.size()) shown += "…";
    return shown;
}

} // namespace kestrin
