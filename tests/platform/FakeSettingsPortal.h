#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QMap>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace kestrin::test {

/// The desktop's side of the settings portal: owns its name from `start` to `stop` and announces every change.
class FakeSettingsPortal final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit FakeSettingsPortal(QDBusConnection bus);
    ~FakeSettingsPortal() override { stop(); }

    void start();
    void stop();
    /// Keeps the value, and announces it while started.
    void set(const QString& nameSpace, const QString& key, const QVariant& value);

    /// Takes questions and leaves them without an answer.
    bool hangs = false;
    int questions = 0;

public Q_SLOTS:
    QMap<QString, QVariantMap> ReadAll(const QStringList& namespaces);

private:
    QDBusConnection bus_;
    QMap<QString, QVariantMap> settings_;
};

} // namespace kestrin::test
