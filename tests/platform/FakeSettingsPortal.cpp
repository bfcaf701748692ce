#include "platform/FakeSettingsPortal.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <utility>

namespace kestrin::test {

namespace {
const QString name = "org.freedesktop.portal.Desktop";
const QString path = "/org/freedesktop/portal/desktop";
} // namespace

FakeSettingsPortal::FakeSettingsPortal(QDBusConnection bus) : bus_(std::move(bus)) {
    qDBusRegisterMetaType<QMap<QString, QVariantMap>>();
    bus_.registerObject(path, this, QDBusConnection::ExportAllSlots);
}

void FakeSettingsPortal::start() {
    bus_.registerService(name);
}

void FakeSettingsPortal::stop() {
    bus_.unregisterService(name);
}

void FakeSettingsPortal::set(const QString& nameSpace, const QString& key, const QVariant& value) {
    settings_[nameSpace][key] = value;
    auto signal = QDBusMessage::createSignal(path, "org.freedesktop.portal.Settings", "SettingChanged");
    signal << nameSpace << key << QVariant::fromValue(QDBusVariant(value));
    bus_.send(signal);
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
