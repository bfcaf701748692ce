#pragma once

#include <QDBusConnection>
#include <QString>
#include <chrono>
#include <expected>
#include <string>

namespace kestrin {

/// How long anything here waits for the bus or for a program on it.
inline constexpr std::chrono::milliseconds busTimeout{2000};

/// Looks for a session bus that answers, without Qt and for 2 s at most, and gives the reason when there is none.
/// In that case the process is also told that it has no bus, so that no library hangs on a dead one or starts one
/// of its own. To be called first thing in `main`, before any thread or Qt object.
[[nodiscard]] std::expected<void, std::string> prepareSessionBus();

/// The session's bus for use on the main thread, once there is an application object. The text says what is
/// missing.
[[nodiscard]] std::expected<QDBusConnection, std::string> openSessionBus();

enum class NameClaim { Owned, Taken, Failed };

/// Claims a name on the bus without queueing for it. Waits for the bus, for 2 s at most.
NameClaim claimName(const QDBusConnection& bus, const QString& name);
void releaseName(const QDBusConnection& bus, const QString& name);

} // namespace kestrin
