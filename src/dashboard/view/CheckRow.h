#pragma once

#include "dashboard/WebsitePageContent.h"
#include "dashboard/view/CardRow.h"

class QGridLayout;

namespace kestrin {

class ElidedLabel;
class WrappedLabel;

/// One of the last checks: one item for screen readers, which says whether the website was up. The dot of a failed
/// check has a bar cut out, so that it does not differ by colour alone.
class CheckRow : public CardRow {
public:
    explicit CheckRow(QWidget* parent = nullptr);
    void show(const CheckRowContent& content);

protected:
    void applyTheme(const Theme& theme) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    CheckRowContent content_;
    QGridLayout* layout_;
    WrappedLabel* result_;
    ElidedLabel* time_;
    ElidedLabel* duration_;
};

} // namespace kestrin
