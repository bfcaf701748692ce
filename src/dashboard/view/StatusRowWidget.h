#pragma once

#include "dashboard/StatusRow.h"

#include <QFrame>

class QLabel;

namespace kestrin {

/// One website or service in the popover: its name and state, and below them what the last check saw and when.
class StatusRowWidget : public QFrame {
public:
    explicit StatusRowWidget(QWidget* parent = nullptr);
    void show(const StatusRow& row);

private:
    QLabel* name_;
    QLabel* state_;
    QLabel* lastResult_;
    QLabel* lastChecked_;
};

} // namespace kestrin
