#pragma once

#include "dashboard/WebsitePageContent.h"
#include "dashboard/view/RowList.h"
#include "dashboard/view/ThemedWidget.h"

#include <optional>

class QVBoxLayout;

namespace kestrin {

class CheckRow;
class IncidentRow;
class NoteLine;
class ResponseChart;
class Section;
class SummaryBox;
class ThemedLabel;
class WrappedLabel;

/// The page of the selected website.
class WebsitePage : public ThemedWidget {
public:
    explicit WebsitePage(QWidget* parent = nullptr);
    void show(const WebsitePageContent& content);

protected:
    void applyTheme(const Theme& theme) override;

private:
    void showChart(const ResponseChartContent& content);
    void buildChart();

    QVBoxLayout* layout_;
    SummaryBox* summary_;
    NoteLine* error_;
    Section* chartSection_;
    QWidget* chartBox_;
    ResponseChart* chart_;
    QWidget* legend_;
    WrappedLabel* successful_;
    WrappedLabel* failed_;
    ThemedLabel* count_;
    WrappedLabel* noChart_;
    QWidget* noChartBox_ = nullptr;
    Section* checks_;
    RowList<CheckRow, CheckRowContent> checkRows_;
    WrappedLabel* noChecks_;
    QWidget* noChecksBox_ = nullptr;
    Section* incidents_;
    RowList<IncidentRow, IncidentRowContent> incidentRows_;
    NoteLine* noIncidents_;
    std::optional<WebsitePageContent> shown_;
};

} // namespace kestrin
