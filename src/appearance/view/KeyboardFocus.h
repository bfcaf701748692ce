#pragma once

#include "appearance/view/FocusRing.h"

#include <QObject>
#include <QPointer>

namespace kestrin {

/// Shows the focus ring while the user works with the keyboard, and hides it with the next press of a mouse button.
/// Main thread.
class KeyboardFocus : public QObject {
    Q_OBJECT

public:
    explicit KeyboardFocus(QObject* parent);
    ~KeyboardFocus() override;

    /// Whether what was last used is the keyboard; what paints its own focus asks. False without such an object.
    [[nodiscard]] static bool inUse();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void use(bool keyboard);
    void follow(QWidget* focused);

    QPointer<FocusRing> ring_;
};

} // namespace kestrin
