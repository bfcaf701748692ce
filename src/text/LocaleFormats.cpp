#include "text/LocaleFormats.h"

#include "text/HostTimeZone.h"
#include "text/LocaleFormatters.h"

#include <cstdlib>
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

} // namespace

LocaleFormats::LocaleFormats(std::string timeLocale, std::string numberLocale, std::string timeZone)
    : timeLocale_(std::move(timeLocale)), numberLocale_(std::move(numberLocale)), timeZone_(std::move(timeZone)) {}

LocaleFormats LocaleFormats::fromEnvironment() {
    return {localeFor("LC_TIME"), localeFor("LC_NUMERIC")};
}

LocaleFormats LocaleFormats::withPresentTimeZone() const {
    return {timeLocale_, numberLocale_, timeZone_.empty() ? hostTimeZoneName() : timeZone_};
}

std::string LocaleFormats::time(std::chrono::sys_seconds when) const {
    return LocaleFormatters::ofThisThread(timeLocale_, numberLocale_)
        .time(when, timeZone_.empty() ? hostTimeZoneName() : timeZone_);
}

std::string LocaleFormats::dateAndTime(std::chrono::sys_seconds when) const {
    return LocaleFormatters::ofThisThread(timeLocale_, numberLocale_)
        .dateAndTime(when, timeZone_.empty() ? hostTimeZoneName() : timeZone_);
}

std::string LocaleFormats::duration(std::int64_t milliseconds) const {
    const LocaleFormatters& formatters = LocaleFormatters::ofThisThread(timeLocale_, numberLocale_);
    return milliseconds < 1000 ? formatters.milliseconds(milliseconds)
                               : formatters.seconds(static_cast<double>(milliseconds) / 1000.0);
}

std::string LocaleFormats::integer(std::int64_t value) const {
    return LocaleFormatters::ofThisThread(timeLocale_, numberLocale_).integer(value);
}

std::string LocaleFormats::percentage(double ratio) const {
    return LocaleFormatters::ofThisThread(timeLocale_, numberLocale_).percentage(ratio);
}

} // namespace kestrin
