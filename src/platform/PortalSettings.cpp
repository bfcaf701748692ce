#include "platform/PortalSettings.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QMap>
#include <limits>
#include <utility>

namespace kestrin {

namespace {

const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString portalInterface = QStringLiteral("org.freedesktop.portal.Settings");

QVariant unpacked(QVariant value) {
    while (value.metaType() == QMetaType::fromType<QDBusVariant>()) {
        // The inner value is copied out first: it lies inside what is assigned to.
        QVariant inner = value.value<QDBusVariant>().variant();
        value = std::move(inner);
    }
    return value;
}

} // namespace

PortalSettings::PortalSettings(QDBusConnection bus, QStringList namespaces, QObject* parent)
    : QObject(parent), bus_(std::move(bus)), namespaces_(std::move(namespaces)) {}

void PortalSettings::start() {
    // By its name Qt finds the type of the slot's argument.
    qRegisterMetaType<QDBusVariant>();
    // Each namespace by itself, so that the bus keeps all others away. Naming the sender would make Qt look it up
    // and wait for the bus.
    for (const QString& name : namespaces_)
        bus_.connect({}, portalPath, portalInterface, QStringLiteral("SettingChanged"), {name},
            QStringLiteral("ssv"), this, SLOT(changed(QString, QString, QDBusVariant)));
    const auto* watcher = new QDBusServiceWatcher(portalName, bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
    // Starting it once is enough: one that ends over this question would be started for ever.
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString&, const QString&, const QString& newOwner) {
            if (!newOwner.isEmpty()) readAll(false);
        });
    readAll(true);
}

void PortalSettings::readAll(bool startsPortal) {
    auto call = QDBusMessage::createMethodCall(portalName, portalPath, portalInterface, QStringLiteral("ReadAll"));
    call.setAutoStartService(startsPortal);
    call << namespaces_;
    // Nothing waits for the answer, and a portal that is slow at login is not asked again: no time limit.
    auto* pending = new QDBusPendingCallWatcher(bus_.asyncCall(call, std::numeric_limits<int>::max()), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* finished) {
        finished->deleteLater();
        take(finished->reply());
    });
}

void PortalSettings::take(const QDBusMessage& answer) {
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != QLatin1String("a{sa{sv}}")) return;
    const auto found = qdbus_cast<QMap<QString, QVariantMap>>(answer.arguments().constFirst());
    for (auto space = found.cbegin(); space != found.cend(); ++space)
        for (auto setting = space->cbegin(); setting != space->cend(); ++setting)
            if (onSetting) onSetting(space.key(), setting.key(), unpacked(setting.value()));
    if (onTold) onTold();
}

void PortalSettings::changed(const QString& nameSpace, const QString& key, const QDBusVariant& value) {
    if (onSetting) onSetting(nameSpace, key, unpacked(value.variant()));
    if (onTold) onTold();
}

} // namespace kestrin
