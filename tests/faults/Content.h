#pragma once

#include "model/CheckRecord.h"
#include "model/CustomProviderConfiguration.h"
#include "model/ProviderCheckRecord.h"
#include "model/SiteConfiguration.h"

#include <string>

namespace kestrin {

/// The records and configurations that the operations of this suite write.
[[nodiscard]] SiteConfiguration formerConfiguration();
[[nodiscard]] SiteConfiguration newConfiguration();
[[nodiscard]] CustomProviderConfiguration formerAddedServices();
[[nodiscard]] CustomProviderConfiguration newAddedServices();
[[nodiscard]] CheckRecord siteCheck(const std::string& timestamp);
[[nodiscard]] ProviderCheckRecord serviceCheck(const std::string& timestamp);

[[nodiscard]] std::string fileOf(const SiteConfiguration& configuration);
[[nodiscard]] std::string fileOf(const CustomProviderConfiguration& configuration);
[[nodiscard]] std::string lineOf(const CheckRecord& record);
[[nodiscard]] std::string lineOf(const ProviderCheckRecord& record);

} // namespace kestrin
