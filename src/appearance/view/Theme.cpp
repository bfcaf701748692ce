#include "appearance/view/Theme.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kestrin {

namespace {

struct Shades {
    QRgb light, dark;
};

// In the order of ColorRole.
constexpr std::array<Shades, 21> roles{{
    {0xfff3f4f6, 0xff1d1f23}, // window
    {0xffffffff, 0xff272a2f}, // surface
    {0xffffffff, 0xff33373d}, // raised
    {0xffe9ebef, 0xff17191c}, // sidebar
    {0xffe6e8ec, 0xff141619}, // well
    {0xffe8eaee, 0xff363a41}, // fill
    {0xffdfe2e7, 0xff40454d}, // fillHover
    {0xffd3d7de, 0xff2c3036}, // fillPressed
    {0xffdfe2e7, 0xff3a3e45}, // border
    {0xffc3c8d0, 0xff4a4f58}, // edge
    {0xff858c97, 0xff7f8792}, // control
    {0xff1a1d21, 0xffedeff2}, // text
    {0xff545c68, 0xffabb2bd}, // secondary
    {0xff8d949f, 0xff767d88}, // disabled
    {0xff0b6477, 0xff63c5da}, // accent
    {0xff0f6b7f, 0xff1f7f95}, // accentFill
    {0xff0c5e70, 0xff1b7286}, // accentFillHover
    {0xff094e5d, 0xff165f70}, // accentFillPressed
    {0xffffffff, 0xffffffff}, // onAccent
    {0xffc02a20, 0xffc03a31}, // danger
    {0xffffffff, 0xffffffff}, // onDanger
}};
static_assert(roles.size() == static_cast<std::size_t>(ColorRole::onDanger) + 1);

// In the order of StateColor; secondary is the role.
constexpr std::array<Shades, 5> stateTexts{
    {{}, {0xff17763b, 0xff56c879}, {0xffa04c00, 0xfff0a541}, {0xffc02a20, 0xffff8a80}, {0xff1f5ed6, 0xff7db4ff}}};
constexpr std::array<Shades, 5> stateMarks{
    {{}, {0xff15803f, 0xff4dbd70}, {0xffc25e00, 0xffee9b36}, {0xffcf352a, 0xfff9776c}, {0xff2c6be3, 0xff6fa9f8}}};

struct Type {
    double factor;
    QFont::Weight weight; ///< Normal: the user's
};

// In the order of TextStyle.
constexpr std::array<Type, 13> types{{
    {1.25, QFont::DemiBold}, // title3
    {1.25, QFont::DemiBold}, // figure
    {1.1, QFont::DemiBold},  // panelTitle
    {1.0, QFont::DemiBold},  // headline
    {1.0, QFont::Normal},    // body
    {1.0, QFont::Medium},    // button
    {0.92, QFont::Normal},   // caption
    {0.92, QFont::Medium},   // captionMedium
    {0.92, QFont::DemiBold}, // captionDemiBold
    {0.92, QFont::Bold},     // captionBold
    {0.85, QFont::Normal},   // caption2
    {0.85, QFont::DemiBold}, // caption2DemiBold
    {0.85, QFont::Bold},     // caption2Bold
}};
static_assert(types.size() == static_cast<std::size_t>(TextStyle::caption2Bold) + 1);

constexpr double smallestPoints = 8;

QRgb shade(const Shades& shades, bool dark) {
    return dark ? shades.dark : shades.light;
}

QColor over(const QColor& color, double opacity, const QColor& ground) {
    const auto part = [&](int top, int bottom) {
        return static_cast<int>(std::lround(top * opacity + bottom * (1 - opacity)));
    };
    return QColor(
        part(color.red(), ground.red()), part(color.green(), ground.green()), part(color.blue(), ground.blue()));
}

double pixelSize(const QFont& font, double logicalDpi) {
    return font.pixelSize() > 0 ? font.pixelSize() : font.pointSizeF() * logicalDpi / 72;
}

} // namespace

Theme::Theme(const ThemeSettings& settings)
    : settings_(settings),
      scale_(std::max(0.9, pixelSize(settings.applicationFont, settings.logicalDpi) / (10 * 96.0 / 72))) {}

Theme Theme::make(const ThemeSettings& settings) {
    return Theme(settings);
}

QColor Theme::color(ColorRole role) const {
    const bool faint = role == ColorRole::border || role == ColorRole::control || role == ColorRole::edge ||
                       role == ColorRole::secondary;
    if (settings_.highContrast && faint) role = ColorRole::text;
    if (settings_.highContrast && role == ColorRole::window) return settings_.dark ? Qt::black : Qt::white;
    return QColor(shade(roles.at(static_cast<std::size_t>(role)), settings_.dark));
}

QColor Theme::stateText(StateColor state) const {
    if (state == StateColor::secondary) return color(ColorRole::secondary);
    return QColor(shade(stateTexts.at(static_cast<std::size_t>(state)), settings_.dark));
}

QColor Theme::stateMark(StateColor state) const {
    if (state == StateColor::secondary) return color(ColorRole::secondary);
    return QColor(shade(stateMarks.at(static_cast<std::size_t>(state)), settings_.dark));
}

QColor Theme::stateTint(StateColor state, double opacity) const {
    const QColor surface = color(ColorRole::surface);
    if (settings_.highContrast) return surface;
    return over(opacity > 0.12 ? stateMark(state) : stateText(state), opacity, surface);
}

QColor Theme::accentTint(double opacity, ColorRole ground) const {
    if (settings_.highContrast) return color(ColorRole::surface);
    return over(color(ColorRole::accent), opacity, color(ground));
}

QFont Theme::font(TextStyle style) const {
    const Type& type = types.at(static_cast<std::size_t>(style));
    QFont font = settings_.applicationFont;
    const double smallest = smallestPoints * settings_.logicalDpi / 72;
    if (font.pixelSize() > 0) {
        const double size = font.pixelSize() * type.factor;
        font.setPixelSize(static_cast<int>(std::lround(type.factor < 1 ? std::max(smallest, size) : size)));
    } else {
        const double size = font.pointSizeF() * type.factor;
        font.setPointSizeF(type.factor < 1 ? std::max(smallestPoints, size) : size);
    }
    if (type.weight != QFont::Normal) font.setWeight(type.weight);
    return font;
}

int Theme::length(double px) const {
    const int rounded = static_cast<int>(std::lround(px * scale_));
    return px > 0 ? std::max(1, rounded) : rounded;
}

int Theme::ringWidth() const {
    return length(settings_.highContrast ? 3 : 2);
}

} // namespace kestrin
