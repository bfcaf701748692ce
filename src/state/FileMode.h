#pragma once

#include <sys/types.h>

namespace kestrin {

/// The permissions of new files, lessened by the umask.
inline constexpr mode_t defaultFileMode = 0666;
inline constexpr mode_t ownerOnlyFileMode = 0600;

} // namespace kestrin
