#include "monitoring/application/ApplicationAppearance.h"

#include "appearance/view/KestrinStyle.h"

#include <QApplication>
#include <QFont>
#include <QScreen>

namespace kestrin {

Theme themeFor(const DesktopAppearance& appearance) {
    ThemeSettings settings{.dark = appearance.dark,
        .highContrast = appearance.highContrast,
        .reducedMotion = appearance.reducedMotion,
        .applicationFont = QFont(QString::fromStdString(appearance.fontFamily))};
    settings.applicationFont.setPointSizeF(appearance.fontPoints);
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        settings.logicalDpi = screen->logicalDotsPerInchY();
    return Theme::make(settings);
}

void applyAppearance(const DesktopAppearance& appearance) {
    setCurrentTheme(themeFor(appearance));
    if (!qobject_cast<KestrinStyle*>(QApplication::style())) QApplication::setStyle(new KestrinStyle);
}

void applyAndFollow(AppearanceFollower& appearance) {
    applyAppearance(appearance.appearance());
    appearance.onChange = applyAppearance;
}

} // namespace kestrin
