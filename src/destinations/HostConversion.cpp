#include "destinations/HostConversion.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <unicode/uidna.h>
#include <unicode/utypes.h>

namespace kestrin {
namespace {

// A DNS name has at most 253 bytes and a final dot; the longest spelling of one in four-byte letters stays below
// this.
constexpr std::size_t maximumTypedBytes = 2048;
constexpr std::size_t maximumConvertedBytes = 256;

const UIDNA* uts46() {
    // Shared by all threads, as ICU allows for a const UIDNA, and never closed: a thread left behind may use it
    // still.
    static const UIDNA* const converter = [] {
        UErrorCode status = U_ZERO_ERROR;
        const UIDNA* opened = uidna_openUTS46(UIDNA_NONTRANSITIONAL_TO_ASCII | UIDNA_NONTRANSITIONAL_TO_UNICODE |
                                                  UIDNA_USE_STD3_RULES | UIDNA_CHECK_BIDI | UIDNA_CHECK_CONTEXTJ,
            &status);
        return U_SUCCESS(status) ? opened : nullptr;
    }();
    return converter;
}

} // namespace

std::optional<std::string> asciiHost(std::string_view host) {
    if (host.empty() || host.size() > maximumTypedBytes || uts46() == nullptr) return std::nullopt;
    std::array<char, maximumConvertedBytes> converted{};
    UIDNAInfo info = UIDNA_INFO_INITIALIZER;
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = uidna_nameToASCII_UTF8(uts46(), host.data(), static_cast<std::int32_t>(host.size()),
        converted.data(), static_cast<std::int32_t>(converted.size()), &info, &status);
    if (U_FAILURE(status) || info.errors != 0 || length <= 0) return std::nullopt;
    return std::string(converted.data(), static_cast<std::size_t>(length));
}

} // namespace kestrin
