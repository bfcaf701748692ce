#pragma once

#include "dashboard/ServicesPageContent.h"
#include "dashboard/view/RowList.h"
#include "dashboard/view/ThemedWidget.h"

#include <optional>

class QVBoxLayout;

namespace kestrin {

class NoteLine;
class Section;
class ServiceRow;
class ServicesSummary;

/// The page of the status services.
class ServicesPage : public ThemedWidget {
public:
    explicit ServicesPage(QWidget* parent = nullptr);
    void show(const ServicesPageContent& content);

protected:
    void applyTheme(const Theme& theme) override;

private:
    QVBoxLayout* layout_;
    NoteLine* issue_;
    ServicesSummary* summary_;
    Section* group_;
    RowList<ServiceRow, ServiceRowContent> services_;
    NoteLine* note_;
    std::optional<ServicesPageContent> shown_;
};

} // namespace kestrin
