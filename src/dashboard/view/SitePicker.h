#pragma once

#include "dashboard/DashboardContent.h"

#include <QComboBox>
#include <functional>

namespace kestrin {

/// Chooses the website that is shown. Each entry has the dot of its website's badge and says its state to screen
/// readers.
class SitePicker : public QComboBox {
public:
    explicit SitePicker(std::function<void(const std::string& id)> select, QWidget* parent = nullptr);
    void show(const SitePickerContent& content);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void changeEvent(QEvent* event) override;
    void initStyleOption(QStyleOptionComboBox* option) const override;

private:
    void fill();

    SitePickerContent content_;
};

} // namespace kestrin
