#pragma once

#include "platform/DBusMenuTypes.h"
#include "platform/TrayIcon.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace kestrin {

/// Serves a flat menu as com.canonical.dbusmenu on the object it is given as parent. Entries keep their number for
/// as long as the program runs, so a click on a menu that the panel has not yet refreshed never reaches another
/// entry; a click on an entry that is gone or disabled is dropped. Main thread. The upper-case members are the
/// protocol's.
class DBusMenu final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

public:
    /// `bus` answers calls that name an unknown entry.
    DBusMenu(QDBusConnection bus, QObject* parent);

    /// Raises the revision when anything differs; a change of labels or states alone is told entry by entry.
    void setEntries(std::vector<TrayMenuEntry> entries);

    /// Called from the event loop, after the panel has had its answer.
    std::function<void(const std::string& id)> onClicked;

    [[nodiscard]] uint version() const { return 3; }
    [[nodiscard]] QString textDirection() const;
    [[nodiscard]] QString status() const;
    [[nodiscard]] QStringList iconThemePath() const { return {}; }

public Q_SLOTS:
    uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames, const QDBusMessage& message,
        kestrin::DBusMenuLayout& layout);
    QList<kestrin::DBusMenuItem> GetGroupProperties(const QList<int>& ids, const QStringList& propertyNames);
    QDBusVariant GetProperty(int id, const QString& name, const QDBusMessage& message);
    void Event(int id, const QString& eventId, const QDBusVariant& data, uint timestamp);
    QList<int> EventGroup(const QList<kestrin::DBusMenuEvent>& events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

Q_SIGNALS:
    void LayoutUpdated(uint revision, int parent);
    void ItemsPropertiesUpdated(
        const QList<kestrin::DBusMenuItem>& updated, const QList<kestrin::DBusMenuItemKeys>& removed);
    void ItemActivationRequested(int id, uint timestamp);

private:
    struct Numbered {
        int id;
        TrayMenuEntry entry;
    };

    [[nodiscard]] int numberOf(const TrayMenuEntry& entry, int& separators);
    [[nodiscard]] const Numbered* find(int id) const;
    [[nodiscard]] bool knows(int id) const { return id == 0 || find(id) != nullptr; }
    void refuse(const QDBusMessage& message, int id);
    [[nodiscard]] QVariantMap properties(int id, const QStringList& names = {}) const;

    QDBusConnection bus_;
    std::vector<Numbered> entries_;
    std::map<std::string, int> numbers_;
    uint revision_ = 1;
};

} // namespace kestrin
