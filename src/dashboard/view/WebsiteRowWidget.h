#pragma once

#include "dashboard/DashboardContent.h"

#include <QFrame>

class QLabel;

namespace kestrin {

/// One website in the popover: its name and state, and below them what the last check saw and when.
class WebsiteRowWidget : public QFrame {
public:
    explicit WebsiteRowWidget(QWidget* parent = nullptr);
    void show(const WebsiteRow& row);

private:
    QLabel* name_;
    QLabel* state_;
    QLabel* lastResult_;
    QLabel* lastChecked_;
};

} // namespace kestrin
