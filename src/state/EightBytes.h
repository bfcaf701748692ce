#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace kestrin {

/// Eight bytes of a text as one number, the first one lowest on every machine. By hand for the compiler, which
/// copies no memory.
constexpr std::uint64_t eightBytes(const char* bytes) {
    std::uint64_t word = 0;
    if (!std::is_constant_evaluated() && std::endian::native == std::endian::little) {
        std::memcpy(&word, bytes, sizeof word);
        return word;
    }
    for (std::size_t i = 0; i < sizeof word; ++i)
        word |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
    return word;
}

} // namespace kestrin
