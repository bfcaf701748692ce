#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariantList>

namespace kestrin::test {

/// A message bus of the test's own that starts no services. Connections made here are closed with it.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();

    [[nodiscard]] QString address() const;
    [[nodiscard]] qint64 processId() const { return daemon_.processId(); }
    /// A new connection, told apart from the others by its unique name. Any thread.
    [[nodiscard]] QDBusConnection connect();
    /// Calls over `from` and serves the event loop until the answer is there.
    [[nodiscard]] QDBusMessage call(QDBusConnection from, const QString& service, const QString& path,
        const QString& interface, const QString& method, const QVariantList& arguments = {});
    /// One property, or an invalid value.
    [[nodiscard]] QVariant property(QDBusConnection from, const QString& service, const QString& path,
        const QString& interface, const QString& name);

private:
    QTemporaryDir directory_;
    QProcess daemon_;
    QStringList connections_;
};

} // namespace kestrin::test
