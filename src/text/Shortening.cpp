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

} // namespace

std::string shortenedForDisplay(std::string_view text, std::size_t maximumBytes) {
    std::size_t length = std::min(text.size(), maximumBytes);
    while (length > 0 && length < text.size() && continuesALetter(text[length]))
        --length;
    std::string shown(text.substr(0, length));
    std::ranges::replace_if(shown, isControl, ' ');
    if (length < text.size()) shown += "…";
    return shown;
}

} // namespace kestrin
