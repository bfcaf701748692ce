#pragma once

#include <string>
#include <string_view>

namespace kestrin {

/// A text of somebody else between U+2068 and U+2069, so that inside a sentence of ours its direction neither turns
/// what is around it nor is turned. Characters of its own that steer direction are left out: one too many would end
/// the isolation early. Any thread.
[[nodiscard]] std::string isolatedInSentence(std::string_view text);

} // namespace kestrin
