#include "platform/HiddenVariables.h"

#include <algorithm>
#include <atomic>
#include <string_view>
#include <unistd.h>

namespace kestrin {

namespace {

constexpr char hiddenByte = '?';

bool isOneOf(std::span<const char* const> names, std::string_view entry) {
    const std::string_view found = entry.substr(0, entry.find('='));
    return std::ranges::any_of(names, [found](const char* name) { return name == found; });
}

} // namespace

HiddenVariables::HiddenVariables(std::span<const char* const> names) {
    for (char** entry = environ; entry && *entry; ++entry)
        if (isOneOf(names, *entry)) hidden_.push_back({*entry, **entry});
    for (const Entry& entry : hidden_)
        *entry.text = hiddenByte;
}

void HiddenVariables::restore() {
    for (const Entry& entry : hidden_)
        std::atomic_ref(*entry.text).store(entry.firstByte);
    hidden_.clear();
}

} // namespace kestrin
