#include "text/Timestamp.h"

#include <array>
#include <cstddef>
#include <cstdio>

namespace kestrin {

namespace {

/// Takes fixed parts off the front of a text. The first part that does not fit makes every later one fail.
class Scanner {
public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    int digits(std::size_t count) {
        if (rest_.size() < count) return fail();
        int value = 0;
        for (const char c : rest_.substr(0, count)) {
            if (c < '0' || c > '9') return fail();
            value = value * 10 + (c - '0');
        }
        rest_.remove_prefix(count);
        return value;
    }

    bool take(char expected) {
        if (!rest_.starts_with(expected)) return false;
        rest_.remove_prefix(1);
        return true;
    }

    void require(char expected) {
        if (!take(expected)) fail();
    }

    int fail() {
        failed_ = true;
        rest_ = {};
        return 0;
    }

    [[nodiscard]] bool finished() const { return !failed_ && rest_.empty(); }

private:
    std::string_view rest_;
    bool failed_ = false;
};

/// The minutes that the written clock is ahead of UTC.
std::chrono::minutes offset(Scanner& scanner) {
    if (scanner.take('Z')) return std::chrono::minutes(0);
    const bool ahead = scanner.take('+');
    if (!ahead) scanner.require('-');
    const int hours = scanner.digits(2);
    const int minutes = scanner.digits(2);
    if (hours > 23 || minutes > 59) scanner.fail();
    return std::chrono::minutes((ahead ? 1 : -1) * (hours * 60 + minutes));
}

} // namespace

std::string timestampText(std::chrono::sys_seconds moment) {
    const auto day = std::chrono::floor<std::chrono::days>(moment);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss time(moment - day);
    std::array<char, 64> text{};
    const int length = std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", int{date.year()},
        unsigned{date.month()}, unsigned{date.day()}, static_cast<int>(time.hours().count()),
        static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
    return {text.data(), static_cast<std::size_t>(length)};
}

std::optional<std::chrono::sys_seconds> parseTimestamp(std::string_view text) {
    Scanner scanner(text);
    const int year = scanner.digits(4);
    scanner.require('-');
    const int month = scanner.digits(2);
    scanner.require('-');
    const int day = scanner.digits(2);
    scanner.require('T');
    const int hour = scanner.digits(2);
    scanner.require(':');
    const int minute = scanner.digits(2);
    scanner.require(':');
    const int second = scanner.digits(2);
    const std::chrono::minutes ahead = offset(scanner);
    const std::chrono::year_month_day date(std::chrono::year{year},
        std::chrono::month{static_cast<unsigned>(month)}, std::chrono::day{static_cast<unsigned>(day)});
    if (!scanner.finished() || !date.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
    return std::chrono::sys_days(date) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
           std::chrono::seconds(second) - ahead;
}

} // namespace kestrin
