#include "appearance/view/WrappedLabel.h"

#include "appearance/view/Theme.h"

#include <QPainter>
#include <QStyle>
#include <algorithm>
#include <cmath>

namespace kestrin {

namespace {

// A line of about sixty characters reads well; a layout may give it more or less.
constexpr int preferredCharacters = 60;
constexpr int fewestCharacters = 8;

} // namespace

WrappedLabel::WrappedLabel(TextStyle style, ColorRole color, QWidget* parent) : ThemedLabel(style, color, parent) {
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setAlignment(Qt::AlignLeading | Qt::AlignTop);
}

void WrappedLabel::prepare(QTextLayout& layout) const {
    // The order of the words is their own: a URL stays left to right in any layout.
    QTextOption option(QStyle::visualAlignment(layoutDirection(), alignment() & Qt::AlignHorizontal_Mask));
    option.setTextDirection(Qt::LayoutDirectionAuto);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.setFont(font());
    QString shown = text();
    layout.setText(shown.replace(u'\n', QChar::LineSeparator));
}

QSizeF WrappedLabel::layOut(QTextLayout& layout, double width) const {
    prepare(layout);
    double height = 0;
    double widest = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition(QPointF(0, height));
        height += line.height();
        widest = std::max(widest, line.naturalTextWidth());
    }
    layout.endLayout();
    return QSizeF(widest, height);
}

int WrappedLabel::heightForWidth(int width) const {
    QTextLayout layout;
    return static_cast<int>(std::ceil(layOut(layout, std::max(1, width)).height()));
}

QSize WrappedLabel::sizeHint() const {
    QTextLayout layout;
    const QSizeF size = layOut(layout, fontMetrics().averageCharWidth() * preferredCharacters);
    return QSize(static_cast<int>(std::ceil(size.width())) + 1, static_cast<int>(std::ceil(size.height())));
}

QSize WrappedLabel::minimumSizeHint() const {
    const int width = std::min(sizeHint().width(), fontMetrics().averageCharWidth() * fewestCharacters);
    return QSize(width, text().isEmpty() ? 0 : fontMetrics().height());
}

void WrappedLabel::paintEvent(QPaintEvent*) {
    forgetOtherSelection();
    QPainter painter(this);
    painter.setPen(palette().color(isEnabled() ? QPalette::Normal : QPalette::Disabled, QPalette::WindowText));
    QTextLayout layout;
    const double height = layOut(layout, width()).height();
    const double top =
        alignment() & Qt::AlignVCenter ? std::max(0.0, std::floor((this->height() - height) / 2)) : 0;
    QList<QTextLayout::FormatRange> selected;
    if (anchor_ != cursor_) {
        QTextLayout::FormatRange range;
        range.start = std::min(anchor_, cursor_);
        range.length = std::abs(anchor_ - cursor_);
        range.format.setBackground(currentTheme().color(ColorRole::accentFill));
        range.format.setForeground(currentTheme().color(ColorRole::onAccent));
        selected.append(range);
    }
    layout.draw(&painter, QPointF(0, top), selected);
    const bool showsCaret = selectable_ && hasFocus();
    if (showsCaret && anchor_ != cursor_) layout.drawCursor(&painter, QPointF(0, top), cursor_);
}

} // namespace kestrin
