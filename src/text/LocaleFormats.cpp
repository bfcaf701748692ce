#include "text/LocaleFormats.h"

#include <cstdlib>
#include <memory>
#include <unicode/datefmt.h>
#include <unicode/measunit.h>
#include <unicode/numberformatter.h>
#include <unicode/timezone.h>
#include <utility>

namespace kestrin {

namespace {

// What the C library would take: LC_ALL over the category over LANG; "C" and "POSIX" read as American English.
std::string localeFor(const char* category) {
    for (const char* variable : {"LC_ALL", category, "LANG"}) {
        const char* value = std::getenv(variable);
        if (!value || !*value) continue;
        const std::string name(value);
        if (name == "C" || name == "POSIX" || name.starts_with("C.")) return "en_US";
        return name;
    }
    return "en_US";
}

std::string utf8(const icu::UnicodeString& text) {
    std::string bytes;
    text.toUTF8String(bytes);
    return bytes;
}

} // namespace

LocaleFormats::LocaleFormats(std::string timeLocale, std::string numberLocale, std::string timeZone)
    : timeLocale_(std::move(timeLocale)), numberLocale_(std::move(numberLocale)), timeZone_(std::move(timeZone)) {}

LocaleFormats LocaleFormats::fromEnvironment() {
    return {localeFor("LC_TIME"), localeFor("LC_NUMERIC")};
}

std::string LocaleFormats::time(std::chrono::sys_seconds when) const {
    const std::unique_ptr<icu::DateFormat> format(
        icu::DateFormat::createTimeInstance(icu::DateFormat::kShort, icu::Locale(timeLocale_.c_str())));
    if (!format) return {};
    format->adoptTimeZone(timeZone_.empty()
                              ? icu::TimeZone::detectHostTimeZone()
                              : icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(timeZone_)));
    icu::UnicodeString text;
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(when.time_since_epoch());
    format->format(static_cast<UDate>(milliseconds.count()), text);
    return utf8(text);
}

std::string LocaleFormats::duration(std::int64_t milliseconds) const {
    const bool isShort = milliseconds < 1000;
    const auto formatter =
        icu::number::NumberFormatter::withLocale(icu::Locale(numberLocale_.c_str()))
            .unit(isShort ? icu::MeasureUnit::getMillisecond() : icu::MeasureUnit::getSecond())
            .unitWidth(UNUM_UNIT_WIDTH_NARROW)
            .precision(isShort ? icu::number::Precision::integer() : icu::number::Precision::fixedFraction(1));
    UErrorCode status = U_ZERO_ERROR;
    const auto formatted = isShort ? formatter.formatInt(milliseconds, status)
                                   : formatter.formatDouble(static_cast<double>(milliseconds) / 1000.0, status);
    icu::UnicodeString text = formatted.toString(status);
    if (U_FAILURE(status)) return {};
    return utf8(text);
}

} // namespace kestrin
