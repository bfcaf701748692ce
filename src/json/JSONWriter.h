#pragma once

#include "json/JSONValue.h"

#include <string>

namespace kestrin {

/// The form of the state files: two blanks of indent, keys sorted as UTF-8 bytes, slashes as they are, and one line
/// feed at the end.
[[nodiscard]] std::string writePretty(const JSONValue& value);

/// The form of a history line: no white space, keys in the order given, no line feed.
[[nodiscard]] std::string writeCompact(const JSONValue& value);

// Neither form ever fails on its content: bytes that are no UTF-8 are written as U+FFFD, because the text of an
// error may come from anywhere, and a number that JSON cannot hold is written as null.

} // namespace kestrin
