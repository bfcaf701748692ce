#include "dashboard/view/DashboardView.h"

#include "dashboard/view/BannerButton.h"
#include "dashboard/view/BottomBars.h"
#include "dashboard/view/Commands.h"
#include "dashboard/view/DetailsTip.h"
#include "dashboard/view/HeaderView.h"
#include "dashboard/view/NoteLine.h"
#include "dashboard/view/PageScroll.h"
#include "dashboard/view/PanelView.h"
#include "dashboard/view/ServicesPage.h"
#include "dashboard/view/WebsitePage.h"

#include <QEvent>
#include <QPainter>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>
#include <algorithm>

namespace kestrin {

namespace {

constexpr double designWidth = 400;
constexpr double leastHeight = 440;
constexpr double mostHeight = 800;
constexpr double leastBodyHeight = 160;

} // namespace

DashboardView::DashboardView(Actions actions, QWidget* parent)
    : ThemedWidget(parent), layout_(new QVBoxLayout(this)), top_(new QWidget(this)),
      topLayout_(new QVBoxLayout(top_)), banner_(new BannerButton(top_)),
      header_(new HeaderView({actions.selectSite, actions.showPage}, top_)), notices_(new QVBoxLayout),
      scroll_(new PageScroll(this)), panel_(new PanelView(actions.openSettings)), website_(new WebsitePage),
      services_(new ServicesPage) {
    topLayout_->setContentsMargins(0, 0, 0, 0);
    topLayout_->setSpacing(0);
    topLayout_->addWidget(banner_);
    topLayout_->addWidget(header_);
    topLayout_->addLayout(notices_);
    for (QWidget* page :
        {static_cast<QWidget*>(panel_), static_cast<QWidget*>(website_), static_cast<QWidget*>(services_)})
        scroll_->addPage(page);
    // Create the bars last: Tab follows the order in which controls are added to the window.
    bars_ =
        new BottomBars({actions.startOrStop, actions.checkNow, actions.openSettings, actions.quit}, scroll_, this);
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(0);
    layout_->addWidget(top_);
    layout_->addWidget(scroll_, 1);
    layout_->addWidget(bars_);
    scroll_->onScrolled = [this] { header_->setSeparated(!headerScrolls_ && scroll_->isScrolled()); };
    connect(banner_, &BannerButton::clicked, this, [run = actions.openDownloadPage] {
        if (run) run();
    });
    addShortcuts(actions);
    followTheme();
}

void DashboardView::addShortcuts(const Actions& actions) {
    const auto add = [this](const QKeySequence& keys, CommandID id, const std::function<void()>& action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, [this, id, action] {
            if (action && shown_ && command(*shown_, id).enabled) action();
        });
    };
    add(QKeySequence(Qt::Key_F5), CommandID::checkNow, actions.checkNow);
    add(QKeySequence(Qt::CTRL | Qt::Key_Comma), CommandID::openSettings, actions.openSettings);
    add(QKeySequence(Qt::CTRL | Qt::Key_Q), CommandID::quit, actions.quit);
}

void DashboardView::applyTheme(const Theme& theme) {
    const int margin = theme.length(16);
    notices_->setContentsMargins(margin, 0, margin, 0);
    notices_->setSpacing(theme.length(6));
}

void DashboardView::show(const DashboardContent& content) {
    if (shown_ == content) return;
    const bool noticesChanged = !shown_ || shown_->notices != content.notices;
    shown_ = content;
    banner_->setVisible(content.banner.has_value());
    if (content.banner) banner_->show(*content.banner);
    header_->show(content.header, content.pageSwitch);
    if (noticesChanged) showNotices();
    showBody();
    const auto* panel = std::get_if<PanelContent>(&content.body);
    const bool panelIsAccented =
        panel && panel->settingsButton && command(content, CommandID::openSettings).enabled;
    bars_->show(content, !panelIsAccented);
    orderTabs();
    placeHeader();
    updateGeometry();
}

