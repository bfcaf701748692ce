#pragma once

#include <QBasicTimer>
#include <QWidget>

namespace kestrin {

/// Says that something is going on: an arc that moves on by a twelfth of the ring, twelve times a second. With
/// reduced motion it does not move; while it is hidden, no timer runs. It is decoration: a text says the same.
class Spinner : public QWidget {
    Q_OBJECT

public:
    /// The size is for scale 1.
    explicit Spinner(double size = 26, QWidget* parent = nullptr);

    [[nodiscard]] bool isTurning() const { return timer_.isActive(); }
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void turnIfVisible();

    double size_;
    int step_ = 0; ///< 0 to 11
    QBasicTimer timer_;
};

} // namespace kestrin
