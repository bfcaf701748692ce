#include "appearance/view/ButtonDrawing.h"

#include "appearance/view/ButtonLook.h"
#include "appearance/view/Shapes.h"
#include "appearance/view/Symbols.h"
#include "appearance/view/Theme.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <QStyle>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace kestrin {

namespace {

constexpr double chevronSize = 11;
constexpr double chevronMargin = 9;
constexpr double chevronGap = 6;

bool hasSymbol(const QStyleOptionButton& option, const QWidget* widget) {
    return !buttonSymbol(widget).isEmpty() || !option.icon.isNull();
}

/// An icon is drawn like a symbol, in the colour of the text, so it follows the state and the theme.
void drawSymbol(const QStyleOptionButton& option, QPainter& painter, const QWidget* widget, const QRect& place,
    const QColor& color) {
    if (const QString symbol = buttonSymbol(widget); !symbol.isEmpty()) {
        paintSymbol(painter, place, symbol, color);
        return;
    }
    const qreal ratio = painter.device()->devicePixelRatio();
    QPixmap icon = option.icon.pixmap(place.size(), ratio);
    QPainter tint(&icon);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(QRectF(QPointF(), icon.deviceIndependentSize()), color);
    tint.end();
    painter.drawPixmap(place.topLeft(), icon);
}

int mnemonicFlag(const QStyleOptionButton& option, const QWidget* widget) {
    const QStyle* style = QApplication::style();
    return style->styleHint(QStyle::SH_UnderlineShortcut, &option, widget) ? Qt::TextShowMnemonic
                                                                           : Qt::TextHideMnemonic;
}

int textWidth(const QFont& font, const QString& text) {
    return static_cast<int>(std::ceil(QFontMetricsF(font).size(Qt::TextShowMnemonic, text).width()));
}

} // namespace

void drawButton(const QStyleOptionButton& option, QPainter& painter, const QWidget* widget) {
    const Theme& theme = currentTheme();
    const ButtonKind kind = buttonKind(widget);
    const ButtonLook look = ButtonLook::of(kind, option.state, widget);
    const auto visual = [&](const QRect& rect) { return QStyle::visualRect(option.direction, option.rect, rect); };

    painter.save();
    painter.setLayoutDirection(option.direction);
    if (look.fill.isValid()) fillRounded(painter, option.rect, look.radius, look.fill);
    if (look.outline.isValid())
        outlineRounded(
            painter, option.rect, look.radius, hairlineWidth(painter.device()->devicePixelRatio()), look.outline);

    // Placed from left to right; visualRect mirrors.
    QRect content = option.rect.adjusted(look.padding, 0, -look.padding, 0);
    const bool enabled = option.state & QStyle::State_Enabled;
    if (kind == ButtonKind::picker) {
        const int size = theme.length(chevronSize);
        const QRect chevron(option.rect.right() + 1 - theme.length(chevronMargin) - size,
            option.rect.center().y() - size / 2, size, size);
        paintSymbol(painter, visual(chevron), QStringLiteral("chevron.down"),
            theme.color(enabled ? ColorRole::secondary : ColorRole::disabled));
        content.setRight(chevron.left() - theme.length(chevronGap));
    }
    const bool symbol = hasSymbol(option, widget);
    const int besides = symbol ? look.symbolSize + (option.text.isEmpty() ? 0 : look.gap) : 0;
    if (option.text.isEmpty()) content = option.rect;
    const int wanted = textWidth(look.font, option.text);
    const int shown = std::min(wanted, std::max(0, content.width() - besides));
    const bool leading = kind == ButtonKind::picker || kind == ButtonKind::link;
    int x = leading ? content.left() : content.left() + (content.width() - shown - besides) / 2;
    const auto placeSymbol = [&] {
        const QRect place(
            x, option.rect.top() + (option.rect.height() - look.symbolSize) / 2, look.symbolSize, look.symbolSize);
        drawSymbol(option, painter, widget, visual(place), look.content);
        x += besides;
    };

    if (symbol && kind != ButtonKind::link) placeSymbol();
    // The words keep their own order: "5 minutes" in any layout.
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
    painter.setFont(look.font);
    painter.setPen(look.content);
    const QRect place(x, option.rect.top(), shown, option.rect.height());
    const QString text = shown < wanted ? QFontMetricsF(look.font).elidedText(
                                              option.text, Qt::ElideRight, shown, Qt::TextShowMnemonic)
                                        : option.text;
    painter.drawText(visual(place),
        static_cast<int>(QStyle::visualAlignment(option.direction, Qt::AlignLeading | Qt::AlignVCenter)) |
            Qt::TextSingleLine | mnemonicFlag(option, widget),
        text);
    x += shown + look.gap;
    painter.setLayoutDirection(option.direction);
    if (symbol && kind == ButtonKind::link) placeSymbol();
    painter.restore();
}

QSize buttonSize(const QStyleOptionButton& option, const QWidget* widget) {
    const Theme& theme = currentTheme();
    const ButtonKind kind = buttonKind(widget);
    // The selected segment is bolder: room for it keeps the others in place.
    const ButtonLook look = ButtonLook::of(kind, option.state | QStyle::State_On, widget);
    const bool symbol = hasSymbol(option, widget);
    const int textHeight = static_cast<int>(std::ceil(QFontMetricsF(look.font).height()));
    const int height = std::max({look.height, textHeight, symbol ? look.symbolSize : 0});
    if (option.text.isEmpty() && symbol)
        return kind == ButtonKind::link ? QSize(look.symbolSize, height) : QSize(height, height);
    int width = 2 * look.padding + textWidth(look.font, option.text);
    if (symbol) width += look.symbolSize + look.gap;
    if (kind == ButtonKind::picker)
        width += theme.length(chevronGap) + theme.length(chevronSize) + theme.length(chevronMargin) - look.padding;
    return QSize(width, height);
}

} // namespace kestrin
