#include "platform/WindowDecoration.h"

#include <QByteArray>
#include <QList>

namespace kestrin {

void nameWindowDecoration() {
    constexpr auto variable = "QT_WAYLAND_DECORATION";
    if (qgetenv("XDG_CURRENT_DESKTOP").split(':').contains("GNOME") && !qEnvironmentVariableIsSet(variable))
        qputenv(variable, "adwaita");
}

} // namespace kestrin
