#include "appearance/view/Symbols.h"

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

namespace kestrin {

namespace {

// What the windows, the settings and their dialogs show.
const QStringList namesInUse{"arrow.clockwise", "arrow.down.circle.fill", "arrow.up.right.square", "bell",
    "bell.badge", "bell.slash", "checkmark", "checkmark.circle", "checkmark.circle.fill", "checkmark.shield",
    "chevron.down", "chevron.right", "circle.fill", "desktopcomputer",
    "desktopcomputer.trianglebadge.exclamationmark", "dot.radiowaves.left.and.right", "exclamationmark.circle.fill",
    "exclamationmark.triangle", "exclamationmark.triangle.fill", "gearshape", "globe",
    "globe.badge.exclamationmark", "info.circle", "kestrin.menu.symbol", "lock", "lock.slash", "magnifyingglass",
    "menubar.rectangle", "minus", "minus.circle", "network", "pause.circle", "plus", "power", "questionmark.circle",
    "questionmark.circle.fill", "rectangle.compress.vertical", "waveform.path.ecg", "wrench.and.screwdriver.fill",
    "xmark.circle.fill", "xmark.octagon.fill"};

QImage painted(const QString& name, Qt::LayoutDirection direction = Qt::LeftToRight) {
    QImage image(32, 32, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setLayoutDirection(direction);
    paintSymbol(painter, image.rect(), name, Qt::red);
    return image;
}

int inkedPixels(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 128 ? 1 : 0;
    return count;
}

} // namespace

TEST(EverySymbolInUse, isDrawn) {
    for (const QString& name : namesInUse) {
        const int ink = inkedPixels(painted(name));
        EXPECT_GT(ink, 20) << name.toStdString();
        EXPECT_LT(ink, 32 * 32) << name.toStdString();
    }
}

TEST(EverySymbol, isInUse) {
    QStringList names = symbolNames();
    names.sort();
    EXPECT_EQ(names.join(' ').toStdString(), namesInUse.join(' ').toStdString());
}

TEST(ASymbol, hasTheColorAskedFor) {
    const QImage image = painted("circle.fill");
    EXPECT_EQ(image.pixelColor(16, 16), QColor(Qt::red));
}

TEST(ASymbol, thatPointsInReadingDirectionIsMirroredAndNoOther) {
    for (const QString& name : namesInUse) {
        const bool points = name == "chevron.right" || name == "arrow.up.right.square";
        const QImage ordinary = painted(name);
        const QImage mirrored = ordinary.transformed(QTransform::fromScale(-1, 1));
        EXPECT_EQ(painted(name, Qt::RightToLeft), points ? mirrored : ordinary) << name.toStdString();
    }
    EXPECT_NE(painted("chevron.right"), painted("chevron.right", Qt::RightToLeft));
}

TEST(ASymbol, ofAnUnknownNameIsNothing) {
    EXPECT_EQ(inkedPixels(painted("no.such.symbol")), 0);
    EXPECT_TRUE(symbolPixmap("no.such.symbol", 16, Qt::red, 1).isNull());
}

TEST(ASymbol, isAsSharpAsTheScreen) {
    const QPixmap symbol = symbolPixmap("globe", 16, Qt::black, 2);
    EXPECT_EQ(symbol.size(), QSize(32, 32));
    EXPECT_EQ(symbol.deviceIndependentSize(), QSizeF(16, 16));
}

TEST(ASymbol, isNotTakenFromTheCacheInAnotherColor) {
    const QImage black = symbolPixmap("plus", 16, Qt::black, 1).toImage();
    EXPECT_NE(symbolPixmap("plus", 16, Qt::blue, 1).toImage(), black);
    EXPECT_EQ(symbolPixmap("plus", 16, Qt::black, 1).toImage(), black);
}

} // namespace kestrin
