#include "monitoring/application/ApplicationAppearance.h"

#include <QApplication>
#include <QFont>
#include <QStyle>

namespace kestrin {

namespace {

struct Colours {
    QRgb window, base, text, placeholder, button, accent, onAccent, link;
};

constexpr Colours light{.window = 0xfff3f4f6,
    .base = 0xffffffff,
    .text = 0xff1a1d21,
    .placeholder = 0xff545c68,
    .button = 0xffe8eaee,
    .accent = 0xff0f6b7f,
    .onAccent = 0xffffffff,
    .link = 0xff0b6477};
constexpr Colours dark{.window = 0xff1d1f23,
    .base = 0xff272a2f,
    .text = 0xffedeff2,
    .placeholder = 0xffabb2bd,
    .button = 0xff363a41,
    .accent = 0xff1f7f95,
    .onAccent = 0xffffffff,
    .link = 0xff63c5da};
constexpr QRgb disabledOnLight = 0xff8d949f;
constexpr QRgb disabledOnDark = 0xff767d88;
constexpr QRgb black = 0xff000000;
constexpr QRgb white = 0xffffffff;

Colours coloursFor(const DesktopAppearance& appearance) {
    Colours colours = appearance.dark ? dark : light;
    if (appearance.highContrast) {
        colours.window = colours.base = colours.button = appearance.dark ? black : white;
        colours.text = colours.placeholder = colours.link = appearance.dark ? white : black;
    }
    return colours;
}

} // namespace

QPalette paletteFor(const DesktopAppearance& appearance) {
    const Colours colours = coloursFor(appearance);
    // Qt derives the edges and shadows from these two.
    QPalette palette(QColor(colours.button), QColor(colours.window));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        palette.setColor(role, QColor(colours.text));
    palette.setColor(QPalette::Base, QColor(colours.base));
    palette.setColor(QPalette::AlternateBase, QColor(colours.window));
    palette.setColor(QPalette::ToolTipBase, QColor(colours.base));
    palette.setColor(QPalette::PlaceholderText, QColor(colours.placeholder));
    palette.setColor(QPalette::Highlight, QColor(colours.accent));
    palette.setColor(QPalette::HighlightedText, QColor(colours.onAccent));
    palette.setColor(QPalette::Link, QColor(colours.link));
    palette.setColor(QPalette::LinkVisited, QColor(colours.link));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(appearance.dark ? disabledOnDark : disabledOnLight));
    return palette;
}

void applyAppearance(const DesktopAppearance& appearance) {
    if (QApplication::style()->name() != QLatin1String("fusion")) QApplication::setStyle("Fusion");
    QFont font(QString::fromStdString(appearance.fontFamily));
    font.setPointSizeF(appearance.fontPoints);
    if (font != QApplication::font()) QApplication::setFont(font);
    const QPalette palette = paletteFor(appearance);
    if (palette != QApplication::palette()) QApplication::setPalette(palette);
}

void applyAndFollow(AppearanceFollower& appearance) {
    applyAppearance(appearance.appearance());
    appearance.onChange = applyAppearance;
}

} // namespace kestrin
