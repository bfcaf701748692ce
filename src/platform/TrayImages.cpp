#include "platform/TrayImages.h"

#include <QFile>
#include <QPainter>
#include <QStandardPaths>
#include <QSvgRenderer>

// The macro behind it declares a function and must stand outside every namespace.
static void initialiseIconResource() {
    Q_INIT_RESOURCE(icons);
}

namespace kestrin {

namespace {

constexpr int sizes[] = {16, 22, 24, 32, 48};
constexpr auto mark = "#f6f6f6";
constexpr auto rim = "#2b2f36";
constexpr auto colourInFile = "#bebebe";

QByteArray symbolicDrawing(const char* colour) {
    QFile file(QStringLiteral(":/kestrin/icons/%1.svg").arg(QLatin1String(symbolicIconName)));
    if (!file.open(QIODevice::ReadOnly)) return {};
    return file.readAll().replace(colourInFile, colour);
}

QImage drawn(const QByteArray& drawing, int size) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(drawing);
    QPainter painter(&image);
    renderer.render(&painter, QRectF(0, 0, size, size));
    return image;
}

QImage rimmed(int size) {
    // The drawing leaves 0.75 pixels of sixteen free on every side, the rim takes 0.67.
    const qreal width = size / 24.0;
    const QImage dark = drawn(symbolicDrawing(rim), size);
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (const QPointF direction : {QPointF(-1, 0), QPointF(1, 0), QPointF(0, -1), QPointF(0, 1), QPointF(-.7, -.7),
             QPointF(.7, -.7), QPointF(-.7, .7), QPointF(.7, .7)})
        painter.drawImage(direction * width, dark);
    painter.drawImage(0, 0, drawn(symbolicDrawing(mark), size));
    return image;
}

} // namespace

void registerIcons() {
    initialiseIconResource();
}

QString installedSymbolicIconName() {
    const QString name = QLatin1String(symbolicIconName);
    for (const char* folder : {"symbolic", "scalable"}) {
        const QString file = QStringLiteral("icons/hicolor/%1/apps/%2.svg").arg(QLatin1String(folder), name);
        if (!QStandardPaths::locate(QStandardPaths::GenericDataLocation, file).isEmpty()) return name;
    }
    return {};
}

QList<QImage> trayImages() {
    registerIcons();
    QList<QImage> images;
    for (const int size : sizes)
        images.append(rimmed(size));
    return images;
}

} // namespace kestrin
