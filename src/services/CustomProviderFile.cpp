#include "services/CustomProviderFile.h"

#include "services/CustomProviderStoreError.h"
#include "state/AtomicStateFile.h"
#include "state/FileRevision.h"
#include "state/StateErrors.h"

#include <cerrno>
#include <sys/stat.h>
#include <utility>

namespace kestrin {

CustomProviderFile::CustomProviderFile(std::filesystem::path rootURL)
    : rootURL_(std::move(rootURL)), fileURL_(rootURL_ / "custom-providers.json") {}

std::optional<CustomProviderConfiguration> CustomProviderFile::load() const {
    const StateFileKind root = AtomicStateFile::fileKind(rootURL_);
    if (root == StateFileKind::missing) return std::nullopt;
    if (root != StateFileKind::directory)
        throw CustomProviderStoreError("Kestrin's state path is not a regular directory.");
    const StateFileKind file = AtomicStateFile::fileKind(fileURL_);
    if (file == StateFileKind::missing) return std::nullopt;
    if (file != StateFileKind::regularFile)
        throw CustomProviderStoreError("Kestrin's custom-provider settings are not a regular file.");
    throw CustomProviderStoreError("This status-service format needs a newer Kestrin version.");
}

HistoryFileRevision CustomProviderFile::revision() const {
    struct stat status = {};
    if (::lstat(fileURL_.c_str(), &status) == 0) return revisionOf(status);
    if (errno == ENOENT) return {};
    throwPOSIXError();
}

} // namespace kestrin
