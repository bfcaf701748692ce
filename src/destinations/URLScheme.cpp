#include "destinations/URLScheme.h"

#include "text/ASCIICase.h"

namespace kestrin {

std::string lowercaseScheme(const WebURL& url) {
    return asciiLowercase(url.scheme);
}

} // namespace kestrin
