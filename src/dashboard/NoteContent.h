#pragma once

#include "content/StateColor.h"

#include <string>

namespace kestrin {

/// A line of text with a symbol before it.
struct NoteContent {
    std::string symbol;
    StateColor color = StateColor::secondary;
    std::string text;

    bool operator==(const NoteContent&) const = default;
};

} // namespace kestrin
