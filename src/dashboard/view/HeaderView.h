#pragma once

#include "dashboard/DashboardContent.h"
#include "dashboard/view/ThemedWidget.h"

#include <functional>
#include <optional>

class QAbstractButton;
class QHBoxLayout;
class QVBoxLayout;

namespace kestrin {

class SegmentWell;
class SitePicker;
class SymbolLabel;
class WrappedLabel;

/// The program's name and what it does, the choice of website, and the switch between the pages.
class HeaderView : public ThemedWidget {
public:
    struct Actions {
        std::function<void(const std::string& id)> selectSite;
        std::function<void(bool services)> showPage;
    };

    explicit HeaderView(Actions actions, QWidget* parent = nullptr);
    void show(const HeaderContent& header, const std::optional<PageSwitchContent>& pageSwitch);
    /// Whether a hairline below sets it apart from what scrolls.
    void setSeparated(bool separated);
    /// The control that comes first, or null.
    [[nodiscard]] QWidget* firstControl() const;

protected:
    void applyTheme(const Theme& theme) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* layout_;
    QHBoxLayout* top_;
    SymbolLabel* symbol_;
    WrappedLabel* title_;
    WrappedLabel* subtitle_;
    SitePicker* picker_;
    SegmentWell* pageSwitch_;
    QAbstractButton* sites_;
    QAbstractButton* services_;
    bool separated_ = false;
};

} // namespace kestrin
