#include "platform/WindowDecoration.h"

#include <QByteArray>
#include <QLibraryInfo>
#include <QList>
#include <QVersionNumber>

namespace kestrin {

void nameWindowDecoration() {
    constexpr auto variable = "QT_WAYLAND_DECORATION";
    // Earlier releases do not have that kind and would say so on every start.
    if (QLibraryInfo::version() < QVersionNumber(6, 8)) return;
    if (qgetenv("XDG_CURRENT_DESKTOP").split(':').contains("GNOME") && !qEnvironmentVariableIsSet(variable))
        qputenv(variable, "adwaita");
}

} // namespace kestrin
