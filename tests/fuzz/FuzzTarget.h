#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// What each target defines: takes one input of any bytes, and returns only when everything the target promises
/// held. Called by libFuzzer, which makes inputs up, and by the replay of the kept ones.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

namespace kestrin {

inline std::string_view inputText(const std::uint8_t* bytes, std::size_t size) {
    return {reinterpret_cast<const char*>(bytes), size};
}

/// Ends the program when a promise is broken: both callers then name the input at fault.
inline void require(bool holds, std::string_view promise) {
    if (holds) return;
    std::fprintf(stderr, "Broken promise: %.*s\n", static_cast<int>(promise.size()), promise.data());
    std::abort();
}

} // namespace kestrin
