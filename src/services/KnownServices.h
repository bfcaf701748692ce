#pragma once

#include "services/ServiceDirectory.h"

namespace kestrin {

/// The services of this build: the two that come with it.
class KnownServices : public ServiceDirectory {
public:
    KnownServices();

    [[nodiscard]] const std::vector<ProviderDefinition>& includedServices() const override { return included_; }
    [[nodiscard]] ProviderDefinition definition(const CustomProviderDefinition& stored) const override;

private:
    std::vector<ProviderDefinition> included_;
};

} // namespace kestrin
