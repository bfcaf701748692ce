#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <variant>

namespace kestrin {

/// Settings by name ("Gtk/FontName"). Colours are left out.
using XSettings = std::map<std::string, std::variant<std::int32_t, std::string>>;

/// Reads the property _XSETTINGS_SETTINGS: byte order, serial and number, then type, name, serial and value of each
/// setting. Nothing for bytes that are not all of that. Bytes after the last setting are ignored. Any thread.
/// Source: the XSETTINGS specification of freedesktop.org.
[[nodiscard]] std::optional<XSettings> parseXSettings(std::span<const std::uint8_t> bytes);

} // namespace kestrin
