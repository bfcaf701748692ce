#include "faults/TracedRun.h"

#include <sys/ptrace.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <stdexcept>
#include <utility>

#ifndef __x86_64__
#error "Which registers hold a system call's number and result has to be written down for this machine."
#endif

namespace kestrin {

namespace {

/// Far more than any operation makes, so that an endless loop ends.
constexpr int maximumCalls = 20'000;

[[noreturn]] void failed(const std::string& what) {
    throw std::runtime_error(what + ": " + ::strerrordesc_np(errno));
}

class TracedProcess {
public:
    TracedProcess(const std::string& driver, const std::string& operation, const std::string& root) {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0) failed("no pipe");
        process_ = ::fork();
        if (process_ < 0) failed("no process");
        if (process_ == 0) {
            ::dup2(ends[1], STDOUT_FILENO);
            ::close(ends[0]);
            ::close(ends[1]);
            if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(126);
            ::raise(SIGSTOP);
            ::execl(driver.c_str(), driver.c_str(), operation.c_str(), root.c_str(), "--marked", nullptr);
            ::_exit(127);
        }
        ::close(ends[1]);
        output_ = ends[0];
    }
    TracedProcess(const TracedProcess&) = delete;
    TracedProcess& operator=(const TracedProcess&) = delete;
    ~TracedProcess() {
        if (!ended()) {
            kill();
            ::waitpid(process_, nullptr, __WALL);
        }
        ::close(output_);
    }

    /// Until the operation begins.
    void start() {
        expectStop(SIGSTOP);
        const auto options = std::size_t{PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL};
        if (::ptrace(PTRACE_SETOPTIONS, process_, nullptr, options) != 0) failed("cannot trace");
        go(PTRACE_CONT);
        expectStop(SIGTRAP); // the new program
        go(PTRACE_CONT);
        expectStop(SIGSTOP);
    }

    void go(__ptrace_request how, int signal = 0) {
        if (::ptrace(how, process_, nullptr, static_cast<std::size_t>(signal)) != 0 && errno != ESRCH)
            failed("cannot go on");
    }

    void wait() {
        if (::waitpid(process_, &status_, __WALL) != process_) failed("cannot wait");
    }

    void kill() { ::kill(process_, SIGKILL); }

    [[nodiscard]] bool ended() const { return WIFEXITED(status_) || WIFSIGNALED(status_); }
    [[nodiscard]] bool isAtCall() const { return WSTOPSIG(status_) == (SIGTRAP | 0x80); }
    [[nodiscard]] int signal() const { return WSTOPSIG(status_); }

    [[nodiscard]] __ptrace_syscall_info callInformation() const {
        __ptrace_syscall_info information{};
        if (::ptrace(PTRACE_GET_SYSCALL_INFO, process_, sizeof information, &information) < 0)
            failed("cannot look at a system call");
        return information;
    }

    void setRegister(std::size_t offset, std::int64_t value) {
        if (::ptrace(PTRACE_POKEUSER, process_, offset, value) != 0) failed("cannot change a system call");
    }

    [[nodiscard]] std::string ending() const {
        if (WIFSIGNALED(status_)) return "the driver died of signal " + std::to_string(WTERMSIG(status_));
        return WEXITSTATUS(status_) == 0 ? "" : "the driver ended with " + std::to_string(WEXITSTATUS(status_));
    }

    [[nodiscard]] pid_t id() const { return process_; }

    [[nodiscard]] std::string output() {
        std::string text;
        std::array<char, 4096> buffer{};
        for (ssize_t count = 0; (count = ::read(output_, buffer.data(), buffer.size())) > 0;)
            text.append(buffer.data(), static_cast<std::size_t>(count));
        return text;
    }

private:
    void expectStop(int signal) {
        wait();
        if (!WIFSTOPPED(status_) || WSTOPSIG(status_) != signal) failed("the driver did not start");
    }

    pid_t process_ = -1;
    int output_ = -1;
    int status_ = 0x7F; // stopped, not ended
};

/// Makes a verdict come true: before the call, and what remains of it after the call.
class Interference {
public:
    explicit Interference(TracedProcess& process) : process_(process) {}

    void atEntry(const Verdict& verdict, const SystemCall& call) {
        verdict_ = verdict;
        count_ = static_cast<std::int64_t>(call.arguments[2]);
        if (verdict.kind == Verdict::Kind::Answer) process_.setRegister(offsetof(user_regs_struct, orig_rax), -1);
        if (verdict.kind == Verdict::Kind::FirstByteOnly) process_.setRegister(offsetof(user_regs_struct, rdx), 1);
    }

    void atExit() {
        if (verdict_.kind == Verdict::Kind::Answer || verdict_.kind == Verdict::Kind::AnswerAfterIt)
            process_.setRegister(offsetof(user_regs_struct, rax), verdict_.value);
        // A system call leaves its arguments as they were, and compilers rely on it.
        if (verdict_.kind == Verdict::Kind::FirstByteOnly)
            process_.setRegister(offsetof(user_regs_struct, rdx), count_);
        verdict_ = Verdict::pass();
    }

private:
    TracedProcess& process_;
    Verdict verdict_;
    std::int64_t count_ = 0;
};

RunResult spoiled(std::string wrong) {
    RunResult result;
    result.wrong = std::move(wrong);
    return result;
}

RunResult resultOf(TracedProcess& process) {
    RunResult result;
    result.wrong = process.ending();
    const std::string output = process.output();
    result.succeeded = output.starts_with("done\n");
    if (output.starts_with("refused: ")) result.message = output.substr(9, output.find('\n') - 9);
    if (result.wrong.empty() && !result.succeeded && result.message.empty())
        result.wrong = "the driver told neither success nor an error";
    if (result.wrong.empty() && !output.ends_with("\nleaked 0\n"))
        result.wrong = "descriptors were left open:\n" + output;
    return result;
}

} // namespace

RunResult runTraced(const std::filesystem::path& driver, std::string_view operation,
    const std::filesystem::path& root, const BeforeCall& before, const AfterCall& after) {
    TracedProcess process(driver, std::string(operation), root);
    process.start();
    Interference interference(process);
    SystemCall call{.process = process.id()};
    for (int stops = 0;; ++stops) {
        process.go(PTRACE_SYSCALL);
        process.wait();
        if (process.ended()) return resultOf(process);
        if (stops > 2 * maximumCalls) return spoiled("the operation does not end");
        if (!process.isAtCall()) {
            if (process.signal() != SIGSTOP)
                return spoiled("the operation raised signal " + std::to_string(process.signal()));
            call.inOperation = false;
            continue;
        }
        const __ptrace_syscall_info information = process.callInformation();
        if (information.op == PTRACE_SYSCALL_INFO_ENTRY) {
            call.number = information.entry.nr;
            std::copy_n(std::begin(information.entry.args), call.arguments.size(), call.arguments.begin());
            const Verdict verdict = before(call);
            if (verdict.kind == Verdict::Kind::Kill) {
                process.kill();
                process.wait();
                RunResult killed;
                killed.wasKilled = true;
                return killed;
            }
            interference.atEntry(verdict, call);
        } else if (information.op == PTRACE_SYSCALL_INFO_EXIT) {
            if (after) after(call, information.exit.rval);
            interference.atExit();
        }
    }
}

} // namespace kestrin
