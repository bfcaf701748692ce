#include "platform/TerminationSignals.h"

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>
#include <utility>

namespace kestrin {

namespace {

sigset_t terminationSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, signal);
    return signals;
}

} // namespace

void TerminationSignals::block() {
    const sigset_t signals = terminationSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

TerminationSignals::TerminationSignals(std::function<void()> onTermination) : descriptor_(-1) {
    const sigset_t signals = terminationSignals();
    descriptor_ = ::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    if (descriptor_ < 0) {
        // Without the descriptor the signals keep their ordinary effect: the process ends at once.
        pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
        return;
    }
    notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
        [descriptor = descriptor_, run = std::move(onTermination)] {
            signalfd_siginfo received = {};
            while (::read(descriptor, &received, sizeof received) > 0)
                run();
        });
}

TerminationSignals::~TerminationSignals() {
    notifier_.reset();
    if (descriptor_ >= 0) ::close(descriptor_);
}

} // namespace kestrin
