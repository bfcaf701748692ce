#pragma once

#include "model/CustomProviderConfiguration.h"
#include "model/ProviderDefinition.h"

#include <string>
#include <vector>

namespace kestrin {

/// Knows which status services exist and turns stored ones into the form in which they are checked. Plain data
/// behind it; any thread.
class ServiceDirectory {
public:
    virtual ~ServiceDirectory() = default;
    /// The services that come with the program, in their fixed order.
    [[nodiscard]] virtual const std::vector<ProviderDefinition>& includedServices() const = 0;
    /// Throws a `MessageError` when this build cannot check the stored service.
    [[nodiscard]] virtual ProviderDefinition definition(const CustomProviderDefinition& stored) const = 0;
};

/// The services of a run: the included ones selected, in their own order, then the enabled added ones in file
/// order. Throws what `definition` throws.
std::vector<ProviderDefinition> servicesOfRun(const ServiceDirectory& directory,
    const std::vector<std::string>& selectedIDs, const CustomProviderConfiguration& added);

} // namespace kestrin
