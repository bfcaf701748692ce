#include "platform/StatusNotifierTypes.h"

#include <QDBusMetaType>
#include <QtEndian>

namespace kestrin {

StatusNotifierPixmap StatusNotifierPixmap::fromImage(const QImage& image) {
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    StatusNotifierPixmap result{argb.width(), argb.height(), {}};
    result.bytes.reserve(argb.sizeInBytes());
    for (int y = 0; y < argb.height(); ++y) {
        for (int x = 0; x < argb.width(); ++x) {
            const quint32 pixel = qToBigEndian<quint32>(argb.pixel(x, y));
            result.bytes.append(reinterpret_cast<const char*>(&pixel), sizeof pixel);
        }
    }
    return result;
}

QDBusArgument& operator<<(QDBusArgument& out, const StatusNotifierPixmap& pixmap) {
    out.beginStructure();
    out << pixmap.width << pixmap.height << pixmap.bytes;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, StatusNotifierPixmap& pixmap) {
    in.beginStructure();
    in >> pixmap.width >> pixmap.height >> pixmap.bytes;
    in.endStructure();
    return in;
}

QDBusArgument& operator<<(QDBusArgument& out, const StatusNotifierToolTip& toolTip) {
    out.beginStructure();
    out << toolTip.iconName << toolTip.pixmaps << toolTip.title << toolTip.text;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, StatusNotifierToolTip& toolTip) {
    in.beginStructure();
    in >> toolTip.iconName >> toolTip.pixmaps >> toolTip.title >> toolTip.text;
    in.endStructure();
    return in;
}

void registerStatusNotifierTypes() {
    qDBusRegisterMetaType<StatusNotifierPixmap>();
    qDBusRegisterMetaType<StatusNotifierPixmapList>();
    qDBusRegisterMetaType<StatusNotifierToolTip>();
}

} // namespace kestrin
