#pragma once

#include "faults/SystemCall.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace kestrin {

/// What the tracer does with a system call before it is made.
struct Verdict {
    enum class Kind {
        Pass,          ///< it is made
        Kill,          ///< the process is killed before it
        Answer,        ///< it is not made and gives `value`, a negative one being an error number
        AnswerAfterIt, ///< it is made and gives `value` all the same
        FirstByteOnly, ///< its third argument, a count of bytes, becomes one
    };

    Kind kind = Kind::Pass;
    std::int64_t value = 0;

    [[nodiscard]] static Verdict pass() { return {}; }
    [[nodiscard]] static Verdict kill() { return {.kind = Kind::Kill}; }
    [[nodiscard]] static Verdict answer(std::int64_t value) { return {.kind = Kind::Answer, .value = value}; }
    [[nodiscard]] static Verdict fail(int code) { return answer(-code); }
    [[nodiscard]] static Verdict failAfterwards(int code) { return {.kind = Kind::AnswerAfterIt, .value = -code}; }
    [[nodiscard]] static Verdict firstByteOnly() { return {.kind = Kind::FirstByteOnly}; }
};

/// How a run of the driver ended.
struct RunResult {
    bool wasKilled = false; ///< by the verdict
    bool succeeded = false;
    std::string message; ///< what the user reads of a failure
    std::string wrong;   ///< what must never happen: a crash, a hang, a foreign exception, a leaked descriptor
};

using BeforeCall = std::function<Verdict(const SystemCall&)>;
using AfterCall = std::function<void(const SystemCall&, std::int64_t result)>;

/// Runs one operation in a process of its own and asks for a verdict before each system call from the operation's
/// begin to the end of the process; tells of each call's result afterwards. Takes no rights: a process may trace
/// its own children. Throws when the process cannot be traced.
RunResult runTraced(const std::filesystem::path& driver, std::string_view operation,
    const std::filesystem::path& root, const BeforeCall& before, const AfterCall& after = {});

} // namespace kestrin
