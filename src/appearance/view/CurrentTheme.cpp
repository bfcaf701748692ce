#include "appearance/view/Theme.h"
#include "appearance/view/ThemePalette.h"

#include <QApplication>
#include <QEvent>
#include <QPointer>
#include <QScreen>
#include <QToolTip>
#include <QWidget>
#include <optional>

namespace kestrin {

namespace {

std::optional<Theme> theme;

ThemeSettings settingsOfApplication() {
    ThemeSettings settings{.applicationFont = QApplication::font()};
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        settings.logicalDpi = screen->logicalDotsPerInchY();
    return settings;
}

} // namespace

const Theme& currentTheme() {
    if (!theme) theme = Theme::make(settingsOfApplication());
    return *theme;
}

void setCurrentTheme(const Theme& next) {
    if (theme == next && QApplication::font() == next.applicationFont()) return;
    theme = next;
    // What these two trigger already sees the new theme.
    if (QApplication::font() != next.applicationFont()) QApplication::setFont(next.applicationFont());
    QToolTip::setFont(next.font(TextStyle::caption));
    if (const QPalette palette = paletteOf(next); palette != QApplication::palette())
        QApplication::setPalette(palette);

    // Qt sends nothing if only the scale or the motion differs. A widget may delete others when it hears of it.
    QList<QPointer<QWidget>> widgets;
    for (QWidget* widget : QApplication::allWidgets())
        widgets.append(widget);
    for (const QPointer<QWidget>& widget : widgets) {
        if (!widget) continue;
        QEvent change(QEvent::StyleChange);
        QApplication::sendEvent(widget, &change);
    }
}

} // namespace kestrin
