#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>
#include <functional>
#include <string>

namespace kestrin {

/// Serves org.freedesktop.Application on the object it is given as parent. Kestrin opens no files, so `Open` means
/// what `Activate` does. Main thread. The upper-case members are the protocol's.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    ApplicationAdaptor(QDBusConnection bus, QObject* parent);

    std::function<void(const std::string& token)> onActivate;
    std::function<bool(const std::string& action, const std::string& token)> onAction;
    /// The next call is the launch itself and is answered without being told.
    bool awaitsLaunch = false;

public Q_SLOTS:
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& uris, const QVariantMap& platformData);
    void ActivateAction(const QString& action, const QVariantList& parameter, const QVariantMap& platformData,
        const QDBusMessage& message);

private:
    QDBusConnection bus_;
};

} // namespace kestrin
