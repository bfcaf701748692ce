#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrin {

/// The body of a response as it grows, up to a limit in bytes: exactly the limit fits, one byte more does not.
struct BoundedResponseBody {
    std::uint64_t limit = 0;
    std::string data;

    /// False, and nothing is taken, when the piece would cross the limit.
    [[nodiscard]] bool append(std::string_view piece) {
        if (piece.size() > limit - data.size()) return false;
        data += piece;
        return true;
    }
};

} // namespace kestrin
