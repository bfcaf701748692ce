#pragma once

#include "text/ASCIICase.h"

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

/// Whether a text of a feed is the word, which is given in small letters, in any case of A to Z.
[[nodiscard]] inline bool says(const std::optional<std::string>& text, std::string_view word) {
    return text && asciiLowercase(*text) == word;
}

[[nodiscard]] inline bool saysOneOf(
    const std::optional<std::string>& text, std::initializer_list<std::string_view> words) {
    return text && std::ranges::find(words, std::string_view(asciiLowercase(*text))) != words.end();
}

} // namespace kestrin
