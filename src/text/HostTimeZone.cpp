#include "text/HostTimeZone.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <optional>
#include <string_view>
#include <unicode/timezone.h>
#include <unistd.h>

namespace kestrin {

namespace {

bool isKnown(const std::string& name) {
    if (name.empty()) return false;
    const std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name)));
    return zone && *zone != icu::TimeZone::getUnknown();
}

/// "Europe/Berlin" from ":Europe/Berlin" or "/usr/share/zoneinfo/posix/Europe/Berlin".
std::string nameIn(std::string_view setting) {
    if (setting.starts_with(':')) setting.remove_prefix(1);
    constexpr std::string_view directory = "zoneinfo/";
    if (const auto found = setting.rfind(directory); found != std::string_view::npos)
        setting.remove_prefix(found + directory.size());
    for (const std::string_view variant : {"posix/", "right/"})
        if (setting.starts_with(variant)) setting.remove_prefix(variant.size());
    return std::string(setting);
}

std::optional<std::string> targetOf(const char* link) {
    std::array<char, 4096> target{};
    const ssize_t length = ::readlink(link, target.data(), target.size());
    if (length <= 0 || static_cast<std::size_t>(length) == target.size()) return std::nullopt;
    return std::string(target.data(), static_cast<std::size_t>(length));
}

// A rule such as "CET-1CEST" has no name, and neither has a zone that was copied to /etc/localtime. The C library
// reads both, but tells no more of them than the present offset.
std::string presentOffset() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::tzset();
    if (!::localtime_r(&now, &local)) return "GMT";
    const long minutes = local.tm_gmtoff / 60;
    const long distance = std::labs(minutes);
    std::array<char, 32> name{};
    std::snprintf(
        name.data(), name.size(), "GMT%c%02ld:%02ld", minutes < 0 ? '-' : '+', distance / 60, distance % 60);
    return name.data();
}

/// Names cost a search through ICU's tables, so the last one that was found there is remembered.
bool isKnownStill(const std::string& name) {
    thread_local std::string latest;
    if (name == latest) return !name.empty();
    if (!isKnown(name)) return false;
    latest = name;
    return true;
}

} // namespace

std::string hostTimeZoneName(const char* link) {
    if (const char* setting = std::getenv("TZ")) {
        const std::string name = *setting ? nameIn(setting) : "Etc/UTC";
        return isKnownStill(name) ? name : presentOffset();
    }
    if (const auto target = targetOf(link)) {
        const std::string name = nameIn(*target);
        if (isKnownStill(name)) return name;
    }
    return presentOffset();
}

} // namespace kestrin
