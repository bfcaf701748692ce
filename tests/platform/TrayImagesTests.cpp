#include "platform/TrayImages.h"

#include "platform/SavedEnvironment.h"
#include "platform/StatusNotifierTypes.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <gtest/gtest.h>

namespace kestrin {

namespace {

/// How many pixels stand out clearly from a background of this grey.
int legiblePixels(const QImage& image, int background) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            const int shown = (pixel.lightness() * pixel.alpha() + background * (255 - pixel.alpha())) / 255;
            count += std::abs(shown - background) > 80 ? 1 : 0;
        }
    return count;
}

} // namespace

TEST(ThePictureOfTheTrayIcon, canBeReadOnDarkMiddlingAndLightPanels) {
    for (const QImage& image : trayImages())
        for (const int background : {20, 128, 245})
            EXPECT_GT(legiblePixels(image, background), image.width() * image.height() / 10)
                << image.width() << " pixels on grey " << background;
}

TEST(ThePictureOfTheTrayIcon, goesOutWithTheMostSignificantByteFirst) {
    QImage image(1, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(0x11, 0x22, 0x33, 0x44));
    EXPECT_EQ(StatusNotifierPixmap::fromImage(image).bytes, QByteArray::fromHex("44112233"));
}

TEST(TheNameOfTheTrayIcon, isGivenOnlyWhereTheIconIsInstalled) {
    const test::SavedEnvironment saved{"XDG_DATA_HOME", "XDG_DATA_DIRS"};
    const QTemporaryDir data;
    qputenv("XDG_DATA_HOME", data.path().toUtf8());
    qputenv("XDG_DATA_DIRS", data.path().toUtf8());
    EXPECT_EQ(installedSymbolicIconName(), QString());

    const QString folder = data.filePath("icons/hicolor/symbolic/apps");
    ASSERT_TRUE(QDir().mkpath(folder));
    registerIcons();
    ASSERT_TRUE(QFile::copy(
        ":/kestrin/icons/app.kestrin.Kestrin-symbolic.svg", folder + "/app.kestrin.Kestrin-symbolic.svg"));
    EXPECT_EQ(installedSymbolicIconName(), "app.kestrin.Kestrin-symbolic");
}

TEST(TheIconsOfTheProgram, areLinkedIn) {
    registerIcons();
    EXPECT_TRUE(QFile::exists(":/kestrin/icons/app.kestrin.Kestrin.svg"));
}

} // namespace kestrin
