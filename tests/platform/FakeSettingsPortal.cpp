#include "platform/FakeSettingsPortal.h"

#include <QDBusMetaType>
#include <utility>

namespace kestrin::test {

namespace {
const QString name = "org.freedesktop.portal.Desktop";
const QString path = "/org/freedesktop/portal/desktop";
} // namespace

FakeSettingsPortal::FakeSettingsPortal(QDBusConnection bus) : bus_(std::move(bus)) {
    qDBusRegisterMetaType<QMap<QString, QVariantMap>>();
    qRegisterMetaType<QDBusVariant>("QDBusVariant");
    bus_.registerObject(path, this, QDBusConnection::ExportAllContents);
}

void FakeSettingsPortal::start() {
    bus_.registerService(name);
}

void FakeSettingsPortal::stop() {
    bus_.unregisterService(name);
}

void FakeSettingsPortal::set(const QString& nameSpace, const QString& key, const QVariant& value) {
    settings_[nameSpace][key] = value;
    Q_EMIT SettingChanged(nameSpace, key, QDBusVariant(value));
}

QMap<QString, QVariantMap> FakeSettingsPortal::ReadAll(const QStringList& namespaces) {
    ++questions;
    if (hangs) setDelayedReply(true);
    QMap<QString, QVariantMap> found;
    for (const QString& nameSpace : namespaces)
        if (settings_.contains(nameSpace)) found[nameSpace] = settings_[nameSpace];
    return found;
}

} // namespace kestrin::test
