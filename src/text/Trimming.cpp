#include "text/Trimming.h"

#include <algorithm>
#include <array>

namespace kestrin {
namespace {

// Every character to be trimmed, encoded. No encoding of one character ends in that of another, so the texts can be
// compared at either end without being decoded.
constexpr std::array<std::string_view, 25> whiteSpace{
    "\t", "\n", "\v", "\f", "\r", " ", //
    "\xC2\x85",                        // next line
    "\xC2\xA0",                        // no-break space
    "\xE1\x9A\x80",                    // Ogham space mark
    "\xE2\x80\x80", "\xE2\x80\x81", "\xE2\x80\x82", "\xE2\x80\x83", "\xE2\x80\x84", "\xE2\x80\x85", // quads, spaces
    "\xE2\x80\x86", "\xE2\x80\x87", "\xE2\x80\x88", "\xE2\x80\x89", "\xE2\x80\x8A", // of fixed width
    "\xE2\x80\xA8",                                                                 // line separator
    "\xE2\x80\xA9",                                                                 // paragraph separator
    "\xE2\x80\xAF",                                                                 // narrow no-break space
    "\xE2\x81\x9F",                                                                 // medium mathematical space
    "\xE3\x80\x80",                                                                 // ideographic space
};

} // namespace

std::string_view trimmed(std::string_view text) {
    for (;;) {
        const auto* const found =
            std::ranges::find_if(whiteSpace, [&](auto sign) { return text.starts_with(sign); });
        if (found == whiteSpace.end()) break;
        text.remove_prefix(found->size());
    }
    for (;;) {
        const auto* const found = std::ranges::find_if(whiteSpace, [&](auto sign) { return text.ends_with(sign); });
        if (found == whiteSpace.end()) break;
        text.remove_suffix(found->size());
    }
    return text;
}

} // namespace kestrin
