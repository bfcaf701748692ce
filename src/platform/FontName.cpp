#include "platform/FontName.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <vector>

namespace kestrin {

namespace {

constexpr double pointsPerPixel = 0.75;
constexpr double leastPoints = 1;
constexpr double mostPoints = 200;
constexpr std::size_t leastFieldsOfQt = 10;

// Pango's words, without their dashes, which it ignores.
constexpr std::string_view styleWords[] = {"normal", "roman", "oblique", "italic", "smallcaps", "allsmallcaps",
    "petitecaps", "allpetitecaps", "unicase", "titlecaps", "thin", "ultralight", "extralight", "light", "semilight",
    "demilight", "book", "regular", "medium", "semibold", "demibold", "bold", "ultrabold", "extrabold", "heavy",
    "black", "ultraheavy", "extraheavy", "ultrablack", "extrablack", "ultracondensed", "extracondensed",
    "condensed", "semicondensed", "semiexpanded", "expanded", "extraexpanded", "ultraexpanded", "notrotated",
    "south", "upsidedown", "north", "rotatedleft", "east", "rotatedright", "west"};

bool hasControl(std::string_view text) {
    return std::ranges::any_of(
        text, [](char byte) { return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7f; });
}

std::string_view trimmed(std::string_view text) {
    while (text.starts_with(' '))
        text.remove_prefix(1);
    while (text.ends_with(' '))
        text.remove_suffix(1);
    return text;
}

/// All of the text as a number, in the notation of C whatever the locale is.
std::optional<double> number(std::string_view text) {
    double value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, std::chars_format::fixed);
    if (error != std::errc() || stop != end || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::optional<double> usable(std::optional<double> points) {
    return points && *points >= leastPoints && *points <= mostPoints ? points : std::nullopt;
}

std::optional<double> pangoSize(std::string_view word) {
    if (!word.ends_with("px")) return usable(number(word));
    word.remove_suffix(2);
    const std::optional<double> pixels = number(word);
    return pixels ? usable(*pixels * pointsPerPixel) : std::nullopt;
}

bool isStyle(std::string_view word) {
    std::string plain;
    for (const char byte : word)
        if (byte != '-') plain += byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
    return std::ranges::find(styleWords, plain) != std::end(styleWords);
}

/// Cuts the last word off.
std::string_view takeWord(std::string_view& text) {
    text = trimmed(text);
    const std::size_t space = text.rfind(' ');
    const std::size_t begin = space == std::string_view::npos ? 0 : space + 1;
    const std::string_view word = text.substr(begin);
    text = trimmed(text.substr(0, begin));
    return word;
}

std::string_view withoutStyles(std::string_view text) {
    // A comma ends the families, so that a name which ends like a style can be told from one.
    while (!text.empty() && !text.ends_with(',')) {
        std::string_view shorter = text;
        if (!isStyle(takeWord(shorter))) break;
        text = shorter;
    }
    return text;
}

} // namespace

std::optional<FontName> fontFromPango(std::string_view text) {
    if (hasControl(text)) return std::nullopt;
    std::string_view last = takeWord(text);
    // Variations and features of the font come after the size.
    while (last.starts_with('@') || last.starts_with('#'))
        last = takeWord(text);
    const std::optional<double> points = pangoSize(last);
    if (!points) return std::nullopt;
    const std::string_view families = withoutStyles(text);
    return FontName{std::string(trimmed(families.substr(0, families.find(',')))), *points};
}

std::optional<FontName> fontFromQt(std::string_view text) {
    if (hasControl(text)) return std::nullopt;
    std::vector<std::string_view> fields;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        fields.push_back(trimmed(text.substr(begin, end - begin)));
        begin = end + 1;
    }
    if (fields.size() < leastFieldsOfQt || fields[0].empty()) return std::nullopt;
    std::optional<double> points = usable(number(fields[1]));
    // A font that was chosen in pixels has a size of -1 points.
    if (const std::optional<double> pixels = number(fields[2]); !points && pixels)
        points = usable(*pixels * pointsPerPixel);
    if (!points) return std::nullopt;
    return FontName{std::string(fields[0]), *points};
}

} // namespace kestrin
