#include "destinations/BlockedHost.h"

#include "destinations/AddressTable.h"
#include "destinations/LocalHostName.h"

namespace kestrin {

bool isBlockedHost(std::string_view host) {
    return isLocalHostName(host) || (isNumericAddress(host) && !isPublicAddress(host));
}

} // namespace kestrin
