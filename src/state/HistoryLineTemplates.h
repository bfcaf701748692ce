#pragma once

#include "state/PlainHistoryLine.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace kestrin {

/// Recognises lines that differ from a plain one seen lately in nothing but the digits of their time stamp and
/// their elapsed time, which is most of a history: such a line is plain as well, but for its length. A few are
/// remembered, since up and down or two sets of addresses take turns; learning one more forgets the oldest.
class HistoryLineTemplates {
public:
    struct Match {
        std::size_t lineBytes = 0; ///< without the line feed; 0 for a text that begins with no such line
        bool up = false;
    };

    /// Judges the first line of a text, which must have its line feed there. The `historyLinePadding` bytes behind
    /// the text must be readable.
    [[nodiscard]] Match match(std::string_view text);
    void learn(const PlainHistoryLine& plain);

private:
    struct Template {
        std::string middle; ///< from the end of the time stamp to the elapsed time
        std::string end;    ///< from the end of the elapsed time on, with the line feed
        bool up = false;
    };
    static std::size_t lineBytes(const Template& known, std::string_view text);

    // Enough for up, down and two sets of addresses; every further one costs where none fits.
    std::array<Template, 4> templates_;
    std::size_t latest_ = 0; ///< the one that matched last, which is tried first
    std::size_t next_ = 0;   ///< the one to forget
};

} // namespace kestrin
