#include "destinations/URLCharacters.h"

#include <cstddef>
#include <cstdint>

namespace kestrin {
namespace {

/// Decodes one character of well-formed UTF-8 (Unicode, table 3-7) and steps over it; false for anything else.
bool takeCharacter(std::string_view& text, std::uint32_t& character) {
    const auto byteAt = [&](std::size_t position) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(text[position]));
    };
    const std::uint32_t lead = byteAt(0);
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if ((lead >= 0x80 && lead < 0xC2) || lead > 0xF4 || text.size() < length) return false;
    character = length == 1 ? lead : lead & (0x7FU >> length);
    for (std::size_t position = 1; position < length; ++position) {
        if ((byteAt(position) & 0xC0U) != 0x80U) return false;
        character = (character << 6U) | (byteAt(position) & 0x3FU);
    }
    const bool overlong = (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    if (overlong || surrogate || character > 0x10FFFF) return false;
    text.remove_prefix(length);
    return true;
}

bool isControl(std::uint32_t character) {
    return character < 0x20 || (character >= 0x7F && character <= 0x9F);
}

} // namespace

bool hasOnlyURLCharacters(std::string_view text) {
    while (!text.empty()) {
        std::uint32_t character = 0;
        if (!takeCharacter(text, character) || character == '\\' || isControl(character)) return false;
    }
    return true;
}

} // namespace kestrin
