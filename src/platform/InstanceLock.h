#pragma once

#include <QSocketNotifier>
#include <filesystem>
#include <functional>
#include <initializer_list>
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
    /// A first instance may be about to end or have just begun: one that has given up its name on the bus is a few
    /// system calls away from the one, one that has the lock as far from listening. So each is looked at up to
    /// `looks` times, with a `rest` after each but the last.
    explicit InstanceLock(std::filesystem::path file, int looks = 50, std::function<void()> rest = restBriefly);
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
    static void restBriefly();

    /// Tries until it works, an error comes that will not pass, or all looks are used up; errno tells why not.
    bool succeedsInTime(const std::function<bool()>& attempt, std::initializer_list<int> passingErrors) const;
    void listen();
    void receive();
    void callHolder(const std::string& activationToken) const;

    std::filesystem::path file_;
    std::filesystem::path socketPath_;
    int looks_;
    std::function<void()> rest_;
    int lock_ = -1;
    int socket_ = -1;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace kestrin
