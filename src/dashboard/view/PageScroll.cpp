#include "dashboard/view/PageScroll.h"

#include <QApplication>
#include <QEvent>
#include <QScrollBar>
#include <QVBoxLayout>

namespace kestrin {

PageScroll::PageScroll(QWidget* parent)
    : QScrollArea(parent), content_(new QWidget), outer_(new QVBoxLayout(content_)), layout_(new QVBoxLayout) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    viewport()->setAutoFillBackground(false);
    outer_->setContentsMargins(0, 0, 0, 0);
    outer_->setSpacing(0);
    outer_->addLayout(layout_, 1);
    setWidget(content_);
    // The scroll area has switched it on.
    content_->setAutoFillBackground(false);
    // Tab and Shift+Tab may come to a row from outside, which the scroll area itself does not notice.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget* /*before*/, QWidget* now) {
        if (now && now != content_ && content_->isAncestorOf(now)) ensureWidgetVisible(now);
    });
    applyTheme();
}

void PageScroll::applyTheme() {
    const Theme& theme = currentTheme();
    const int margin = theme.length(16);
    layout_->setContentsMargins(margin, theme.length(2), margin, theme.length(16));
}

void PageScroll::addPage(QWidget* page) {
    page->hide();
    layout_->addWidget(page);
}

void PageScroll::showPage(QWidget* page) {
    bool isOther = false;
    for (int index = 0; index < layout_->count(); ++index) {
        QWidget* each = layout_->itemAt(index)->widget();
        isOther |= each == page && each->isHidden();
        each->setVisible(each == page);
    }
    if (isOther) verticalScrollBar()->setValue(0);
}

void PageScroll::takeHeader(QWidget* header) {
    outer_->insertWidget(0, header);
}

int PageScroll::naturalHeight(int width) const {
    // A layout remembers sizes of pages that have changed in this very turn.
    content_->layout()->activate();
    return content_->layout()->hasHeightForWidth() ? content_->layout()->totalHeightForWidth(width)
                                                   : content_->layout()->totalSizeHint().height();
}

bool PageScroll::isScrolled() const {
    return verticalScrollBar()->value() > 0;
}

void PageScroll::changeEvent(QEvent* event) {
    QScrollArea::changeEvent(event);
    if (event->type() == QEvent::StyleChange || event->type() == QEvent::FontChange ||
        event->type() == QEvent::LayoutDirectionChange)
        applyTheme();
}

void PageScroll::scrollContentsBy(int dx, int dy) {
    QScrollArea::scrollContentsBy(dx, dy);
    if (onScrolled) onScrolled();
}

} // namespace kestrin
