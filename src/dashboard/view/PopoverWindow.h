#pragma once

#include <QElapsedTimer>
#include <QFrame>
#include <QPoint>
#include <functional>
#include <optional>
#include <string>

namespace kestrin {

/// The window around the dashboard. Beside a tray icon it is a popover: placed at the click, gone when another
/// window becomes active. Without one it is an ordinary window that stays; closing hides it. Main thread only.
class PopoverWindow : public QFrame {
public:
    enum class Style { Popover, OrdinaryWindow };

    explicit PopoverWindow(QWidget* content);

    /// Before the next opening; an open window keeps its style.
    void setStyle(Style style) { style_ = style; }
    /// A click on the icon: closes the window when it is open and also when that very click took its focus away.
    void toggle(std::optional<QPoint> click, const std::string& activationToken);
    /// Shows the window, or brings it forward.
    void open(std::optional<QPoint> click, const std::string& activationToken);

    /// The user has come to the window: it is opened, brought forward or, where it stays open, active again.
    std::function<void()> onOpen;
    /// Called before the window is shown: the place to give a control the keyboard focus.
    std::function<void()> onShow;

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

    [[nodiscard]] Style windowStyle() const { return style_; }
    /// Gives the hidden window the flags and frame of its style.
    virtual void applyStyle();
    [[nodiscard]] virtual QSize sizeForContent() const;

private:
    [[nodiscard]] bool opensWhenFocusIsLost(std::optional<QPoint> click, const std::string& activationToken);
    void moveBeside(std::optional<QPoint> click);
    void growToContent();
    void dismiss();

    QWidget* content_; ///< owned as a child
    Style style_ = Style::OrdinaryWindow;
    QElapsedTimer sinceFocusWasLost_;
    std::optional<QPoint> click_; ///< of the last opening
    int heightForContent_ = 0;    ///< the most that this opening has needed so far
    bool isBeingDismissed_ = false;
};

} // namespace kestrin
