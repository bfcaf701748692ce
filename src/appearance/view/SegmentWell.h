#pragma once

#include <QWidget>

class QAbstractButton;
class QButtonGroup;

namespace kestrin {

/// Segments side by side on a well, one of them selected; the arrow keys move between them.
class SegmentWell : public QWidget {
    Q_OBJECT

public:
    explicit SegmentWell(QWidget* parent = nullptr);

    /// A checkable button, owned by the well. The first one is checked.
    QAbstractButton* addSegment(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void followTheme();

    QButtonGroup* group_;
};

} // namespace kestrin
