#pragma once

#include "faults/Operation.h"
#include "faults/SystemCall.h"
#include "faults/TracedRun.h"

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

/// A standing trait of the machine that operations have to get along with: its verdict on each system call.
struct Surroundings {
    std::string_view name;
    Verdict (*verdict)(const SystemCall&) = nullptr;
};

/// An operation in its surroundings.
struct Scene {
    Operation operation;
    Surroundings around;
};

/// Every operation on the machine as it is; those that create a file in one go also where the file system or the
/// kernel forces another way on them.
[[nodiscard]] std::vector<Scene> scenes();

[[nodiscard]] std::string nameOf(const Scene& scene);
void PrintTo(const Scene& scene, std::ostream* stream);

} // namespace kestrin
