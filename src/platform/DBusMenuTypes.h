#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QMetaType>
#include <QStringList>
#include <QVariantMap>

namespace kestrin {

/// An entry and its properties: (ia{sv}).
struct DBusMenuItem {
    int id = 0;
    QVariantMap properties;
};

/// An entry with everything below it: (ia{sv}av), each child a layout again.
struct DBusMenuLayout {
    int id = 0;
    QVariantMap properties;
    QList<DBusMenuLayout> children;
};

/// The names of properties that an entry has lost: (ias).
struct DBusMenuItemKeys {
    int id = 0;
    QStringList names;
};

/// What the user did with an entry: (isvu). `timestamp` is the display server's.
struct DBusMenuEvent {
    int id = 0;
    QString eventId;
    QDBusVariant data;
    uint timestamp = 0;
};

using DBusMenuItemList = QList<DBusMenuItem>;
using DBusMenuItemKeysList = QList<DBusMenuItemKeys>;
using DBusMenuEventList = QList<DBusMenuEvent>;

QDBusArgument& operator<<(QDBusArgument& out, const DBusMenuItem& item);
const QDBusArgument& operator>>(const QDBusArgument& in, DBusMenuItem& item);
QDBusArgument& operator<<(QDBusArgument& out, const DBusMenuLayout& layout);
const QDBusArgument& operator>>(const QDBusArgument& in, DBusMenuLayout& layout);
QDBusArgument& operator<<(QDBusArgument& out, const DBusMenuItemKeys& keys);
const QDBusArgument& operator>>(const QDBusArgument& in, DBusMenuItemKeys& keys);
QDBusArgument& operator<<(QDBusArgument& out, const DBusMenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& in, DBusMenuEvent& event);

/// Makes the types above known to QtDBus. May be called often.
void registerDBusMenuTypes();

} // namespace kestrin

Q_DECLARE_METATYPE(kestrin::DBusMenuItem)
Q_DECLARE_METATYPE(kestrin::DBusMenuLayout)
Q_DECLARE_METATYPE(kestrin::DBusMenuItemKeys)
Q_DECLARE_METATYPE(kestrin::DBusMenuEvent)
