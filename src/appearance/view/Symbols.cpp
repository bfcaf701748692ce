#include "appearance/view/Symbols.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <algorithm>

// The macro behind it declares a function and must stand outside every namespace.
static void initialiseSymbolResource() {
    Q_INIT_RESOURCE(symbols);
}

namespace kestrin {

namespace {

QString symbolFolder() {
    static const bool ready = (initialiseSymbolResource(), true);
    Q_UNUSED(ready);
    return QStringLiteral(":/kestrin/symbols");
}

QString fileOf(const QString& name) {
    QString file = name;
    return QStringLiteral("%1/%2.svg").arg(symbolFolder(), file.replace(u'.', u'-'));
}

bool pointsInReadingDirection(const QString& name) {
    return name == QLatin1String("chevron.right") || name == QLatin1String("arrow.up.right.square");
}

QPixmap drawn(const QString& name, int devicePixels, const QColor& color, bool mirrored) {
    QImage image(devicePixels, devicePixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(fileOf(name));
    QPainter painter(&image);
    renderer.render(&painter, QRectF(0, 0, devicePixels, devicePixels));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    painter.end();
    return QPixmap::fromImage(mirrored ? image.transformed(QTransform::fromScale(-1, 1)) : image);
}

QPixmap cached(
    const QString& name, int devicePixels, const QColor& color, qreal ratio, Qt::LayoutDirection direction) {
    if (devicePixels <= 0) return {};
    const bool mirrored = direction == Qt::RightToLeft && pointsInReadingDirection(name);
    const QString key = QStringLiteral("kestrin-symbol %1 %2 %3 %4")
                            .arg(name, QString::number(devicePixels), color.name(QColor::HexArgb),
                                mirrored ? QStringLiteral("mirrored") : QString());
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        if (name.isEmpty() || !QFile::exists(fileOf(name))) return {};
        pixmap = drawn(name, devicePixels, color, mirrored);
        QPixmapCache::insert(key, pixmap);
    }
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

} // namespace

void paintSymbol(QPainter& painter, const QRectF& rect, const QString& name, const QColor& color) {
    const Qt::LayoutDirection direction = painter.layoutDirection() == Qt::LayoutDirectionAuto
                                              ? QGuiApplication::layoutDirection()
                                              : painter.layoutDirection();
    const qreal ratio = painter.device()->devicePixelRatio();
    const double side = std::min(rect.width(), rect.height());
    const QPixmap symbol = cached(name, qRound(side * ratio), color, ratio, direction);
    if (symbol.isNull()) return;
    // Between two device pixels it would blur.
    const QPointF corner = rect.center() - QPointF(side / 2, side / 2);
    painter.drawPixmap(QPointF(qRound(corner.x() * ratio) / ratio, qRound(corner.y() * ratio) / ratio), symbol);
}

QPixmap symbolPixmap(const QString& name, int size, const QColor& color, qreal devicePixelRatio) {
    return cached(
        name, qRound(size * devicePixelRatio), color, devicePixelRatio, QGuiApplication::layoutDirection());
}

QStringList symbolNames() {
    QStringList names;
    for (const QString& file : QDir(symbolFolder()).entryList({QStringLiteral("*.svg")}, QDir::Files, QDir::Name))
        names.append(file.chopped(4).replace(u'-', u'.'));
    return names;
}

} // namespace kestrin
