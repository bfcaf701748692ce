#pragma once

#include <string>
#include <string_view>

namespace kestrin {

/// Texts of files that somebody else may have written, as short as the dashboard can lay them out. They stand alone
/// in their labels; `isolatedInSentence` is for those that become part of a sentence.
[[nodiscard]] std::string shownName(std::string_view name);
[[nodiscard]] std::string shownURL(std::string_view url);
[[nodiscard]] std::string shownError(std::string_view error);
/// Leaves all 160 characters of a summary in any script.
[[nodiscard]] std::string shownSummary(std::string_view summary);
/// A time stamp that could not be parsed.
[[nodiscard]] std::string shownTimestamp(std::string_view timestamp);
[[nodiscard]] std::string shownAddress(std::string_view address);
/// A message of the model, which may quote a name or a path.
[[nodiscard]] std::string shownMessage(std::string_view message);

} // namespace kestrin
