#include "text/Isolation.h"

namespace kestrin {

namespace {

/// Whether one of U+202A to U+202E (embeddings and overrides) or U+2066 to U+2069 (isolates) begins at `rest`.
/// Each is three bytes long in UTF-8.
bool beginsWithDirectionControl(std::string_view rest) {
    if (rest.size() < 3 || !rest.starts_with("\xE2")) return false;
    const auto second = static_cast<unsigned char>(rest[1]);
    const auto third = static_cast<unsigned char>(rest[2]);
    return (second == 0x80 && third >= 0xAA && third <= 0xAE) || (second == 0x81 && third >= 0xA6 && third <= 0xA9);
}

} // namespace

std::string isolatedInSentence(std::string_view text) {
    std::string isolated = "\u2068";
    isolated.reserve(text.size() + 6);
    while (!text.empty()) {
        if (beginsWithDirectionControl(text)) {
            text.remove_prefix(3);
        } else {
            isolated += text.front();
            text.remove_prefix(1);
        }
    }
    return isolated + "\u2069";
}

} // namespace kestrin
