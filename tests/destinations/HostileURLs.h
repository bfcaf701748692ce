#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace kestrin {

/// A URL that readers are known to disagree on, or that somebody would try, and the host that may come out of it.
struct HostileURL {
    std::string_view text;
    std::optional<std::string_view> host; ///< none: the splitter refuses
};

[[nodiscard]] const std::vector<HostileURL>& hostileURLs();

} // namespace kestrin
