#pragma once

#include "state/HistoryLineTemplates.h"
#include "state/PlainHistoryLine.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace kestrin {

/// Finds out, cheaper than a parser, that a line decodes. Says nothing of other lines, and rests for a while where
/// too many are of that kind.
class PlainLineRecognition {
public:
    using Reading = std::optional<PlainHistoryLine> (*)(std::string_view text);
    explicit PlainLineRecognition(Reading read) : read_(read) {}

    /// The first line of a text, when it is recognised with its line feed; else zero bytes. The
    /// `historyLinePadding` bytes behind the text must be readable.
    [[nodiscard]] HistoryLineTemplates::Match recognise(std::string_view text) {
        const auto match = templates_.match(text);
        return match.lineBytes != 0 ? match : readAndLearn(text);
    }

    /// So many lines were recognised, and the one after them was not.
    void count(std::size_t recognised);
    /// Whether to leave the next line to the parser unseen; asked once for each line.
    [[nodiscard]] bool rests();

private:
    HistoryLineTemplates::Match readAndLearn(std::string_view text);

    static constexpr std::size_t mostCredit = 1024;

    Reading read_;
    HistoryLineTemplates templates_;
    std::size_t credit_ = mostCredit; ///< how many lines may still be looked at in vain
    std::size_t rest_ = 0;            ///< how many lines are left to the parser unseen
};

} // namespace kestrin
