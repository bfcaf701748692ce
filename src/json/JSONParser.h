#pragma once

#include "json/JSONError.h"
#include "json/JSONValue.h"

#include <cstddef>
#include <string_view>

namespace kestrin {

/// Objects and arrays within one another; 128 are accepted, one more is refused.
inline constexpr std::size_t maximumJSONDepth = 128;

/// Reads one JSON text as RFC 8259 has it, strictly: a duplicate key, a raw NUL, a byte order mark, bad UTF-8, a
/// number out of range, deeper nesting than `maximumJSONDepth`, or anything behind the value throws `JSONError`.
/// Any thread, any input of any size; never recursive in the depth of the input.
[[nodiscard]] JSONValue parseJSON(std::string_view text);

/// The same for a text of somebody else's making, of which only some keys are of interest: a byte order mark in
/// front is passed over, a fraction closer to zero than a double can be is zero, and a key may stand twice.
/// `JSONReader` refuses such a key when it is asked for.
[[nodiscard]] JSONValue parseForeignJSON(std::string_view text);

} // namespace kestrin
