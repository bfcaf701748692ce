#include "state/PlainLineRecognition.h"

#include <algorithm>

namespace kestrin {

namespace {

// A look in vain costs up to a third of a parse. With these a file of other lines loses less than a hundredth, and
// one that has plain lines again is soon found out.
constexpr std::size_t creditAfterRest = 64;
constexpr std::size_t linesOfRest = 4096;

} // namespace

HistoryLineTemplates::Match PlainLineRecognition::readAndLearn(std::string_view text) {
    const auto plain = read_(text);
    if (!plain) return {};
    templates_.learn(*plain);
    return {plain->line.size(), plain->up};
}

void PlainLineRecognition::count(std::size_t recognised) {
    credit_ = std::min(credit_ + recognised, mostCredit);
    if (--credit_ > 0) return;
    credit_ = creditAfterRest;
    rest_ = linesOfRest;
}

bool PlainLineRecognition::rests() {
    if (rest_ == 0) return false;
    --rest_;
    return true;
}

} // namespace kestrin
