#include "dashboard/view/SitePicker.h"

#include "appearance/view/ButtonKind.h"
#include "appearance/view/Theme.h"
#include "dashboard/view/DetailsTip.h"

#include <QEvent>
#include <QPainter>
#include <QStyleOptionComboBox>
#include <algorithm>
#include <utility>

namespace kestrin {

namespace {

constexpr double pickerWidth = 135;
constexpr int mostEntriesAtOnce = 12;

/// A dot; that of a website which is down has a bar cut out, as everywhere.
QIcon dot(StateColor state, qreal devicePixelRatio) {
    const Theme& theme = currentTheme();
    const int size = theme.length(10);
    QPixmap picture(QSize(size, size) * devicePixelRatio);
    picture.setDevicePixelRatio(devicePixelRatio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.stateMark(state));
    const double inset = state == StateColor::red ? 0 : theme.length(1);
    painter.drawEllipse(QRectF(0, 0, size, size).adjusted(inset, inset, -inset, -inset));
    if (state == StateColor::red)
        painter.fillRect(QRectF(size * 0.2, size * 0.41, size * 0.6, size * 0.18), theme.color(ColorRole::raised));
    painter.end();
    // The same picture for every mode: a selected or disabled dot has the same state.
    QIcon icon;
    for (const auto mode : {QIcon::Normal, QIcon::Selected, QIcon::Active, QIcon::Disabled})
        icon.addPixmap(picture, mode);
    return icon;
}

} // namespace

SitePicker::SitePicker(std::function<void(const std::string& id)> select, QWidget* parent) : QComboBox(parent) {
    setMaxVisibleItems(mostEntriesAtOnce);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QComboBox::activated, this, [this, select = std::move(select)](int index) {
        const auto chosen = static_cast<std::size_t>(index);
        if (select && chosen < content_.entries.size()) select(content_.entries[chosen].id);
    });
}

void SitePicker::show(const SitePickerContent& content) {
    if (content_ == content) return;
    content_ = content;
    // On Linux Qt gives the chosen entry as the name of such a control, whatever name it was given.
    setAccessibleName(text(content_.accessibleLabel));
    setAccessibleDescription(text(content_.accessibleLabel));
    fill();
}

// In place, so that an open list keeps its position.
void SitePicker::fill() {
    const int count = static_cast<int>(content_.entries.size());
    while (this->count() > count)
        removeItem(this->count() - 1);
    while (this->count() < count)
        addItem(QString());
    const int size = currentTheme().length(10);
    setIconSize({size, size});
    int selected = -1;
    for (int index = 0; index < count; ++index) {
        const SitePickerEntry& entry = content_.entries[static_cast<std::size_t>(index)];
        const QString name = text(entry.name);
        setItemText(index, name);
        setItemIcon(index, dot(entry.color, devicePixelRatioF()));
        setItemData(index, plainToolTip(name), Qt::ToolTipRole);
        setItemData(index, name + ", " + text(entry.state), Qt::AccessibleTextRole);
        if (entry.id == content_.selectedID) selected = index;
    }
    setCurrentIndex(selected);
    setToolTip(selected < 0 ? QString() : plainToolTip(itemText(selected)));
}

QSize SitePicker::sizeHint() const {
    return {currentTheme().length(pickerWidth), QComboBox::sizeHint().height()};
}

void SitePicker::changeEvent(QEvent* event) {
    QComboBox::changeEvent(event);
    const bool changesDots = event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange;
    if (changesDots && !content_.entries.empty()) fill();
}

// The badge below says the state of the website that is shown, and the name needs the room.
void SitePicker::initStyleOption(QStyleOptionComboBox* option) const {
    QComboBox::initStyleOption(option);
    option->currentIcon = QIcon();
}

} // namespace kestrin
