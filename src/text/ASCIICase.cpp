#include "text/ASCIICase.h"

#include <algorithm>

namespace kestrin {

std::string asciiLowercase(std::string_view text) {
    std::string lowered(text);
    std::ranges::transform(lowered, lowered.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return lowered;
}

} // namespace kestrin
