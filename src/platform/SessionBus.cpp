#include "platform/SessionBus.h"

#include <QDBusMessage>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <poll.h>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace kestrin {

namespace {

using Deadline = std::chrono::steady_clock::time_point;

class Socket {
public:
    Socket() : descriptor_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {}
    ~Socket() { close(descriptor_); }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    [[nodiscard]] int get() const { return descriptor_; }

    [[nodiscard]] bool wait(short events, Deadline deadline) const {
        for (;;) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0) return false;
            pollfd entry{descriptor_, events, 0};
            const int ready = poll(&entry, 1, static_cast<int>(left.count()));
            if (ready > 0) return true;
            if (ready == 0 || errno != EINTR) return false;
        }
    }

private:
    int descriptor_;
};

std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned byte = 0;
        if (text[i] == '%' && i + 2 < text.size() &&
            std::from_chars(text.data() + i + 1, text.data() + i + 3, byte, 16).ptr == text.data() + i + 3) {
            result += static_cast<char>(byte);
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

std::optional<std::string> valueOf(std::string_view address, std::string_view key) {
    while (!address.empty()) {
        const std::string_view pair = address.substr(0, address.find(','));
        address.remove_prefix(std::min(address.size(), pair.size() + 1));
        if (pair.starts_with(key) && pair.substr(key.size()).starts_with('='))
            return unescaped(pair.substr(key.size() + 1));
    }
    return std::nullopt;
}

bool answers(const sockaddr_un& place, socklen_t length, Deadline deadline) {
    const Socket socket;
    if (connect(socket.get(), reinterpret_cast<const sockaddr*>(&place), length) != 0) return false;
    std::string greeting("\0AUTH EXTERNAL ", 15);
    for (const char digit : std::to_string(getuid())) {
        greeting += '3';
        greeting += digit;
    }
    greeting += "\r\n";
    if (send(socket.get(), greeting.data(), greeting.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(greeting.size()))
        return false;
    std::string answer;
    while (answer.size() < 3 && socket.wait(POLLIN, deadline)) {
        char buffer[64];
        const ssize_t count = read(socket.get(), buffer, sizeof buffer);
        if (count <= 0) return false;
        answer.append(buffer, static_cast<std::size_t>(count));
    }
    return answer.starts_with("OK ");
}

/// Whether one address of the list answers. Addresses of other kinds than a socket on this machine are trusted.
bool oneAnswers(std::string_view addresses, Deadline deadline) {
    while (!addresses.empty()) {
        const std::string_view address = addresses.substr(0, addresses.find(';'));
        addresses.remove_prefix(std::min(addresses.size(), address.size() + 1));
        if (address.starts_with("disabled:")) continue;
        if (!address.starts_with("unix:")) return true;
        const std::string_view parts = address.substr(5);
        std::string path;
        if (const auto named = valueOf(parts, "path"))
            path = *named;
        else if (const auto hidden = valueOf(parts, "abstract"))
            path = '\0' + *hidden;
        sockaddr_un place{};
        place.sun_family = AF_UNIX;
        if (path.empty() || path.size() >= sizeof place.sun_path) continue;
        std::memcpy(place.sun_path, path.data(), path.size());
        // A hidden name ends where its length says, a path at its NUL.
        const std::size_t length = offsetof(sockaddr_un, sun_path) + path.size() + (path.front() == '\0' ? 0 : 1);
        if (answers(place, static_cast<socklen_t>(length), deadline)) return true;
    }
    return false;
}

} // namespace

std::expected<void, std::string> prepareSessionBus() {
    const Deadline deadline = std::chrono::steady_clock::now() + busTimeout;
    const char* given = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    std::string addresses;
    if (given && *given)
        addresses = given;
    else if (runtime && *runtime && access((std::string(runtime) + "/bus").c_str(), F_OK) == 0)
        addresses = "unix:path=" + std::string(runtime) + "/bus";

    if (!addresses.empty() && oneAnswers(addresses, deadline)) return {};
    setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
    if (addresses.empty()) return std::unexpected("There is no session bus.");
    return std::unexpected("The session bus does not answer.");
}

std::expected<QDBusConnection, std::string> openSessionBus() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected()) return bus;
    return std::unexpected("There is no session bus.");
}

NameClaim claimName(const QDBusConnection& bus, const QString& name) {
    constexpr uint doNotQueue = 4;
    enum Answer : uint { PrimaryOwner = 1, InQueue, Exists, AlreadyOwner };
    auto call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("RequestName"));
    call << name << doNotQueue;
    const QDBusMessage answer = bus.call(call, QDBus::Block, static_cast<int>(busTimeout.count()));
    if (answer.type() != QDBusMessage::ReplyMessage) return NameClaim::Failed;
    const uint code = answer.arguments().value(0).toUInt();
    return code == PrimaryOwner || code == AlreadyOwner ? NameClaim::Owned : NameClaim::Taken;
}

void releaseName(const QDBusConnection& bus, const QString& name) {
    auto call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("ReleaseName"));
    call << name;
    bus.send(call);
}

} // namespace kestrin