// New rows are added at the end of the Tab order, behind the bars. Move the bars to the end again.
void DashboardView::orderTabs() {
    QWidget* last = nullptr;
    for (QWidget* widget = nextInFocusChain(); widget != this; widget = widget->nextInFocusChain())
        if (widget->focusPolicy() != Qt::NoFocus && scroll_->isAncestorOf(widget)) last = widget;
    if (!last) return;
    for (QPushButton* button : {bars_->startStop(), bars_->checkNow(), bars_->settings(), bars_->quit()}) {
        setTabOrder(last, button);
        last = button;
    }
}

void DashboardView::showNotices() {
    while (QLayoutItem* item = notices_->takeAt(0)) {
        item->widget()->hide();
        item->widget()->deleteLater();
        delete item;
    }
    for (const NoteContent& notice : shown_->notices) {
        auto* line = new NoteLine(TextStyle::caption, top_);
        line->show(notice);
        notices_->addWidget(line);
        line->setVisible(true);
    }
}

void DashboardView::showBody() {
    if (const auto* website = std::get_if<WebsitePageContent>(&shown_->body)) {
        website_->show(*website);
        scroll_->showPage(website_);
    } else if (const auto* services = std::get_if<ServicesPageContent>(&shown_->body)) {
        services_->show(*services);
        scroll_->showPage(services_);
    } else {
        if (const auto* panel = std::get_if<PanelContent>(&shown_->body))
            panel_->show(*panel, command(*shown_, CommandID::openSettings));
        else
            panel_->show(std::get<LoadingContent>(shown_->body));
        scroll_->showPage(panel_);
    }
}

int DashboardView::headerHeight() const {
    top_->layout()->activate();
    const int width = std::max(this->width(), 1);
    return top_->layout()->hasHeightForWidth() ? top_->layout()->totalHeightForWidth(width)
                                               : top_->layout()->totalSizeHint().height();
}

// On a low screen, or with large fonts, a fixed header would leave the body no room.
void DashboardView::placeHeader() {
    const int body = height() - headerHeight() - bars_->sizeHint().height();
    const bool scrolls = body < currentTheme().length(leastBodyHeight);
    if (scrolls == headerScrolls_) return;
    headerScrolls_ = scrolls;
    if (scrolls)
        scroll_->takeHeader(top_);
    else
        layout_->insertWidget(0, top_);
    top_->show();
    header_->setSeparated(!scrolls && scroll_->isScrolled());
}

bool DashboardView::event(QEvent* event) {
    const bool handled = ThemedWidget::event(event);
    if (event->type() == QEvent::LayoutRequest) placeHeader();
    return handled;
}

void DashboardView::resizeEvent(QResizeEvent* event) {
    ThemedWidget::resizeEvent(event);
    placeHeader();
}

void DashboardView::paintEvent(QPaintEvent* /*event*/) {
    // Behind rounded corners nothing is filled; the window paints its own ground there.
    if (window()->testAttribute(Qt::WA_TranslucentBackground)) return;
    QPainter(this).fillRect(rect(), currentTheme().color(ColorRole::window));
}

QSize DashboardView::sizeHint() const {
    const Theme& theme = currentTheme();
    const int width = theme.length(designWidth);
    int height = scroll_->naturalHeight(width) + bars_->sizeHint().height();
    if (!headerScrolls_) height += headerHeight();
    return {width, std::clamp(height, theme.length(leastHeight), theme.length(mostHeight))};
}

QSize DashboardView::minimumSizeHint() const {
    const Theme& theme = currentTheme();
    return {theme.length(300), bars_->sizeHint().height() + theme.length(leastBodyHeight) / 2};
}

void DashboardView::focusFirstControl() {
    if (banner_->isVisibleTo(this)) return banner_->setFocus();
    if (QWidget* control = header_->firstControl()) return control->setFocus();
    for (QPushButton* button :
        {panel_->button(), bars_->startStop(), bars_->checkNow(), bars_->settings(), bars_->quit()}) {
        if (!button->isEnabled() || !button->isVisibleTo(this)) continue;
        // A press of Space right after the opening must do no harm.
        if (button == bars_->quit()) break;
        return button->setFocus();
    }
    scroll_->setFocus();
}

} // namespace kestrin
