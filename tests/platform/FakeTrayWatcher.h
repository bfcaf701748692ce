#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>

namespace kestrin::test {

/// A panel's side of the tray: owns the watcher's name from `start` to `stop` and keeps what registers with it.
class FakeTrayWatcher final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)

public:
    explicit FakeTrayWatcher(QDBusConnection bus) : bus_(bus) {}
    ~FakeTrayWatcher() override { stop(); }

    /// `served` false: the name is owned before the object behind it is there.
    void start(bool served = true);
    void serve();
    void stop();
    void setHost(bool present);
    [[nodiscard]] bool hasHost() const { return host_; }

    QStringList registered;

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString& service) { registered.append(service); }

Q_SIGNALS:
    void StatusNotifierHostRegistered();
    void StatusNotifierHostUnregistered();

private:
    QDBusConnection bus_;
    bool host_ = true;
};

} // namespace kestrin::test
