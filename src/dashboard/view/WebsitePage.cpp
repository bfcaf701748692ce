#include "dashboard/view/WebsitePage.h"

#include "appearance/view/Card.h"
#include "appearance/view/SymbolLabel.h"
#include "appearance/view/ThemedLabel.h"
#include "appearance/view/WrappedLabel.h"
#include "dashboard/view/CheckRow.h"
#include "dashboard/view/DetailsTip.h"
#include "dashboard/view/IncidentRow.h"
#include "dashboard/view/NoteLine.h"
#include "dashboard/view/ResponseChart.h"
#include "dashboard/view/Section.h"
#include "dashboard/view/SummaryBox.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace kestrin {

namespace {

WrappedLabel* captionIn(QWidget* parent) {
    return new WrappedLabel(TextStyle::caption, ColorRole::secondary, parent);
}

QVBoxLayout* columnIn(Section* section) {
    auto* column = new QVBoxLayout;
    column->setSpacing(0);
    section->column()->addLayout(column);
    return column;
}

/// A label with room around it, which it has none of by itself.
QWidget* padded(WrappedLabel* label, Section* section) {
    auto* box = new QWidget(section);
    auto* layout = new QVBoxLayout(box);
    layout->addWidget(label);
    section->column()->addWidget(box);
    return box;
}

SymbolLabel* legendDot(StateColor state, QWidget* parent) {
    auto* dot = new SymbolLabel("circle.fill", 11, ColorRole::text, parent);
    dot->setColor(state);
    return dot;
}

} // namespace

WebsitePage::WebsitePage(QWidget* parent)
    : ThemedWidget(parent), layout_(new QVBoxLayout(this)), error_(new NoteLine(TextStyle::caption, this)),
      chartSection_(new Section(this)), chartBox_(new QWidget(chartSection_)), chart_(new ResponseChart(chartBox_)),
      legend_(new QWidget(chartBox_)),
      successful_(new WrappedLabel(TextStyle::caption2, ColorRole::secondary, legend_)),
      failed_(new WrappedLabel(TextStyle::caption2, ColorRole::secondary, legend_)),
      count_(new ThemedLabel(TextStyle::caption2, ColorRole::secondary, legend_)),
      noChart_(captionIn(chartSection_)), checks_(new Section(this)), checkRows_(columnIn(checks_)),
      noChecks_(captionIn(checks_)), incidents_(new Section(this)), incidentRows_(columnIn(incidents_)),
      noIncidents_(new NoteLine(TextStyle::caption, incidents_)) {
    auto* card = new Card(this);
    auto* cardLayout = new QVBoxLayout(card);
    cardLayout->setContentsMargins(0, 0, 0, 0);
    summary_ = new SummaryBox(card);
    cardLayout->addWidget(summary_);
    layout_->addWidget(card);
    layout_->addWidget(error_);
    buildChart();
    layout_->addWidget(chartSection_);
    noChecksBox_ = padded(noChecks_, checks_);
    layout_->addWidget(checks_);
    incidents_->column()->addWidget(noIncidents_);
    layout_->addWidget(incidents_);
    layout_->addStretch();
    followTheme();
}

void WebsitePage::buildChart() {
    auto* legend = new QHBoxLayout(legend_);
    legend->setContentsMargins(0, 0, 0, 0);
    legend->addWidget(legendDot(StateColor::green, legend_));
    legend->addWidget(successful_);
    legend->addWidget(legendDot(StateColor::red, legend_));
    legend->addWidget(failed_);
    legend->addStretch(1);
    legend->addWidget(count_);
    auto* box = new QVBoxLayout(chartBox_);
    box->addWidget(chart_);
    box->addWidget(legend_);
    chartSection_->column()->addWidget(chartBox_);
    noChartBox_ = padded(noChart_, chartSection_);
}

void WebsitePage::applyTheme(const Theme& theme) {
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(theme.length(12));
    const QMargins padding(theme.length(14), theme.length(10), theme.length(14), theme.length(10));
    chartBox_->layout()->setContentsMargins(padding);
    chartBox_->layout()->setSpacing(theme.length(8));
    legend_->layout()->setSpacing(theme.length(8));
    for (QWidget* line :
        {static_cast<QWidget*>(noChart_), static_cast<QWidget*>(noChecks_), static_cast<QWidget*>(noIncidents_)})
        line->setContentsMargins(padding);
}

void WebsitePage::show(const WebsitePageContent& content) {
    if (shown_ == content) return;
    summary_->show(content.summary);
    error_->setVisible(content.operationError.has_value());
    if (content.operationError) error_->show(*content.operationError);
    showChart(content.chart);
    checks_->setTitle(text(content.checksTitle));
    checkRows_.show(content.checks);
    noChecksBox_->setVisible(content.checks.empty());
    noChecks_->setText(text(content.noChecks));
    incidents_->setTitle(text(content.incidentsTitle));
    incidentRows_.show(content.incidents);
    noIncidents_->setVisible(content.incidents.empty());
    noIncidents_->show(content.noIncidents);
    shown_ = content;
}

void WebsitePage::showChart(const ResponseChartContent& content) {
    chartSection_->setTitle(text(content.title));
    chartBox_->setVisible(!content.bars.empty());
    noChartBox_->setVisible(content.bars.empty());
    noChart_->setText(text(content.noChecks));
    chart_->show(content);
    successful_->setText(text(content.successfulLabel));
    failed_->setText(text(content.failedLabel));
    count_->setText(text(content.countLabel));
}

} // namespace kestrin
