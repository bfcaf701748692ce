#include "state/ConfigurationFile.h"

#include "state/AtomicStateFile.h"
#include "state/StandardizedPath.h"

#include <cerrno>
#include <cstdint>
#include <limits>

namespace kestrin {

std::filesystem::path configurationFilePath(const std::filesystem::path& root) {
    return standardizedPath(root / "sites.json");
}

std::string readConfigurationFile(const std::filesystem::path& path) {
    try {
        return AtomicStateFile::readBounded(
            path, std::numeric_limits<std::int64_t>::max(), configurationIsNotRegular);
    } catch (const AtomicStateFileError& error) {
        throw ConfigurationReadError(error.message);
    } catch (const POSIXError& error) {
        if (error.code == ELOOP) throw ConfigurationReadError(std::string(configurationIsNotRegular));
        throw;
    }
}

} // namespace kestrin
