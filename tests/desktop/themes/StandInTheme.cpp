#include <QObject>
#include <cstdio>

namespace {

/// Says on the standard error that Qt has loaded a platform theme. It is none, so Qt then goes on without.
class StandInTheme : public QObject {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QPA.QPlatformThemeFactoryInterface.5.1" FILE "stand_in_theme.json")

public:
    StandInTheme() { std::fputs("A platform theme has been loaded.\n", stderr); }
};

} // namespace

#include "StandInTheme.moc"
