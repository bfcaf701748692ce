#include "dashboard/view/StatusRowWidget.h"

#include <QGridLayout>
#include <QLabel>
#include <QStringList>

namespace kestrin {

namespace {

// Names and addresses are the user's text: never markup, and a long one wraps rather than widens the window.
QLabel* plainLabel(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

StatusRowWidget::StatusRowWidget(QWidget* parent)
    : QFrame(parent), name_(plainLabel(this)), state_(new QLabel(this)), lastResult_(plainLabel(this)),
      lastChecked_(new QLabel(this)) {
    QFont bold = font();
    bold.setBold(true);
    name_->setFont(bold);
    state_->setFont(bold);
    state_->setTextFormat(Qt::PlainText);
    lastChecked_->setTextFormat(Qt::PlainText);
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 4, 0, 4);
    layout->setVerticalSpacing(1);
    layout->addWidget(name_, 0, 0);
    layout->addWidget(state_, 0, 1, Qt::AlignRight | Qt::AlignTop);
    layout->addWidget(lastResult_, 1, 0, Qt::AlignTop);
    layout->addWidget(lastChecked_, 1, 1, Qt::AlignRight | Qt::AlignTop);
    layout->setColumnStretch(0, 1);
    setFocusPolicy(Qt::StrongFocus);
}

void StatusRowWidget::show(const StatusRow& row) {
    const QString name = QString::fromStdString(row.name);
    const QString state = QString::fromStdString(row.stateText);
    const QString lastResult = QString::fromStdString(row.lastResult);
    const QString lastChecked = QString::fromStdString(row.lastChecked);
    name_->setText(name);
    state_->setText(state);
    lastResult_->setText(lastResult);
    lastChecked_->setText(lastChecked);
    setAccessibleName(name);
    setAccessibleDescription(QStringList{state, lastResult, lastChecked}.join(", "));
    // A popover that opens with these texts asks for its height in this same turn.
    layout()->activate();
}

} // namespace kestrin
