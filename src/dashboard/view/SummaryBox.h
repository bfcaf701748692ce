#pragma once

#include "dashboard/WebsitePageContent.h"
#include "dashboard/view/ThemedWidget.h"

#include <array>

class QHBoxLayout;
class QVBoxLayout;

namespace kestrin {

class Capsule;
class Divider;
class ElidedLabel;
class WrappedLabel;

/// The website with its badge, and below them its three figures.
class SummaryBox : public ThemedWidget {
public:
    explicit SummaryBox(QWidget* parent = nullptr);
    void show(const SiteSummaryContent& content);

protected:
    void applyTheme(const Theme& theme) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Metric {
        QWidget* column;
        ElidedLabel* title;
        WrappedLabel* value;
    };
    Metric addedMetric(QHBoxLayout* row);

    QVBoxLayout* layout_;
    QHBoxLayout* top_;
    QVBoxLayout* names_;
    QVBoxLayout* state_;
    ElidedLabel* name_;
    ElidedLabel* url_;
    Capsule* badge_;
    ElidedLabel* lastChecked_;
    Divider* divider_;
    QHBoxLayout* figures_;
    std::array<Metric, 3> metrics_;
};

} // namespace kestrin
