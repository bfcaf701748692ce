#include "dashboard/view/ServicesPage.h"

#include "appearance/view/Card.h"
#include "dashboard/view/DetailsTip.h"
#include "dashboard/view/NoteLine.h"
#include "dashboard/view/Section.h"
#include "dashboard/view/ServiceRow.h"
#include "dashboard/view/ServicesSummary.h"

#include <QVBoxLayout>

namespace kestrin {

ServicesPage::ServicesPage(QWidget* parent)
    : ThemedWidget(parent), layout_(new QVBoxLayout(this)), issue_(new NoteLine(TextStyle::caption, this)),
      group_(new Section(this)), services_(group_->column()), note_(new NoteLine(TextStyle::caption2, this)) {
    auto* card = new Card(this);
    auto* cardLayout = new QVBoxLayout(card);
    cardLayout->setContentsMargins(0, 0, 0, 0);
    summary_ = new ServicesSummary(card);
    cardLayout->addWidget(summary_);
    layout_->addWidget(issue_);
    layout_->addWidget(card);
    layout_->addWidget(group_);
    layout_->addWidget(note_);
    layout_->addStretch();
    followTheme();
}

void ServicesPage::applyTheme(const Theme& theme) {
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(theme.length(12));
}

void ServicesPage::show(const ServicesPageContent& content) {
    if (shown_ == content) return;
    issue_->setVisible(content.issue.has_value());
    if (content.issue) issue_->show(*content.issue);
    summary_->show(content.summary);
    group_->setTitle(text(content.groupTitle));
    services_.show(content.services);
    note_->show(content.note);
    shown_ = content;
}

} // namespace kestrin
