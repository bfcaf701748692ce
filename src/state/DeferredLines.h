#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace kestrin {

/// The last lines of a history, which are known to decode and whose records are not kept: most leave again unread.
/// First in, first out. A line lies where it was found until `keep` copies it; the `historyLinePadding` bytes
/// behind it can be read there and here.
class DeferredLines {
public:
    static constexpr std::size_t maximum = 32;

    struct Line {
        std::string_view text;
        bool up = false; ///< what its record says
    };

    [[nodiscard]] std::size_t count() const { return added_ - removed_; }
    [[nodiscard]] const Line& oldest() const { return lines_[removed_ % maximum]; }

    /// There must be fewer than `maximum`. The bytes of the line must stay until the next `keep`.
    void add(Line line) { lines_[added_++ % maximum] = line; }
    void removeOldest() { ++removed_; }
    /// Makes all lines independent of the memory they came from.
    void keep();

private:
    std::size_t added_ = 0;
    std::size_t removed_ = 0;
    std::size_t kept_ = 0; ///< of those added, the ones from here on lie in foreign memory
    std::array<Line, maximum> lines_;
    std::array<std::string, maximum> memory_; ///< of the lines kept, with the padding
};

} // namespace kestrin
