#include "dashboard/view/PopoverView.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLayoutItem>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace kestrin {

namespace {

constexpr int widthInEm = 26;
constexpr int leastHeightInEm = 14;
constexpr int mostHeightInEm = 34;

QLabel* wrappedLabel(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QVBoxLayout* addedColumn(QVBoxLayout* layout) {
    auto* column = new QVBoxLayout;
    layout->addLayout(column);
    return column;
}

QLabel* addedHeading(QVBoxLayout* layout, const char* text) {
    QLabel* label = wrappedLabel(layout->parentWidget());
    label->setText(text);
    layout->addWidget(label);
    return label;
}

void showButton(QPushButton* button, const PopoverButton& content) {
    const QString label = QString::fromStdString(content.label);
    button->setText(label);
    button->setAccessibleName(label);
    button->setEnabled(content.enabled);
}

} // namespace

PopoverView::PopoverView(Actions actions, QWidget* parent)
    : QWidget(parent), title_(wrappedLabel(this)), subtitle_(wrappedLabel(this)), notices_(new QVBoxLayout),
      panel_(new QWidget(this)), panelTitle_(wrappedLabel(panel_)), panelDescription_(wrappedLabel(panel_)),
      list_(new QScrollArea(this)), rows_(new QWidget), rowLayout_(new QVBoxLayout(rows_)),
      websites_(addedColumn(rowLayout_)), servicesTitle_(addedHeading(rowLayout_, "Services")),
      services_(addedColumn(rowLayout_)), startStop_(new QPushButton(this)), checkNow_(new QPushButton(this)),
      quit_(new QPushButton(this)) {
    setHeadingFonts();
    panelTitle_->setAlignment(Qt::AlignCenter);
    panelDescription_->setAlignment(Qt::AlignCenter);

    auto* panelLayout = new QVBoxLayout(panel_);
    panelLayout->addStretch();
    panelLayout->addWidget(panelTitle_);
    panelLayout->addWidget(panelDescription_);
    panelLayout->addStretch();

    rowLayout_->setContentsMargins(0, 0, 8, 0);
    rowLayout_->addStretch();
    list_->setWidget(rows_);
    list_->setWidgetResizable(true);
    list_->setFrameShape(QFrame::NoFrame);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // The layout asks for no height here: sizeHint() adds the rows, of which a scroll area tells late.
    list_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    list_->setAccessibleName("Websites");

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(startStop_);
    buttons->addWidget(checkNow_);
    buttons->addStretch();
    buttons->addWidget(quit_);

    auto* column = new QVBoxLayout(this);
    column->addWidget(title_);
    column->addWidget(subtitle_);
    column->addLayout(notices_);
    column->addWidget(panel_, 1);
    column->addWidget(list_, 1);
    column->addSpacing(fontMetrics().height() / 2);
    column->addLayout(buttons);

    for (auto [button, action] : {std::pair(startStop_, actions.startOrStop),
             std::pair(checkNow_, actions.checkNow), std::pair(quit_, actions.quit)})
        connect(button, &QPushButton::clicked, this, [run = action] { run(); });
}

// A font whose size was set no longer follows that of the application.
void PopoverView::setHeadingFonts() {
    QFont heading = font();
    heading.setBold(true);
    panelTitle_->setFont(heading);
    heading.setPointSizeF(font().pointSizeF() * 1.25);
    title_->setFont(heading);
    heading.setPointSizeF(font().pointSizeF() * 1.1);
    servicesTitle_->setFont(heading);
    servicesTitle_->setContentsMargins(0, servicesTitle_->fontMetrics().height() / 2, 0, 0);
}

void PopoverView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) setHeadingFonts();
}

// As high as the list is long, between two bounds; beyond them the list scrolls.
QSize PopoverView::sizeHint() const {
    const int em = fontMetrics().height();
    const int width = std::max(widthInEm * em, minimumSizeHint().width());
    int height = layout()->totalHeightForWidth(width);
    if (!list_->isHidden()) {
        const QMargins around = layout()->contentsMargins();
        const int margins = around.left() + around.right() + list_->verticalScrollBar()->sizeHint().width();
        height += rowLayout_->totalHeightForWidth(width - margins);
    }
    return {width, std::clamp(height, leastHeightInEm * em, mostHeightInEm * em)};
}

void PopoverView::show(const PopoverContent& content) {
    if (shown_ == content) return;
    title_->setText(QString::fromStdString(content.title));
    subtitle_->setText(QString::fromStdString(content.subtitle));
    if (!shown_ || shown_->notices != content.notices) showNotices(content.notices);
    showPanel(content.panel);
    websites_.show(content.websites);
    showServices(content.services);
    showButton(startStop_, content.startStop);
    showCheckNow(content.checkNow);
    showButton(quit_, content.quit);
    shown_ = content;
    updateGeometry();
}

// A button that is disabled loses the focus to the next one, Quit, and the next press of Space would end the
// program.
void PopoverView::showCheckNow(const PopoverButton& content) {
    if (!content.enabled && window()->focusWidget() == checkNow_) {
        list_->setFocus();
        checkNowAwaitsFocus_ = true;
    }
    showButton(checkNow_, content);
    if (!content.enabled || !std::exchange(checkNowAwaitsFocus_, false)) return;
    if (window()->focusWidget() == list_) checkNow_->setFocus();
}

void PopoverView::showPanel(const std::optional<PopoverPanel>& panel) {
    panel_->setVisible(panel.has_value());
    list_->setVisible(!panel);
    if (!panel) return;
    panelTitle_->setText(QString::fromStdString(panel->title));
    panelDescription_->setText(QString::fromStdString(panel->description));
    panel_->layout()->activate();
}

void PopoverView::showServices(const std::vector<StatusRow>& services) {
    servicesTitle_->setVisible(!services.empty());
    services_.show(services);
}

void PopoverView::showNotices(const std::vector<std::string>& notices) {
    while (QLayoutItem* item = notices_->takeAt(0)) {
        item->widget()->deleteLater();
        delete item;
    }
    for (const std::string& notice : notices) {
        QLabel* label = wrappedLabel(this);
        label->setText(QString::fromStdString(notice));
        notices_->addWidget(label);
        label->setVisible(true);
    }
}

} // namespace kestrin
