#include "platform/StatusNotifierItem.h"

#include "platform/DBusMenu.h"
#include "platform/SessionBus.h"
#include "platform/StatusNotifierAdaptor.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QTimer>
#include <chrono>
#include <utility>

namespace kestrin {

namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
const QString itemPath = QStringLiteral("/StatusNotifierItem");

// A panel can own the name a moment before it serves the object behind it.
constexpr int maximumAttempts = 10;
constexpr std::chrono::milliseconds retryDelay{500};

/// Calls without waiting and hands the answer on, unless `owner` is gone by then.
void ask(QObject* owner, const QDBusConnection& bus, const QDBusMessage& call,
    std::function<void(const QDBusMessage&)> answered) {
    auto* pending = new QDBusPendingCallWatcher(bus.asyncCall(call), owner);
    QObject::connect(pending, &QDBusPendingCallWatcher::finished, owner,
        [answered = std::move(answered)](QDBusPendingCallWatcher* finished) {
            finished->deleteLater();
            answered(finished->reply());
        });
}

} // namespace

StatusNotifierItem::StatusNotifierItem(QDBusConnection bus, QObject* parent)
    : QObject(parent), bus_(std::move(bus)),
      watcher_(new QDBusServiceWatcher(watcherName, bus_, QDBusServiceWatcher::WatchForOwnerChange, this)),
      item_(new StatusNotifierAdaptor(this)), menu_(new DBusMenu(bus_, &menuObject_)) {
    item_->onActivate = [this](std::optional<QPoint> place) { activated(place); };
    item_->onActivationToken = [this](const QString& token) { activationToken_ = token.toStdString(); };
    menu_->onClicked = [this](const std::string& id) {
        if (const auto callback = onMenu) callback(id);
    };
    connect(watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this, &StatusNotifierItem::watcherChanged);
    // Naming the sender as well would make Qt look it up at once, and wait for the bus.
    for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
        bus_.connect({}, watcherPath, watcherName, QLatin1String(signal), this, SLOT(hostsChanged()));
}

StatusNotifierItem::~StatusNotifierItem() {
    hide();
}

QString StatusNotifierItem::serviceName() {
    return QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid());
}

void StatusNotifierItem::show() {
    if (shown_) return;
    shown_ = true;
    bus_.registerObject(itemPath, this, QDBusConnection::ExportAdaptors);
    bus_.registerObject(item_->menu().path(), &menuObject_, QDBusConnection::ExportAdaptors);
    claimName(bus_, serviceName());
    findWatcher();
}

void StatusNotifierItem::hide() {
    if (!shown_) return;
    shown_ = false;
    ++generation_;
    registered_ = false;
    // The watcher drops the item when its name goes.
    releaseName(bus_, serviceName());
    bus_.unregisterObject(itemPath);
    bus_.unregisterObject(item_->menu().path());
    hosted_.reset();
}

void StatusNotifierItem::setMenu(std::vector<TrayMenuEntry> entries) {
    menu_->setEntries(std::move(entries));
}

std::string StatusNotifierItem::takeActivationToken() {
    return std::exchange(activationToken_, {});
}

void StatusNotifierItem::findWatcher() {
    auto call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("NameHasOwner"));
    call << watcherName;
    ask(this, bus_, call, [this, generation = generation_](const QDBusMessage& answer) {
        if (generation != generation_) return;
        if (answer.type() == QDBusMessage::ReplyMessage && answer.arguments().value(0).toBool())
            registerAtWatcher();
        else
            setHosted(false);
    });
}

void StatusNotifierItem::watcherChanged(const QString&, const QString&, const QString& now) {
    if (!shown_) return;
    ++generation_;
    registered_ = false;
    attempts_ = 0;
    if (now.isEmpty())
        setHosted(false);
    else
        registerAtWatcher();
}

void StatusNotifierItem::hostsChanged() {
    if (!shown_) return;
    if (registered_)
        askForHost();
    else
        registerAtWatcher();
}

void StatusNotifierItem::registerAtWatcher() {
    auto call = QDBusMessage::createMethodCall(
        watcherName, watcherPath, watcherName, QStringLiteral("RegisterStatusNotifierItem"));
    // A message must not start a panel that is not there.
    call.setAutoStartService(false);
    call << serviceName();
    ask(this, bus_, call, [this, generation = ++generation_](const QDBusMessage& answer) {
        if (generation != generation_) return;
        if (answer.type() == QDBusMessage::ReplyMessage) {
            registered_ = true;
            askForHost();
            return;
        }
        setHosted(false);
        if (++attempts_ < maximumAttempts)
            QTimer::singleShot(retryDelay, this, [this, generation] {
                if (generation == generation_) registerAtWatcher();
            });
    });
}

void StatusNotifierItem::askForHost() {
    auto call = QDBusMessage::createMethodCall(
        watcherName, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call.setAutoStartService(false);
    call << watcherName << QStringLiteral("IsStatusNotifierHostRegistered");
    ask(this, bus_, call, [this, generation = ++generation_](const QDBusMessage& answer) {
        if (generation != generation_) return;
        const auto value = answer.arguments().value(0).value<QDBusVariant>().variant();
        setHosted(answer.type() == QDBusMessage::ReplyMessage && value.toBool());
    });
}

void StatusNotifierItem::setHosted(bool hosted) {
    if (hosted_ == hosted) return;
    hosted_ = hosted;
    if (const auto callback = onHostedChanged) callback(hosted);
}

void StatusNotifierItem::activated(std::optional<QPoint> place) {
    // The panel waits for the answer: a callback that opens a dialog must not hold it up.
    QMetaObject::invokeMethod(
        this,
        [this, place] {
            if (const auto callback = onActivate) callback(place);
        },
        Qt::QueuedConnection);
}

} // namespace kestrin
