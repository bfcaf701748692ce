#include "faults/JudgedRun.h"

#include "fakes/TemporaryDirectory.h"

namespace kestrin {

namespace {

Ending endingOf(const RunResult& result) {
    if (result.wasKilled) return Ending::Killed;
    return result.succeeded ? Ending::Succeeded : Ending::Failed;
}

Verdict withoutFlush(const Verdict& verdict, const SystemCall& call) {
    const bool isFlush = call.name() == "fsync" || call.name() == "fdatasync";
    return verdict.kind == Verdict::Kind::Pass && isFlush ? Verdict::answer(0) : verdict;
}

} // namespace

JudgedRun judgedRun(const Scene& scene, const NumberedVerdict& verdict) {
    const Operation& operation = scene.operation;
    const TemporaryDirectory base;
    makeTree(operation.before, base.path());

    JudgedRun run;
    Removal removal = Removal::Worked;
    const auto before = [&](const SystemCall& call) {
        const std::size_t number = run.calls.size();
        run.calls.push_back({.name = call.name(),
            .path = call.path(),
            .isAboutFiles = call.isAboutFiles(),
            .inOperation = call.inOperation,
            .opensNamelessFile = call.opensNamelessFile()});
        Verdict given = verdict(number, call, base.path());
        if (given.kind == Verdict::Kind::Pass) given = scene.around.verdict(call);
        if (call.name() == "unlink" && given.kind == Verdict::Kind::Answer) removal = Removal::Failed;
        return withoutFlush(given, call);
    };
    run.result = runTraced(KESTRIN_STATE_DRIVER, operation.name, base / operation.root, before);
    run.tree = treeOf(base.path());

    run.fault = run.result.wrong;
    if (run.fault.empty()) run.fault = fault(operation, run.tree, endingOf(run.result), removal);
    if (run.fault.empty()) run.fault = nextStartFault(base / operation.root);
    if (!run.fault.empty())
        run.fault += "\nthe operation said: " + run.result.message + "\nit left:" + described(run.tree);
    return run;
}

} // namespace kestrin
