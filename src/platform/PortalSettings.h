#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QObject>
#include <QStringList>
#include <functional>

namespace kestrin {

/// Reads settings of the desktop through org.freedesktop.portal.Settings and follows them, without ever waiting. A
/// portal that starts later or anew is read again; without one no setting is reported. Main thread.
class PortalSettings final : public QObject {
    Q_OBJECT

public:
    PortalSettings(QDBusConnection bus, QStringList namespaces, QObject* parent = nullptr);

    /// Asks for everything in the namespaces, starting the portal if need be. `onSetting` comes first.
    void start();

    /// A setting as it is now, unpacked from all variants around it.
    std::function<void(const QString& nameSpace, const QString& key, const QVariant& value)> onSetting;
    /// After one or more settings were told.
    std::function<void()> onTold;

private Q_SLOTS:
    void changed(const QString& nameSpace, const QString& key, const QDBusVariant& value);

private:
    void readAll(bool startsPortal);
    void take(const QDBusMessage& answer);

    QDBusConnection bus_;
    QStringList namespaces_;
};

} // namespace kestrin
