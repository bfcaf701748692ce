#include "platform/FakeTrayWatcher.h"

namespace kestrin::test {

namespace {
const QString name = "org.kde.StatusNotifierWatcher";
const QString path = "/StatusNotifierWatcher";
} // namespace

void FakeTrayWatcher::start(bool served) {
    if (served) serve();
    bus_.registerService(name);
}

void FakeTrayWatcher::serve() {
    bus_.registerObject(path, this, QDBusConnection::ExportAllContents);
}

void FakeTrayWatcher::stop() {
    bus_.unregisterService(name);
    bus_.unregisterObject(path);
}

void FakeTrayWatcher::setHost(bool present) {
    host_ = present;
    if (present)
        Q_EMIT StatusNotifierHostRegistered();
    else
        Q_EMIT StatusNotifierHostUnregistered();
}

} // namespace kestrin::test
