#pragma once

#include "dashboard/WebsitePageContent.h"
#include "dashboard/view/CardRow.h"

class QGridLayout;

namespace kestrin {

class SymbolLabel;
class WrappedLabel;

/// A period in which checks failed.
class IncidentRow : public CardRow {
public:
    explicit IncidentRow(QWidget* parent = nullptr);
    void show(const IncidentRowContent& content);

protected:
    void applyTheme(const Theme& theme) override;

private:
    QGridLayout* layout_;
    SymbolLabel* symbol_;
    WrappedLabel* word_;
    WrappedLabel* period_;
};

} // namespace kestrin
