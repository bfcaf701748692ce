#include "state/PlainHistoryLine.h"

#include "model/ProviderState.h"
#include "state/EightBytes.h"
#include "state/HistoryKeys.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace kestrin {

namespace {

/// What stands before a value: `{"key":` or `,"key":`, put together by the compiler.
template <char before, const std::string_view& key>
constexpr auto member = [] {
    std::array<char, key.size() + 4> text{};
    text[0] = before;
    text[1] = '"';
    std::ranges::copy(key, text.begin() + 2);
    text[key.size() + 2] = '"';
    text[key.size() + 3] = ':';
    return text;
}();

constexpr std::uint64_t everyByte(std::uint64_t byte) {
    return byte * 0x0101'0101'0101'0101;
}

/// Sets the highest bit of each byte that a string of a plain line cannot hold: a quote, a backslash, a control
/// character, no ASCII. Above the first such byte others may be set by the borrow of the subtractions.
std::uint64_t marksOfSpecialBytes(std::uint64_t word) {
    const std::uint64_t quote = word ^ everyByte('"');
    const std::uint64_t backslash = word ^ everyByte('\\');
    const std::uint64_t control = (word - everyByte(0x20)) & ~word;
    return (((quote - everyByte(1)) & ~quote) | ((backslash - everyByte(1)) & ~backslash) | control | word) &
           everyByte(0x80);
}

/// Reads from the beginning of a text, one part of a plain line after the other. Each step says whether the part is
/// there, and has then passed it.
class Cursor {
public:
    explicit Cursor(std::string_view text) : at_(text.data()), end_(text.data() + text.size()) {}

    [[nodiscard]] const char* position() const { return at_; }

    template <std::size_t size> bool literal(const std::array<char, size>& expected) {
        if (left() < size || std::memcmp(at_, expected.data(), size) != 0) return false;
        at_ += size;
        return true;
    }
    template <std::size_t size> bool literal(const char (&expected)[size]) {
        if (left() < size - 1 || std::memcmp(at_, expected, size - 1) != 0) return false;
        at_ += size - 1;
        return true;
    }

    bool string(std::string_view& value) {
        if (!literal("\"")) return false;
        const char* begin = at_;
        // The bytes behind the text are read here, and what is found in them is refused below.
        for (; at_ < end_; at_ += sizeof(std::uint64_t)) {
            const std::uint64_t marks = marksOfSpecialBytes(eightBytes(at_));
            if (marks == 0) continue;
            at_ += std::countr_zero(marks) / 8;
            if (at_ >= end_ || *at_ != '"') return false;
            value = {begin, at_++};
            return true;
        }
        return false;
    }

    bool integer(std::string_view& digits) {
        constexpr std::size_t digitsThatNeverOverflow = 18;
        const char* begin = at_;
        while (at_ < end_ && *at_ >= '0' && *at_ <= '9')
            ++at_;
        digits = {begin, at_};
        return !digits.empty() && digits.size() <= digitsThatNeverOverflow && (digits.size() == 1 || *begin != '0');
    }

    bool boolean(bool& value) {
        value = literal("true");
        return value || literal("false");
    }

    bool strings() {
        if (!literal("[")) return false;
        if (literal("]")) return true;
        std::string_view ignored;
        do
            if (!string(ignored)) return false;
        while (literal(","));
        return literal("]");
    }

private:
    [[nodiscard]] std::size_t left() const { return at_ < end_ ? static_cast<std::size_t>(end_ - at_) : 0; }

    const char* at_;
    const char* end_;
};

using namespace historyKeys;

/// The two numbers that lines of both kinds may have.
bool readNumbers(Cursor& cursor, PlainHistoryLine& result) {
    std::string_view status;
    return (!cursor.literal(member<',', httpStatus>) || cursor.integer(status)) &&
           (!cursor.literal(member<',', elapsedMS>) || cursor.integer(result.elapsedMS));
}

bool readEnd(Cursor& cursor, std::string_view text, PlainHistoryLine& result) {
    if (!cursor.literal("}\n")) return false;
    result.line = text.substr(0, static_cast<std::size_t>(cursor.position() - text.data()) - sizeof '\n');
    return result.line.size() <= PlainHistoryLine::maximumBytes;
}

} // namespace

std::optional<PlainHistoryLine> readPlainCheck(std::string_view text) {
    Cursor cursor(text);
    PlainHistoryLine result;
    std::string_view value;
    bool dns = false;
    const bool plain =
        cursor.literal(member<'{', timestamp>) && cursor.string(result.timestamp) &&
        cursor.literal(member<',', siteID>) && cursor.string(value) && cursor.literal(member<',', url>) &&
        cursor.string(value) && cursor.literal(member<',', dnsOK>) && cursor.boolean(dns) &&
        cursor.literal(member<',', ips>) && cursor.strings() && readNumbers(cursor, result) &&
        cursor.literal(member<',', up>) && cursor.boolean(result.up) &&
        (!cursor.literal(member<',', error>) || cursor.string(value)) && readEnd(cursor, text, result);
    return plain ? std::optional(result) : std::nullopt;
}

std::optional<PlainHistoryLine> readPlainProviderCheck(std::string_view text) {
    Cursor cursor(text);
    PlainHistoryLine result;
    std::string_view value;
    const auto isState = [&] { return providerStateNamed(value).has_value(); };
    const auto isCategory = [&] { return providerFailureCategoryNamed(value).has_value(); };
    const bool plain = cursor.literal(member<'{', timestamp>) && cursor.string(result.timestamp) &&
                       cursor.literal(member<',', providerID>) && cursor.string(value) &&
                       cursor.literal(member<',', endpoint>) && cursor.string(value) &&
                       readNumbers(cursor, result) && cursor.literal(member<',', state>) && cursor.string(value) &&
                       isState() && cursor.literal(member<',', summary>) && cursor.string(value) &&
                       (!cursor.literal(member<',', officialUpdatedAt>) || cursor.string(value)) &&
                       (!cursor.literal(member<',', error>) || cursor.string(value)) &&
                       (!cursor.literal(member<',', failureCategory>) || (cursor.string(value) && isCategory())) &&
                       readEnd(cursor, text, result);
    return plain ? std::optional(result) : std::nullopt;
}

} // namespace kestrin
