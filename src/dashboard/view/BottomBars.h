#pragma once

#include "dashboard/DashboardContent.h"
#include "dashboard/view/ThemedWidget.h"

#include <functional>

class QHBoxLayout;
class QPushButton;

namespace kestrin {

class Spinner;
class SymbolLabel;
class ThemedLabel;
class WrappedLabel;

/// The two bars below every page: what the monitor does, with Start or Stop; and Check now, Settings and Quit.
class BottomBars : public ThemedWidget {
public:
    struct Actions {
        std::function<void()> startOrStop;
        std::function<void()> checkNow;
        std::function<void()> openSettings;
        std::function<void()> quit;
    };

    /// `refuge` takes the keyboard's focus while Check now, which had it, is disabled.
    BottomBars(Actions actions, QWidget* refuge, QWidget* parent = nullptr);
    /// `mayAccent` unless another button of the view is the accented one.
    void show(const DashboardContent& content, bool mayAccent);

    [[nodiscard]] QPushButton* startStop() const { return startStop_; }
    [[nodiscard]] QPushButton* checkNow() const { return checkNow_; }
    [[nodiscard]] QPushButton* settings() const { return settings_; }
    [[nodiscard]] QPushButton* quit() const { return quit_; }

protected:
    void applyTheme(const Theme& theme) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void buildLayouts();
    void showCheckNow(const Command& command);

    QWidget* statusBar_;
    QHBoxLayout* status_;
    Spinner* spinner_;
    SymbolLabel* symbol_;
    WrappedLabel* text_;
    WrappedLabel* secondLine_;
    QPushButton* startStop_;
    QWidget* bottomBar_;
    QHBoxLayout* bottom_;
    QPushButton* checkNow_;
    ThemedLabel* interval_;
    QPushButton* settings_;
    QPushButton* quit_;
    QWidget* refuge_;
    bool checkNowAwaitsFocus_ = false;
};

} // namespace kestrin
