#pragma once

#include "dashboard/ServicesPageContent.h"
#include "dashboard/view/ThemedWidget.h"

class QHBoxLayout;

namespace kestrin {

class SymbolLabel;
class ThemedLabel;
class WrappedLabel;

/// The overall state of all services, with its symbol on a disc.
class ServicesSummary : public ThemedWidget {
public:
    explicit ServicesSummary(QWidget* parent = nullptr);
    void show(const ServicesSummaryContent& content);

protected:
    void applyTheme(const Theme& theme) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QHBoxLayout* layout_;
    SymbolLabel* symbol_;
    WrappedLabel* title_;
    WrappedLabel* subtitle_;
    ThemedLabel* state_;
    StateColor color_ = StateColor::secondary;
};

} // namespace kestrin
