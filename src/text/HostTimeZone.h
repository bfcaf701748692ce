#pragma once

#include <string>

namespace kestrin {

/// The name of the time zone that the user's machine is set to now, in a form that ICU knows: what TZ says, or else
/// the target of `link`. Without either it is the machine's present distance from UTC, "GMT+02:00" for instance.
/// Asks the system each time, with one readlink(2), so a changed setting is seen at once. Any thread.
[[nodiscard]] std::string hostTimeZoneName(const char* link = "/etc/localtime");

} // namespace kestrin
