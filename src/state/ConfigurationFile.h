#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kestrin {

inline constexpr std::string_view configurationIsNotRegular = "Kestrin's sites.json is not a regular file.";

[[nodiscard]] std::filesystem::path configurationFilePath(const std::filesystem::path& root);

/// The whole of "sites.json" or of a backup, however large. Throws `ConfigurationReadError` for anything but a
/// regular file, `POSIXError` when it cannot be read.
[[nodiscard]] std::string readConfigurationFile(const std::filesystem::path& path);

} // namespace kestrin
