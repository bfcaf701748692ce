#pragma once

#include "services/CustomProviderReading.h"

#include <filesystem>

namespace kestrin {

/// "custom-providers.json" as far as this build goes: it is watched for changes and its kind is judged, but no
/// added service can be checked yet, so a file that is there is refused as newer than the program and left as it
/// is.
class CustomProviderFile : public CustomProviderReading {
public:
    explicit CustomProviderFile(std::filesystem::path rootURL);

    [[nodiscard]] std::optional<CustomProviderConfiguration> load() const override;
    [[nodiscard]] HistoryFileRevision revision() const override;

private:
    std::filesystem::path rootURL_;
    std::filesystem::path fileURL_;
};

} // namespace kestrin
