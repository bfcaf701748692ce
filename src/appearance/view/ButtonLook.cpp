#include "appearance/view/ButtonLook.h"

#include "appearance/view/Theme.h"

#include <QWidget>

namespace kestrin {

namespace {

struct Fills {
    QColor normal, hovered, pressed;
};

Fills fillsOf(ButtonKind kind, const Theme& theme) {
    const auto fills = [&](ColorRole normal, ColorRole hovered, ColorRole pressed) {
        return Fills{theme.color(normal), theme.color(hovered), theme.color(pressed)};
    };
    switch (kind) {
    case ButtonKind::plain:
    case ButtonKind::picker:
        return fills(ColorRole::fill, ColorRole::fillHover, ColorRole::fillPressed);
    case ButtonKind::accent:
        return fills(ColorRole::accentFill, ColorRole::accentFillHover, ColorRole::accentFillPressed);
    case ButtonKind::flat:
        return {QColor(), theme.color(ColorRole::fill), theme.color(ColorRole::fillHover)};
    case ButtonKind::destructive: {
        const QColor danger = theme.color(ColorRole::danger);
        return {danger, danger.darker(111), danger.darker(128)};
    }
    case ButtonKind::segment:
    case ButtonKind::link:
        break;
    }
    return {};
}

ColorRole contentOf(ButtonKind kind, QStyle::State state) {
    if (!(state & QStyle::State_Enabled)) return ColorRole::disabled;
    const bool hovered = state & QStyle::State_MouseOver;
    switch (kind) {
    case ButtonKind::accent:
        return ColorRole::onAccent;
    case ButtonKind::destructive:
        return ColorRole::onDanger;
    case ButtonKind::segment:
        return state & QStyle::State_On ? ColorRole::accent : hovered ? ColorRole::text : ColorRole::secondary;
    case ButtonKind::link:
        return state & QStyle::State_Sunken ? ColorRole::text : ColorRole::accent;
    case ButtonKind::plain:
    case ButtonKind::flat:
    case ButtonKind::picker:
        break;
    }
    return ColorRole::text;
}

QFont fontOf(ButtonKind kind, QStyle::State state, const QWidget* widget, const Theme& theme) {
    const TextStyle style = kind == ButtonKind::picker ? TextStyle::body : TextStyle::button;
    QFont font = widget && widget->testAttribute(Qt::WA_SetFont) ? widget->font() : theme.font(style);
    if (kind == ButtonKind::link && font.weight() < QFont::Medium) font.setWeight(QFont::Medium);
    if (kind == ButtonKind::segment && state & QStyle::State_On) font.setWeight(QFont::DemiBold);
    const bool hovered = state & QStyle::State_Enabled && state & QStyle::State_MouseOver;
    if (kind == ButtonKind::link && hovered && !(state & QStyle::State_Sunken)) font.setUnderline(true);
    return font;
}

} // namespace

ButtonLook ButtonLook::of(ButtonKind kind, QStyle::State state, const QWidget* widget) {
    const Theme& theme = currentTheme();
    const bool enabled = state & QStyle::State_Enabled;
    const bool checked = state & QStyle::State_On;
    ButtonLook look{.content = theme.color(contentOf(kind, state)),
        .font = fontOf(kind, state, widget, theme),
        .radius = theme.length(kind == ButtonKind::segment ? 6
                               : kind == ButtonKind::link  ? 3
                                                           : 7),
        .padding = theme.length(kind == ButtonKind::flat     ? 8
                                : kind == ButtonKind::picker ? 11
                                                             : 14),
        .height = theme.length(kind == ButtonKind::segment ? 26 : 32),
        .symbolSize = theme.length(kind == ButtonKind::link ? 13 : 16),
        .gap = theme.length(kind == ButtonKind::link ? 4 : 7)};
    const Fills fills = fillsOf(kind, theme);
    look.fill = fills.normal;
    if (!enabled && (kind == ButtonKind::accent || kind == ButtonKind::destructive))
        look.fill = theme.color(ColorRole::fill);
    else if (enabled && (state & QStyle::State_Sunken || (checked && kind != ButtonKind::segment)))
        look.fill = fills.pressed;
    else if (enabled && state & QStyle::State_MouseOver)
        look.fill = fills.hovered;

    // A fill alone is too faint there.
    if (theme.isHighContrast() && (kind == ButtonKind::plain || kind == ButtonKind::picker))
        look.outline = theme.color(enabled ? ColorRole::border : ColorRole::disabled);
    if (kind == ButtonKind::segment) {
        look.fill = checked ? theme.color(ColorRole::raised) : QColor();
        look.outline = checked ? theme.color(ColorRole::border) : QColor();
    }
    if (kind == ButtonKind::link) {
        look.padding = 0;
        look.height = 0;
    }
    return look;
}

} // namespace kestrin
