#pragma once

#include <filesystem>
#include <string_view>

namespace kestrin {

/// Leaves a real directory there whose name, with those of new parents, is on the disk, also if whoever made it was
/// killed before that. Throws `AtomicStateFileError` with the message given for anything else in its place,
/// `POSIXError` for a failure.
void ensureLastingDirectory(const std::filesystem::path& directory, std::string_view message);

} // namespace kestrin
