#pragma once

#include "model/HistoryFileRevision.h"

#include <filesystem>

struct stat;

namespace kestrin {

enum class MissingFile { Allowed, Refused };

/// The fingerprint of a regular file; all zeros for a missing one where that is allowed. Throws `HistoryReadError`
/// for anything else than a regular file, `POSIXError` for a failure.
[[nodiscard]] HistoryFileRevision fileRevision(const std::filesystem::path& url, MissingFile missing);

/// The fingerprint in what `lstat` or `fstat` gave, whatever kind of file it is.
[[nodiscard]] HistoryFileRevision revisionOf(const struct stat& status);

} // namespace kestrin
