#pragma once

#include "model/MessageError.h"
#include "services/ServiceDirectory.h"

#include <string>
#include <utility>
#include <vector>

namespace kestrin {

/// A directory of services that the test fills. An added service is known unless its adapter is "unknown".
class FakeServices : public ServiceDirectory {
public:
    std::vector<ProviderDefinition> included = {serviceNamed("openai", "OpenAI"), serviceNamed("claude", "Claude")};

    [[nodiscard]] const std::vector<ProviderDefinition>& includedServices() const override { return included; }

    [[nodiscard]] ProviderDefinition definition(const CustomProviderDefinition& stored) const override {
        if (stored.adapter == "unknown") throw MessageError("The adapter is not known.");
        ProviderDefinition service = serviceNamed(stored.id, stored.name);
        service.source = ProviderSource::custom;
        return service;
    }

    [[nodiscard]] static ProviderDefinition serviceNamed(std::string id, std::string name) {
        ProviderDefinition service;
        service.id = std::move(id);
        service.name = std::move(name);
        service.adapter = {"statuspage-v2", 1};
        return service;
    }
};

} // namespace kestrin
