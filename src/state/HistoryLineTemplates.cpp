#include "state/HistoryLineTemplates.h"

#include "state/EightBytes.h"

#include <cstdint>
#include <cstring>

namespace kestrin {

namespace {

constexpr std::string_view shapeOfTimestamp = "0000-00-00T00:00:00Z"; // a zero stands for any digit
constexpr std::size_t timestampEnd = PlainHistoryLine::timestampOffset + shapeOfTimestamp.size();

/// Whether eight bytes have the shape of the time stamp from `offset` on, judged all at once.
template <std::size_t offset> bool haveShape(const char* timestamp) {
    constexpr std::uint64_t shape = eightBytes(shapeOfTimestamp.data() + offset);
    constexpr std::uint64_t digits = [] {
        std::uint64_t marks = 0;
        for (std::size_t i = 0; i < 8; ++i)
            if (shapeOfTimestamp[offset + i] == '0') marks |= std::uint64_t{1} << (8 * i);
        return marks;
    }();
    const std::uint64_t word = eightBytes(timestamp + offset);
    // A digit is 0x30 to 0x39: its upper half is a 3, also after 6 is added. No addition carries into the next
    // byte once the first comparison holds.
    constexpr std::uint64_t compared = ~(digits * 0x0F);
    return (word & compared) == shape && ((word + digits * 6) & compared) == shape;
}

bool isTimestamp(const char* text) {
    return haveShape<0>(text) && haveShape<8>(text) && haveShape<12>(text);
}

} // namespace

HistoryLineTemplates::Match HistoryLineTemplates::match(std::string_view text) {
    if (const std::size_t bytes = lineBytes(templates_[latest_], text)) return {bytes, templates_[latest_].up};
    for (std::size_t i = 0; i < templates_.size(); ++i) {
        if (i == latest_) continue;
        if (const std::size_t bytes = lineBytes(templates_[i], text)) {
            latest_ = i;
            return {bytes, templates_[i].up};
        }
    }
    return {};
}

std::size_t HistoryLineTemplates::lineBytes(const Template& known, std::string_view text) {
    constexpr std::string_view beginning = R"({"timestamp":")";
    static_assert(beginning.size() == PlainHistoryLine::timestampOffset);
    constexpr std::size_t mostDigits = 18;
    const char* const line = text.data();
    if (text.size() < timestampEnd + known.middle.size() + 1 + known.end.size() || known.end.empty() ||
        std::memcmp(line + timestampEnd, known.middle.data(), known.middle.size()) != 0 ||
        !isTimestamp(line + PlainHistoryLine::timestampOffset) ||
        std::memcmp(line, beginning.data(), beginning.size()) != 0)
        return 0;
    const char* const elapsed = line + timestampEnd + known.middle.size();
    // At least the template's end is left behind the first digit, and beyond the text there is padding.
    std::size_t digits = 0;
    while (digits <= mostDigits && elapsed[digits] >= '0' && elapsed[digits] <= '9')
        ++digits;
    if (digits == 0 || digits > mostDigits || (digits > 1 && *elapsed == '0')) return 0;
    const std::size_t bytes = timestampEnd + known.middle.size() + digits + known.end.size();
    if (text.size() < bytes || std::memcmp(elapsed + digits, known.end.data(), known.end.size()) != 0) return 0;
    return bytes - 1;
}

void HistoryLineTemplates::learn(const PlainHistoryLine& plain) {
    if (plain.timestamp.size() != shapeOfTimestamp.size() || !isTimestamp(&plain.timestamp[0]) ||
        plain.elapsedMS.empty())
        return;
    const auto elapsedOffset = static_cast<std::size_t>(plain.elapsedMS.data() - plain.line.data());
    Template& forgotten = templates_[next_];
    forgotten.middle = plain.line.substr(timestampEnd, elapsedOffset - timestampEnd);
    forgotten.end = plain.line.substr(elapsedOffset + plain.elapsedMS.size());
    forgotten.end += '\n';
    forgotten.up = plain.up;
    latest_ = next_;
    next_ = (next_ + 1) % templates_.size();
}

} // namespace kestrin
