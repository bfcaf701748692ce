#pragma once

#include "dashboard/DashboardContent.h"
#include "dashboard/view/ThemedWidget.h"

#include <functional>
#include <optional>
#include <string>

class QVBoxLayout;

namespace kestrin {

class BannerButton;
class BottomBars;
class HeaderView;
class NoteLine;
class PageScroll;
class PanelView;
class ServicesPage;
class WebsitePage;

/// Draws a `DashboardContent` and passes on what the user did. It knows neither the model nor the window around it.
class DashboardView : public ThemedWidget {
public:
    /// What is left empty does nothing.
    struct Actions {
        std::function<void()> startOrStop;
        std::function<void()> checkNow;
        std::function<void()> openSettings;
        std::function<void()> quit;
        std::function<void(const std::string& id)> selectSite;
        std::function<void(bool services)> showPage;
        std::function<void()> openDownloadPage;
    };

    explicit DashboardView(Actions actions, QWidget* parent = nullptr);
    void show(const DashboardContent& content);
    /// Gives the keyboard's focus to the first control.
    void focusFirstControl();

    /// As high as the content, between two bounds; beyond the upper one the body scrolls.
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void applyTheme(const Theme& theme) override;
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void addShortcuts(const Actions& actions);
    void showBody();
    void showNotices();
    void orderTabs();
    void placeHeader();
    [[nodiscard]] int headerHeight() const;

    std::optional<DashboardContent> shown_;
    QVBoxLayout* layout_;
    QWidget* top_; ///< banner, header and notices; fixed, or scrolling where there is little room
    QVBoxLayout* topLayout_;
    BannerButton* banner_;
    HeaderView* header_;
    QVBoxLayout* notices_;
    PageScroll* scroll_;
    PanelView* panel_;
    WebsitePage* website_;
    ServicesPage* services_;
    BottomBars* bars_ = nullptr;
    bool headerScrolls_ = false;
};

} // namespace kestrin
