#include "platform/StateLocations.h"

#include <QFile>
#include <QStandardPaths>

namespace kestrin {

namespace {

bool isAbsolute(const char* variable) {
    return qgetenv(variable).startsWith('/');
}

std::filesystem::path writable(QStandardPaths::StandardLocation location) {
    return QFile::encodeName(QStandardPaths::writableLocation(location)).toStdString();
}

} // namespace

std::expected<StateLocations, std::string> StateLocations::find() {
    // Qt takes "/" for the home directory when it knows none.
    if (!isAbsolute("HOME") && !(isAbsolute("XDG_DATA_HOME") && isAbsolute("XDG_CONFIG_HOME"))) {
        if (qEnvironmentVariableIsEmpty("HOME"))
            return std::unexpected("Kestrin can’t find your home directory: HOME is not set.");
        return std::unexpected("Kestrin can’t find your home directory: HOME is not an absolute path.");
    }
    const auto data = writable(QStandardPaths::GenericDataLocation);
    return StateLocations{
        data / "Kestrin", data / "Harbor Watch", writable(QStandardPaths::GenericConfigLocation) / "kestrin"};
}

} // namespace kestrin
