#include "faults/Scene.h"

#include <array>
#include <cerrno>
#include <ostream>

namespace kestrin {

namespace {

Verdict nothingSpecial(const SystemCall&) {
    return Verdict::pass();
}

Verdict noNamelessFiles(const SystemCall& call) {
    return call.opensNamelessFile() ? Verdict::fail(EOPNOTSUPP) : Verdict::pass();
}

/// "/proc" is not there, through which a nameless file gets its name.
Verdict noProcessFiles(const SystemCall& call) {
    return call.name() == "linkat" ? Verdict::fail(ENOENT) : Verdict::pass();
}

Verdict noExclusiveRename(const SystemCall& call) {
    return call.name() == "renameat2" ? Verdict::fail(EINVAL) : noNamelessFiles(call);
}

Verdict noSuchRename(const SystemCall& call) {
    return call.name() == "renameat2" ? Verdict::fail(ENOSYS) : noNamelessFiles(call);
}

constexpr Surroundings asTheMachineIs = {"asTheMachineIs", nothingSpecial};
constexpr std::array otherWays = {
    Surroundings{"withoutNamelessFiles", noNamelessFiles},
    Surroundings{"withoutProcessFiles", noProcessFiles},
    Surroundings{"withoutExclusiveRename", noExclusiveRename},
    Surroundings{"onAKernelWithoutExclusiveRename", noSuchRename},
};

bool createsWholeFile(const Operation& operation) {
    return operation.effect == Effect::Begins || operation.makesBackup ||
           (operation.effect == Effect::Replaces && !operation.before.contains(operation.root + "/sites.json"));
}

} // namespace

std::vector<Scene> scenes() {
    std::vector<Scene> scenes;
    for (const Operation& operation : operations()) {
        scenes.push_back({operation, asTheMachineIs});
        if (!createsWholeFile(operation)) continue;
        for (const Surroundings& around : otherWays)
            scenes.push_back({operation, around});
    }
    return scenes;
}

std::string nameOf(const Scene& scene) {
    return std::string(scene.operation.name) + "_" + std::string(scene.around.name);
}

void PrintTo(const Scene& scene, std::ostream* stream) {
    *stream << nameOf(scene);
}

} // namespace kestrin
