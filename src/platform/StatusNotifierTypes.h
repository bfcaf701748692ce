#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QImage>
#include <QList>
#include <QMetaType>
#include <QString>

namespace kestrin {

/// One size of an icon as the panel takes it: (iiay), ARGB with the most significant byte first.
struct StatusNotifierPixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes;

    [[nodiscard]] static StatusNotifierPixmap fromImage(const QImage& image);
};

using StatusNotifierPixmapList = QList<StatusNotifierPixmap>;

/// (sa(iiay)ss)
struct StatusNotifierToolTip {
    QString iconName;
    StatusNotifierPixmapList pixmaps;
    QString title;
    QString text;
};

QDBusArgument& operator<<(QDBusArgument& out, const StatusNotifierPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& in, StatusNotifierPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& out, const StatusNotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& in, StatusNotifierToolTip& toolTip);

/// Makes the types above known to QtDBus. May be called often.
void registerStatusNotifierTypes();

} // namespace kestrin

Q_DECLARE_METATYPE(kestrin::StatusNotifierPixmap)
Q_DECLARE_METATYPE(kestrin::StatusNotifierToolTip)
