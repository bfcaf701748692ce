#pragma once

#include "dashboard/PopoverContent.h"
#include "dashboard/view/StatusRowList.h"

#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

class QLabel;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

namespace kestrin {

/// Draws a `PopoverContent` and passes on what the user did. Knows neither the model nor the window around it.
class PopoverView : public QWidget {
public:
    struct Actions {
        std::function<void()> startOrStop;
        std::function<void()> checkNow;
        std::function<void()> quit;
    };

    explicit PopoverView(Actions actions, QWidget* parent = nullptr);
    void show(const PopoverContent& content);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void changeEvent(QEvent* event) override;

private:
    void setHeadingFonts();
    void showCheckNow(const PopoverButton& content);
    void showPanel(const std::optional<PopoverPanel>& panel);
    void showNotices(const std::vector<std::string>& notices);
    void showServices(const std::vector<StatusRow>& services);

    std::optional<PopoverContent> shown_;
    QLabel* title_;
    QLabel* subtitle_;
    QVBoxLayout* notices_;
    QWidget* panel_;
    QLabel* panelTitle_;
    QLabel* panelDescription_;
    QScrollArea* list_;
    QWidget* rows_; ///< what the list scrolls
    QVBoxLayout* rowLayout_;
    StatusRowList websites_;
    QLabel* servicesTitle_;
    StatusRowList services_;
    QPushButton* startStop_;
    QPushButton* checkNow_;
    bool checkNowAwaitsFocus_ = false;
    QPushButton* quit_;
};

} // namespace kestrin
