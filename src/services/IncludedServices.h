#pragma once

#include <string>
#include <vector>

namespace kestrin {

/// The identifiers of the services that come with the program, in their fixed order.
std::vector<std::string> includedServiceIDs();

} // namespace kestrin
