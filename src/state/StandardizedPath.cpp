#include "state/StandardizedPath.h"

#include "state/StateErrors.h"

#include <system_error>

namespace kestrin {

std::filesystem::path standardizedPath(const std::filesystem::path& path) {
    std::filesystem::path standardized = path.lexically_normal();
    // A path that ends in a slash has an empty last part.
    if (!standardized.has_filename() && standardized.has_relative_path()) standardized = standardized.parent_path();
    return standardized;
}

void createDirectories(const std::filesystem::path& path) {
    std::error_code error;
    std::filesystem::create_directories(standardizedPath(path), error);
    if (error) throw POSIXError(error.value());
}

} // namespace kestrin
