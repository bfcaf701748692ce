#pragma once

#include "faults/Judgement.h"
#include "faults/Scene.h"
#include "faults/TracedRun.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace kestrin {

/// One run of an operation, and what is wrong with what it left.
struct JudgedRun {
    struct Call {
        std::string name;
        std::string path;
        bool isAboutFiles = false;
        bool inOperation = false;
        bool opensNamelessFile = false;
    };

    RunResult result;
    std::vector<Call> calls;
    Tree tree;         ///< below the base directory, before the next start
    std::string fault; ///< empty when all is well
};

/// Numbers calls from 0. A verdict other than to pass goes before that of the surroundings.
using NumberedVerdict =
    std::function<Verdict(std::size_t number, const SystemCall& call, const std::filesystem::path& base)>;

/// Runs the scene's operation in a new directory and judges what it left, by its promises and by what the next
/// start makes of it. Flushes are not carried out, since nothing here loses power.
[[nodiscard]] JudgedRun judgedRun(const Scene& scene, const NumberedVerdict& verdict);

} // namespace kestrin
