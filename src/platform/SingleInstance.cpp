#include "platform/SingleInstance.h"

#include "platform/ApplicationAdaptor.h"
#include "platform/SessionBus.h"

#include <QDBusMessage>
#include <QVariantMap>
#include <cstdlib>
#include <utility>

namespace kestrin {

namespace {

const QString applicationName = QStringLiteral("app.kestrin.Kestrin");
const QString applicationPath = QStringLiteral("/app/kestrin/Kestrin");

std::string taken(const char* variable) {
    const char* value = std::getenv(variable);
    std::string result = value ? value : "";
    unsetenv(variable);
    return result;
}

void activateOther(const QDBusConnection& bus, const LaunchTokens& tokens) {
    QVariantMap platformData;
    if (!tokens.startupId.empty())
        platformData.insert(QStringLiteral("desktop-startup-id"), QString::fromStdString(tokens.startupId));
    if (!tokens.activationToken.empty())
        platformData.insert(QStringLiteral("activation-token"), QString::fromStdString(tokens.activationToken));
    auto call = QDBusMessage::createMethodCall(applicationName, applicationPath,
        QStringLiteral("org.freedesktop.Application"), QStringLiteral("Activate"));
    call.setAutoStartService(false);
    call << platformData;
    // Waits for the answer so that the message has left before this process ends; a busy first instance still gets
    // it when the wait is over.
    bus.call(call, QDBus::Block, static_cast<int>(busTimeout.count()));
}

} // namespace

LaunchTokens LaunchTokens::takeFromEnvironment() {
    return {taken("DESKTOP_STARTUP_ID"), taken("XDG_ACTIVATION_TOKEN")};
}

Launch takeLaunchFromEnvironment() {
    const bool started = !taken("DBUS_STARTER_ADDRESS").empty();
    unsetenv("DBUS_STARTER_BUS_TYPE");
    return started ? Launch::ByActivation : Launch::Ordinary;
}

SingleInstance::SingleInstance(std::optional<QDBusConnection> bus) : bus_(std::move(bus)) {}

SingleInstance::~SingleInstance() {
    if (owner_) releaseName(*bus_, applicationName);
    if (adaptor_) bus_->unregisterObject(applicationPath);
}

SingleInstance::Result SingleInstance::acquire(const LaunchTokens& tokens, Launch launch) {
    if (!bus_ || !bus_->isConnected()) return Result::NoBus;
    if (!adaptor_) {
        adaptor_ = new ApplicationAdaptor(*bus_, this);
        adaptor_->onActivate = [this](const std::string& token) {
            if (const auto callback = onActivate) callback(token);
        };
        adaptor_->onAction = [this](const std::string& action, const std::string& token) {
            const auto callback = onAction;
            return callback && callback(action, token);
        };
        // Served before the name is owned: a call can follow the name at once.
        bus_->registerObject(applicationPath, this, QDBusConnection::ExportAdaptors);
    }
    adaptor_->awaitsLaunch = launch == Launch::ByActivation;
    switch (claimName(*bus_, applicationName)) {
    case NameClaim::Owned:
        owner_ = true;
        return Result::Primary;
    case NameClaim::Taken:
        activateOther(*bus_, tokens);
        return Result::Secondary;
    case NameClaim::Failed:
        break;
    }
    return Result::NoBus;
}

} // namespace kestrin
