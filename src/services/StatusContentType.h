#pragma once

#include <optional>
#include <string>

namespace kestrin {

/// Whether a response with this Content-Type can be a status feed: "application/json", or an application type that
/// ends in "+json", in any letter case and with any parameters. No text type is, even if it holds JSON, and neither
/// is a response without the header. Any thread.
[[nodiscard]] bool isAcceptedStatusContentType(const std::optional<std::string>& headerValue);

} // namespace kestrin
