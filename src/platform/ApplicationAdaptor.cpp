#include "platform/ApplicationAdaptor.h"

#include <QDBusError>
#include <utility>

namespace kestrin {

namespace {

std::string tokenIn(const QVariantMap& platformData) {
    for (const char* key : {"activation-token", "desktop-startup-id"}) {
        const QString token = platformData.value(QLatin1String(key)).toString();
        if (!token.isEmpty()) return token.toStdString();
    }
    return {};
}

} // namespace

ApplicationAdaptor::ApplicationAdaptor(QDBusConnection bus, QObject* parent)
    : QDBusAbstractAdaptor(parent), bus_(std::move(bus)) {}

void ApplicationAdaptor::Activate(const QVariantMap& platformData) {
    if (std::exchange(awaitsLaunch, false)) return;
    // Answered first: the caller is a program that wants to end.
    QMetaObject::invokeMethod(
        this,
        [this, token = tokenIn(platformData)] {
            if (const auto callback = onActivate) callback(token);
        },
        Qt::QueuedConnection);
}

void ApplicationAdaptor::Open(const QStringList&, const QVariantMap& platformData) {
    Activate(platformData);
}

void ApplicationAdaptor::ActivateAction(
    const QString& action, const QVariantList&, const QVariantMap& platformData, const QDBusMessage& message) {
    awaitsLaunch = false;
    if (const auto callback = onAction; callback && callback(action.toStdString(), tokenIn(platformData))) return;
    message.setDelayedReply(true);
    bus_.send(message.createErrorReply(QDBusError::InvalidArgs, QStringLiteral("no action %1").arg(action)));
}

} // namespace kestrin
