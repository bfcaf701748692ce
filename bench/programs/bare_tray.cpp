// The least that a Qt program in the tray can be: a themed icon with a menu of four entries. What Kestrin needs
// more than this at rest is Kestrin's.
#include <QApplication>
#include <QIcon>
#include <QMenu>
#include <QSystemTrayIcon>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QMenu menu;
    for (const char* label : {"Open dashboard", "Start", "Settings…", "Quit"})
        menu.addAction(label);
    QSystemTrayIcon icon(QIcon::fromTheme("network-transmit-receive-symbolic"));
    icon.setContextMenu(&menu);
    icon.show();
    return QApplication::exec();
}
