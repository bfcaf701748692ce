#pragma once

#include "dashboard/ServicesPageContent.h"
#include "dashboard/view/CardRow.h"

#include <functional>

class QHBoxLayout;
class QPushButton;
class QVBoxLayout;

namespace kestrin {

class Capsule;
class ElidedLabel;
class StatusStrip;
class SymbolLabel;
class WrappedLabel;

/// A status service: its state, what it last published, and the strip of its last reports.
class ServiceRow : public CardRow {
public:
    explicit ServiceRow(QWidget* parent = nullptr);
    void show(const ServiceRowContent& content);

protected:
    void applyTheme(const Theme& theme) override;

private:
    QVBoxLayout* layout_;
    QHBoxLayout* top_;
    QHBoxLayout* bottom_;
    SymbolLabel* symbol_;
    ElidedLabel* name_;
    Capsule* state_;
    WrappedLabel* summary_;
    WrappedLabel* historyTitle_;
    StatusStrip* strip_;
    WrappedLabel* noHistory_;
    WrappedLabel* failure_;
    WrappedLabel* lastChecked_;
    QPushButton* link_;
    QString linkURL_;
};

} // namespace kestrin
