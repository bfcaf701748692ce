#include "state/DirectoryListing.h"

#include "state/StateErrors.h"

#include <system_error>

namespace kestrin {

std::vector<std::filesystem::path> entriesOf(const std::filesystem::path& directory) {
    std::error_code error;
    std::filesystem::directory_iterator entry(directory, error);
    while (error == std::errc::interrupted)
        entry = std::filesystem::directory_iterator(directory, error);
    std::vector<std::filesystem::path> entries;
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error))
        entries.push_back(entry->path());
    if (error) throw POSIXError(error.value());
    return entries;
}

} // namespace kestrin
