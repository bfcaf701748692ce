#include "state/UUID.h"

#include "state/StateErrors.h"

#include <sys/random.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestrin {

std::string freshUUID() {
    std::array<std::uint8_t, 16> bytes{};
    // So few bytes come whole, once the system has been seeded.
    while (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        if (errno != EINTR) throwPOSIXError();
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);

    constexpr std::string_view hexadecimal = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
        text += hexadecimal[bytes[i] >> 4];
        text += hexadecimal[bytes[i] & 0x0F];
    }
    return text;
}

} // namespace kestrin
