#include "appearance/view/SegmentWell.h"

#include "appearance/view/ButtonKind.h"
#include "appearance/view/Shapes.h"
#include "appearance/view/Theme.h"

#include <QButtonGroup>
#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>

namespace kestrin {

SegmentWell::SegmentWell(QWidget* parent) : QWidget(parent), group_(new QButtonGroup(this)) {
    new QHBoxLayout(this);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    followTheme();
}

QAbstractButton* SegmentWell::addSegment(const QString& text) {
    auto* segment = new QPushButton(text, this);
    segment->setCheckable(true);
    segment->setAutoDefault(false);
    segment->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setButtonKind(segment, ButtonKind::segment);
    group_->addButton(segment);
    if (!group_->checkedButton()) segment->setChecked(true);
    static_cast<QHBoxLayout*>(layout())->addWidget(segment, 1);
    return segment;
}

void SegmentWell::paintEvent(QPaintEvent*) {
    const Theme& theme = currentTheme();
    QPainter painter(this);
    const double radius = theme.length(8);
    fillRounded(painter, rect(), radius, theme.color(ColorRole::well));
    if (theme.isHighContrast())
        outlineRounded(painter, rect(), radius, hairlineWidth(devicePixelRatio()), theme.color(ColorRole::border));
}

void SegmentWell::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange) followTheme();
}

void SegmentWell::followTheme() {
    const Theme& theme = currentTheme();
    const int padding = theme.length(3);
    layout()->setContentsMargins(padding, padding, padding, padding);
    layout()->setSpacing(theme.length(2));
}

} // namespace kestrin
