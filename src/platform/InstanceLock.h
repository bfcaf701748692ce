#pragma once

#include <QSocketNotifier>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace kestrin {

/// One Kestrin per user also where no session bus tells a second start of the first, or where the two are on
/// different buses: both would write the same history. The kernel drops the lock with the process that held it,
/// however that ended. Main thread.
class InstanceLock {
public:
    enum class Result {
        Held,        ///< by this process
        Taken,       ///< another one runs, and has been told if it can be; this one ends
        Unavailable, ///< there is no place for a lock; nothing is known of others
    };

    /// `file` is made where it is missing and stays there empty; a socket stands beside it while the lock is held.
    /// For `patience` a first instance may be about to end: one that has given up its name on the bus is a few
    /// system calls away from it.
    explicit InstanceLock(
        std::filesystem::path file, std::chrono::milliseconds patience = std::chrono::milliseconds(500));
    ~InstanceLock();
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;

    /// In the user's runtime directory, or among the temporary files where there is none.
    [[nodiscard]] static std::filesystem::path place();

    /// `activationToken` goes to the one that runs.
    [[nodiscard]] Result acquire(const std::string& activationToken);

    /// The program was started again. With the token that lets a window come forward, or an empty text.
    std::function<void(const std::string& activationToken)> onActivate;

private:
    void listen();
    void receive();
    void callHolder(const std::string& activationToken) const;

    std::filesystem::path file_;
    std::filesystem::path socketPath_;
    std::chrono::milliseconds patience_;
    int lock_ = -1;
    int socket_ = -1;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace kestrin
