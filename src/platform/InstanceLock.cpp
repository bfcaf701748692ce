#include "platform/InstanceLock.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace kestrin {

namespace {

constexpr std::size_t longestToken = 4096;
constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;
/// Whoever clears away old files of a runtime directory leaves those with this bit.
constexpr mode_t keptWhileOld = S_ISVTX;

bool isOwnDirectory(const std::filesystem::path& path) {
    struct stat status{};
    return path.is_absolute() && ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == ::getuid() && ::access(path.c_str(), W_OK) == 0;
}

/// Anybody may plant a file among the temporary ones, and would hold the lock for as long as he likes.
bool isOwnFile(int descriptor) {
    struct stat status{};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::getuid();
}

std::optional<sockaddr_un> socketAddress(const std::filesystem::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.native().size() >= sizeof address.sun_path) return std::nullopt;
    std::memcpy(address.sun_path, path.c_str(), path.native().size());
    return address;
}

int datagramSocket() {
    return ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

/// Whether the file that was locked is still the one of that name; otherwise the next start would lock another.
bool isAtPath(int descriptor, const std::filesystem::path& path) {
    struct stat locked{};
    struct stat named{};
    return ::fstat(descriptor, &locked) == 0 && ::lstat(path.c_str(), &named) == 0 &&
           locked.st_dev == named.st_dev && locked.st_ino == named.st_ino;
}

} // namespace

InstanceLock::InstanceLock(std::filesystem::path file, int looks, std::function<void()> rest)
    : file_(std::move(file)), socketPath_(std::filesystem::path(file_).replace_extension("socket")), looks_(looks),
      rest_(std::move(rest)) {}

InstanceLock::~InstanceLock() {
    notifier_.reset();
    // The socket first: once the lock is free, another instance puts its own there.
    if (socket_ >= 0) {
        ::unlink(socketPath_.c_str());
        ::close(socket_);
    }
    if (lock_ >= 0) ::close(lock_);
}

std::filesystem::path InstanceLock::place() {
    const std::string name = "app.kestrin.Kestrin-" + std::to_string(::getuid()) + ".lock";
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    // A shell that another user opened may lack the variable while the session's directory is there.
    for (const std::filesystem::path& directory : {std::filesystem::path(runtime ? runtime : ""),
             "/run/user" / std::filesystem::path(std::to_string(::getuid()))})
        if (isOwnDirectory(directory)) return directory / name;
    return std::filesystem::path("/tmp") / name;
}

void InstanceLock::restBriefly() {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

bool InstanceLock::succeedsInTime(
    const std::function<bool()>& attempt, std::initializer_list<int> passingErrors) const {
    for (int look = 1; !attempt();) {
        if (errno == EINTR) continue;
        if (std::ranges::find(passingErrors, errno) == passingErrors.end() || look++ == looks_) return false;
        rest_();
    }
    return true;
}

InstanceLock::Result InstanceLock::acquire(const std::string& activationToken) {
    do {
        if (lock_ >= 0) ::close(lock_);
        lock_ = ::open(file_.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, ownerOnly);
        if (lock_ < 0 || !isOwnFile(lock_)) return Result::Unavailable;
        const auto lock = [this] { return ::flock(lock_, LOCK_EX | LOCK_NB) == 0; };
        if (!succeedsInTime(lock, {EWOULDBLOCK})) {
            if (errno != EWOULDBLOCK) return Result::Unavailable;
            callHolder(activationToken);
            return Result::Taken;
        }
    } while (!isAtPath(lock_, file_));
    ::fchmod(lock_, ownerOnly | keptWhileOld);
    listen();
    return Result::Held;
}

void InstanceLock::listen() {
    const auto address = socketAddress(socketPath_);
    if (!address) return;
    socket_ = datagramSocket();
    if (socket_ < 0) return;
    // Whoever left this behind is gone, or we would not have the lock.
    ::unlink(socketPath_.c_str());
    if (::bind(socket_, reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0) {
        ::close(std::exchange(socket_, -1));
        return;
    }
    ::chmod(socketPath_.c_str(), ownerOnly | keptWhileOld);
    notifier_ = std::make_unique<QSocketNotifier>(socket_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { receive(); });
}

void InstanceLock::receive() {
    std::array<char, longestToken> token{};
    const ssize_t size = ::recv(socket_, token.data(), token.size(), 0);
    if (size < 0) return;
    if (const auto callback = onActivate) callback(std::string(token.data(), static_cast<std::size_t>(size)));
}

void InstanceLock::callHolder(const std::string& activationToken) const {
    const auto address = socketAddress(socketPath_);
    const int descriptor = datagramSocket();
    const auto send = [&] {
        return ::sendto(descriptor, activationToken.data(), std::min(activationToken.size(), longestToken),
                   MSG_NOSIGNAL, reinterpret_cast<const sockaddr*>(&*address), sizeof *address) >= 0;
    };
    // The holder listens a moment after it has the lock, and may find the socket of one that was killed.
    if (address && descriptor >= 0) succeedsInTime(send, {ENOENT, ECONNREFUSED});
    if (descriptor >= 0) ::close(descriptor);
}

} // namespace kestrin
