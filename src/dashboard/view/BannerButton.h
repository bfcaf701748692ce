#pragma once

#include "dashboard/DashboardContent.h"

#include <QAbstractButton>

namespace kestrin {

/// Says that a newer version exists; all of it is one button.
class BannerButton : public QAbstractButton {
public:
    explicit BannerButton(QWidget* parent = nullptr);
    void show(const UpdateBannerContent& content);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    UpdateBannerContent content_;
};

} // namespace kestrin
