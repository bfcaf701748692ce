#pragma once

#include "dashboard/DashboardContent.h"
#include "dashboard/view/ThemedWidget.h"

#include <functional>

class QPushButton;
class QVBoxLayout;

namespace kestrin {

class Spinner;
class SymbolLabel;
class WrappedLabel;

/// A message in place of a page, or that the first load runs.
class PanelView : public ThemedWidget {
public:
    explicit PanelView(std::function<void()> openSettings, QWidget* parent = nullptr);
    void show(const PanelContent& content, const Command& openSettings);
    void show(const LoadingContent& content);
    [[nodiscard]] QPushButton* button() const { return button_; }

protected:
    void applyTheme(const Theme& theme) override;

private:
    QVBoxLayout* layout_;
    Spinner* spinner_;
    SymbolLabel* symbol_;
    WrappedLabel* title_;
    WrappedLabel* description_;
    QPushButton* button_;
};

} // namespace kestrin
