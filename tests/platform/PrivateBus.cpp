#include "platform/PrivateBus.h"

#include "platform/EventWait.h"

#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QFile>
#include <atomic>
#include <stdexcept>

namespace kestrin::test {

PrivateBus::PrivateBus() {
    QFile configuration(directory_.filePath("bus.conf"));
    if (!configuration.open(QIODevice::WriteOnly)) throw std::runtime_error("no configuration for the bus");
    configuration.write(R"(<busconfig><type>session</type><listen>)" + address().toUtf8() +
                        R"(</listen><policy context="default"><allow send_destination="*"/><allow eavesdrop="true"/>
        <allow own="*"/></policy></busconfig>)");
    configuration.close();
    daemon_.start("dbus-daemon", {"--config-file=" + configuration.fileName(), "--nofork", "--print-address"});
    // The address is printed once the bus listens.
    if (!daemon_.waitForReadyRead())
        throw std::runtime_error("dbus-daemon does not start: " + daemon_.readAllStandardError().toStdString());
}

PrivateBus::~PrivateBus() {
    for (const QString& name : connections_)
        QDBusConnection::disconnectFromBus(name);
    daemon_.kill();
    daemon_.waitForFinished();
}

QString PrivateBus::address() const {
    return "unix:path=" + directory_.filePath("socket");
}

QDBusConnection PrivateBus::connect() {
    static std::atomic<int> count = 0;
    const QString name = QString("private-%1").arg(++count);
    connections_.append(name);
    auto connection = QDBusConnection::connectToBus(address(), name);
    if (!connection.isConnected())
        throw std::runtime_error("no connection: " + connection.lastError().message().toStdString());
    return connection;
}

QDBusMessage PrivateBus::call(QDBusConnection from, const QString& service, const QString& path,
    const QString& interface, const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    const QDBusPendingCall pending = from.asyncCall(message);
    return waitUntil([&] { return pending.isFinished(); }) ? pending.reply() : QDBusMessage();
}

QVariant PrivateBus::property(QDBusConnection from, const QString& service, const QString& path,
    const QString& interface, const QString& name) {
    const auto answer = call(from, service, path, "org.freedesktop.DBus.Properties", "Get", {interface, name});
    return answer.arguments().value(0).value<QDBusVariant>().variant();
}

} // namespace kestrin::test
