#include "services/StatusContentType.h"

#include "text/ASCIICase.h"
#include "text/Trimming.h"

#include <string_view>

namespace kestrin {

bool isAcceptedStatusContentType(const std::optional<std::string>& headerValue) {
    if (!headerValue) return false;
    const std::string_view header = *headerValue;
    const std::string type = asciiLowercase(trimmed(header.substr(0, header.find(';'))));
    return type == "application/json" || (type.starts_with("application/") && type.ends_with("+json"));
}

} // namespace kestrin
