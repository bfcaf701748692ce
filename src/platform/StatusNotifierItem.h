#pragma once

#include "platform/TrayIcon.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <optional>

class QDBusServiceWatcher;

namespace kestrin {

class DBusMenu;
class StatusNotifierAdaptor;

/// The tray icon over org.kde.StatusNotifierItem and com.canonical.dbusmenu. It registers as soon as a watcher owns
/// its name on `bus`, be it hours after `show`, and again whenever the watcher comes back. One per process. Main
/// thread; only claiming its own name waits for the bus, for 2 s at most.
class StatusNotifierItem final : public QObject, public TrayIcon {
    Q_OBJECT

public:
    explicit StatusNotifierItem(QDBusConnection bus, QObject* parent = nullptr);
    ~StatusNotifierItem() override;

    void show() override;
    void hide() override;
    void setMenu(std::vector<TrayMenuEntry> entries) override;
    [[nodiscard]] bool isHosted() const override { return hosted_.value_or(false); }
    [[nodiscard]] std::string takeActivationToken() override;

    /// "org.kde.StatusNotifierItem-PID-1"
    [[nodiscard]] static QString serviceName();

private Q_SLOTS:
    void watcherChanged(const QString& service, const QString& before, const QString& now);
    void hostsChanged();

private:
    void findWatcher();
    void registerAtWatcher();
    void askForHost();
    void setHosted(bool hosted);
    void activated(std::optional<QPoint> place);

    QDBusConnection bus_;
    QObject menuObject_;
    QDBusServiceWatcher* watcher_;
    StatusNotifierAdaptor* item_;
    DBusMenu* menu_;
    std::string activationToken_;
    bool shown_ = false;
    bool registered_ = false;
    std::optional<bool> hosted_; ///< empty until the desktop has answered
    unsigned generation_ = 0;    ///< an answer from before the last change of watcher is dropped
    int attempts_ = 0;
};

} // namespace kestrin
