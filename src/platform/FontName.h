#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

/// A family and a size. Weight and slant are left out: they tell headings from text, which is the program's to say.
struct FontName {
    std::string family; ///< empty: none was named
    double points = 0;  ///< positive

    friend bool operator==(const FontName&, const FontName&) = default;
};

/// Reads "FAMILIES STYLES SIZE" as GNOME and GTK store a font: "Noto Sans Bold 10.5", "Roboto Condensed, 10",
/// "Sans 12px". Takes the first family. Nothing if there is no usable size or a control character.
/// Source: pango_font_description_from_string.
[[nodiscard]] std::optional<FontName> fontFromPango(std::string_view text);

/// Reads "FAMILY,POINTS,PIXELS,..." as Plasma stores a font: 10 fields of Qt 5, 16 or 17 of Qt 6. Nothing if there
/// are fewer, no family, no usable size or a control character. Source: QFont::toString.
[[nodiscard]] std::optional<FontName> fontFromQt(std::string_view text);

} // namespace kestrin
