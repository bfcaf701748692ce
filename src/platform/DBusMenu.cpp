#include "platform/DBusMenu.h"

#include <QDBusError>
#include <QGuiApplication>
#include <algorithm>
#include <utility>

namespace kestrin {

namespace {

constexpr int rootId = 0;

QVariantMap entryProperties(const TrayMenuEntry& entry) {
    if (entry.separator) return {{QStringLiteral("type"), QStringLiteral("separator")}};
    // A single underscore would mark the next letter as a shortcut.
    const QString label = QString::fromStdString(entry.label).replace(QLatin1Char('_'), QLatin1String("__"));
    return {{QStringLiteral("label"), label}, {QStringLiteral("enabled"), entry.enabled}};
}

QVariantMap chosen(const QVariantMap& all, const QStringList& names) {
    if (names.isEmpty()) return all;
    QVariantMap result;
    for (const QString& name : names)
        if (const auto found = all.find(name); found != all.end()) result.insert(name, *found);
    return result;
}

} // namespace

DBusMenu::DBusMenu(QDBusConnection bus, QObject* parent) : QDBusAbstractAdaptor(parent), bus_(std::move(bus)) {
    registerDBusMenuTypes();
}

QString DBusMenu::textDirection() const {
    return QGuiApplication::layoutDirection() == Qt::RightToLeft ? QStringLiteral("rtl") : QStringLiteral("ltr");
}

QString DBusMenu::status() const {
    return QStringLiteral("normal");
}

int DBusMenu::numberOf(const TrayMenuEntry& entry, int& separators) {
    // Ids are the program's own words; a line break keeps the separators' names out of their way.
    const std::string key = entry.separator ? "\n" + std::to_string(separators++) : entry.id;
    return numbers_.try_emplace(key, static_cast<int>(numbers_.size()) + 1).first->second;
}

const DBusMenu::Numbered* DBusMenu::find(int id) const {
    const auto found = std::ranges::find(entries_, id, &Numbered::id);
    return found == entries_.end() ? nullptr : &*found;
}

QVariantMap DBusMenu::properties(int id, const QStringList& names) const {
    if (const Numbered* numbered = find(id)) return chosen(entryProperties(numbered->entry), names);
    if (id == rootId) return chosen({{QStringLiteral("children-display"), QStringLiteral("submenu")}}, names);
    return {};
}

void DBusMenu::setEntries(std::vector<TrayMenuEntry> entries) {
    std::vector<Numbered> next;
    int separators = 0;
    for (TrayMenuEntry& entry : entries) {
        const int id = numberOf(entry, separators);
        next.push_back({id, std::move(entry)});
    }
    const bool sameLines = std::ranges::equal(entries_, next, {}, &Numbered::id, &Numbered::id);
    DBusMenuItemList changed;
    for (const Numbered& numbered : next) {
        const Numbered* before = find(numbered.id);
        if (before && before->entry != numbered.entry)
            changed.append({numbered.id, entryProperties(numbered.entry)});
    }
    if (sameLines && changed.isEmpty()) return;
    entries_ = std::move(next);
    ++revision_;
    if (!changed.isEmpty()) Q_EMIT ItemsPropertiesUpdated(changed, {});
    if (!sameLines) Q_EMIT LayoutUpdated(revision_, rootId);
}

void DBusMenu::refuse(const QDBusMessage& message, int id) {
    message.setDelayedReply(true);
    bus_.send(message.createErrorReply(QDBusError::InvalidArgs, QStringLiteral("no menu entry %1").arg(id)));
}

uint DBusMenu::GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
    const QDBusMessage& message, DBusMenuLayout& layout) {
    if (!knows(parentId)) {
        refuse(message, parentId);
        return 0;
    }
    layout.id = parentId;
    layout.properties = properties(parentId, propertyNames);
    // The menu is flat: a depth of -1 (everything) and any depth from 1 up mean the same.
    if (parentId == rootId && recursionDepth != 0)
        for (const Numbered& numbered : entries_)
            layout.children.append({numbered.id, chosen(entryProperties(numbered.entry), propertyNames), {}});
    return revision_;
}

QList<DBusMenuItem> DBusMenu::GetGroupProperties(const QList<int>& ids, const QStringList& propertyNames) {
    DBusMenuItemList result;
    if (ids.isEmpty())
        for (const Numbered& numbered : entries_)
            result.append({numbered.id, chosen(entryProperties(numbered.entry), propertyNames)});
    for (const int id : ids)
        if (knows(id)) result.append({id, properties(id, propertyNames)});
    return result;
}

QDBusVariant DBusMenu::GetProperty(int id, const QString& name, const QDBusMessage& message) {
    const QVariantMap all = properties(id);
    if (!all.contains(name)) {
        refuse(message, id);
        return QDBusVariant(QString());
    }
    return QDBusVariant(all.value(name));
}

void DBusMenu::Event(int id, const QString& eventId, const QDBusVariant&, uint) {
    if (eventId != QLatin1String("clicked")) return;
    const Numbered* numbered = find(id);
    if (!numbered || numbered->entry.separator || !numbered->entry.enabled) return;
    // The panel waits for the answer: a callback that opens a dialog or quits must not hold it up.
    QMetaObject::invokeMethod(
        this,
        [this, entry = numbered->entry.id] {
            if (const auto callback = onClicked) callback(entry);
        },
        Qt::QueuedConnection);
}

QList<int> DBusMenu::EventGroup(const QList<DBusMenuEvent>& events) {
    QList<int> unknown;
    for (const DBusMenuEvent& event : events) {
        if (knows(event.id))
            Event(event.id, event.eventId, event.data, event.timestamp);
        else
            unknown.append(event.id);
    }
    return unknown;
}

bool DBusMenu::AboutToShow(int) {
    return false;
}

QList<int> DBusMenu::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) {
    std::ranges::copy_if(ids, std::back_inserter(idErrors), [this](int id) { return !knows(id); });
    return {};
}

} // namespace kestrin
