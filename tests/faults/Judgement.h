#pragma once

#include "faults/Operation.h"
#include "faults/Tree.h"

#include <string>

namespace kestrin {

/// How an operation came to its end.
enum class Ending {
    Succeeded,
    Failed,
    Killed,
    PowerLost,             ///< while it ran
    PowerLostAfterSuccess, ///< at any time after it had told success
};

/// Whether the system let files be removed; a temporary may then stay behind a failure.
enum class Removal { Worked, Failed };

/// What is wrong with the tree that an operation left below its base directory; empty when nothing is.
[[nodiscard]] std::string fault(
    const Operation& operation, const Tree& tree, Ending ending, Removal removal = Removal::Worked);

/// Does what the next start of the program does with a state directory: reads configuration, backups and histories,
/// appends a check, saves. Gives back what went wrong; empty when nothing did.
[[nodiscard]] std::string nextStartFault(const std::filesystem::path& root);

} // namespace kestrin
