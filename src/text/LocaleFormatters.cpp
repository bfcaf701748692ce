#include "text/LocaleFormatters.h"

#include "text/POSIXLocale.h"

#include <optional>
#include <unicode/timezone.h>

namespace kestrin {

namespace {

// All moments of a dashboard, and then some; a few hundred kilobytes at most.
constexpr std::size_t mostTexts = 1024;

std::string utf8(const icu::UnicodeString& text) {
    std::string bytes;
    text.toUTF8String(bytes);
    return bytes;
}

std::string textOf(const icu::number::FormattedNumber& number, UErrorCode status) {
    const icu::UnicodeString text = number.toString(status);
    return U_FAILURE(status) ? std::string() : utf8(text);
}

icu::number::LocalizedNumberFormatter narrow(
    const icu::Locale& locale, const icu::MeasureUnit& unit, const icu::number::Precision& precision) {
    return icu::number::NumberFormatter::withLocale(locale)
        .unit(unit)
        .unitWidth(UNUM_UNIT_WIDTH_NARROW)
        .precision(precision);
}

std::unique_ptr<icu::DateFormat> formatOf(const char* skeleton, const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::DateFormat> format(
        icu::DateFormat::createInstanceForSkeleton(icu::UnicodeString(skeleton), locale, status));
    return U_FAILURE(status) ? nullptr : std::move(format);
}

} // namespace

LocaleFormatters::LocaleFormatters(const std::string& timeLocale, const std::string& numberLocale)
    : timeLocale_(timeLocale), numberLocale_(numberLocale) {
    using icu::number::NumberFormatter;
    using icu::number::Precision;
    const icu::Locale times(icuLocaleName(timeLocale).c_str());
    const icu::Locale numbers(icuLocaleName(numberLocale).c_str());
    // The hour cycle is the locale's, or that of its keyword "hours".
    time_.format = formatOf("jmm", times);
    dateAndTime_.format = formatOf("yMMMdjmm", times);
    if (dateAndTime_.format) calendar_.reset(dateAndTime_.format->getCalendar()->clone());
    integer_ = NumberFormatter::withLocale(numbers);
    percentage_ = NumberFormatter::withLocale(numbers)
                      .unit(icu::MeasureUnit::getPercent())
                      .scale(icu::number::Scale::powerOfTen(2))
                      .precision(Precision::fixedFraction(1));
    milliseconds_ = narrow(numbers, icu::MeasureUnit::getMillisecond(), Precision::integer());
    seconds_ = narrow(numbers, icu::MeasureUnit::getSecond(), Precision::fixedFraction(1));
}

LocaleFormatters& LocaleFormatters::ofThisThread(const std::string& timeLocale, const std::string& numberLocale) {
    thread_local std::optional<LocaleFormatters> latest;
    if (!latest || latest->timeLocale_ != timeLocale || latest->numberLocale_ != numberLocale)
        latest.emplace(timeLocale, numberLocale);
    return *latest;
}

void LocaleFormatters::setTimeZone(const std::string& timeZone) {
    if (timeZone == timeZone_) return;
    calendar_->adoptTimeZone(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(timeZone)));
    timeZone_ = timeZone;
    time_.texts.clear();
    dateAndTime_.texts.clear();
}

std::string LocaleFormatters::momentText(
    MomentFormat& format, std::chrono::sys_seconds when, const std::string& timeZone) {
    if (!format.format || !calendar_) return {};
    setTimeZone(timeZone);
    const std::int64_t second = when.time_since_epoch().count();
    if (const auto known = format.texts.find(second); known != format.texts.end()) return known->second;
    UErrorCode status = U_ZERO_ERROR;
    calendar_->setTime(static_cast<UDate>(second) * 1000, status);
    if (U_FAILURE(status)) return {};
    icu::UnicodeString text;
    icu::FieldPosition nowhere(icu::FieldPosition::DONT_CARE);
    format.format->format(*calendar_, text, nowhere);
    if (format.texts.size() >= mostTexts) format.texts.clear();
    return format.texts.emplace(second, utf8(text)).first->second;
}

std::string LocaleFormatters::time(std::chrono::sys_seconds when, const std::string& timeZone) {
    return momentText(time_, when, timeZone);
}

std::string LocaleFormatters::dateAndTime(std::chrono::sys_seconds when, const std::string& timeZone) {
    return momentText(dateAndTime_, when, timeZone);
}

std::string LocaleFormatters::integer(std::int64_t value) const {
    UErrorCode status = U_ZERO_ERROR;
    return textOf(integer_.formatInt(value, status), status);
}

std::string LocaleFormatters::percentage(double ratio) const {
    UErrorCode status = U_ZERO_ERROR;
    return textOf(percentage_.formatDouble(ratio, status), status);
}

std::string LocaleFormatters::milliseconds(std::int64_t value) const {
    UErrorCode status = U_ZERO_ERROR;
    return textOf(milliseconds_.formatInt(value, status), status);
}

std::string LocaleFormatters::seconds(double value) const {
    UErrorCode status = U_ZERO_ERROR;
    return textOf(seconds_.formatDouble(value, status), status);
}

} // namespace kestrin
