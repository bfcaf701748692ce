#include "http/ProcessEnvironment.h"
#include "monitoring/application/AppDelegate.h"
#include "monitoring/application/ApplicationAppearance.h"
#include "platform/AppearanceFollower.h"
#include "platform/HiddenVariables.h"
#include "platform/InstanceLock.h"
#include "platform/SessionBus.h"
#include "platform/SingleInstance.h"
#include "platform/StateLocations.h"
#include "platform/StatusNotifierItem.h"
#include "platform/TerminationSignals.h"
#include "platform/WindowDecoration.h"

#include <QApplication>
#include <QMessageBox>
#include <QSessionManager>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

using namespace kestrin;

/// The launch cannot go on: says why, in a window that can be seen, and ends.
int refuseToStart(AppearanceFollower& appearance, const std::string& description) {
    applyAndFollow(appearance);
    QMessageBox alert(QMessageBox::Critical, "Kestrin", "Kestrin couldn’t prepare its local data");
    alert.setTextFormat(Qt::PlainText);
    alert.setInformativeText(
        "Your existing data was not removed or changed. " + QString::fromStdString(description));
    alert.addButton("Quit", QMessageBox::AcceptRole);
    alert.exec();
    return EXIT_FAILURE;
}

/// A history may have lines of megabytes. The C library learns from the first such piece of memory to keep the next
/// ones for later, which a program that rests for months does not want.
void giveLargeMemoryBack() {
#ifdef __GLIBC__
    constexpr int largeBytes = 1 << 20;
    mallopt(M_MMAP_THRESHOLD, largeBytes);
#endif
}

} // namespace

int main(int argc, char** argv) {
    giveLargeMemoryBack();
    dropTLSVariables();
    const std::expected<void, std::string> busAnswers = prepareSessionBus();
    const LaunchTokens tokens = LaunchTokens::takeFromEnvironment();
    const Launch launch = takeLaunchFromEnvironment();
    TerminationSignals::block();

    nameWindowDecoration();
    // Font and colours come from the desktop's settings instead; see AppearanceFollower.
    HiddenVariables themeVariables(platformThemeVariables);
    QApplication application(argc, argv);
    themeVariables.restore();
    QApplication::setApplicationName("Kestrin");
    QApplication::setApplicationVersion(KESTRIN_VERSION);
    QGuiApplication::setDesktopFileName("app.kestrin.Kestrin");
    QApplication::setQuitOnLastWindowClosed(false);
    // The desktop must not bring the program back at the next login by itself: that is the user's choice to make.
    QObject::connect(&application, &QGuiApplication::saveStateRequest, &application,
        [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); });
    const TerminationSignals termination([] { QApplication::quit(); });

    std::vector<std::string> notices;
    std::optional<QDBusConnection> bus;
    if (busAnswers) {
        std::expected<QDBusConnection, std::string> opened = openSessionBus();
        if (opened)
            bus.emplace(std::move(*opened));
        else
            notices.push_back(opened.error());
    } else {
        notices.push_back(busAnswers.error());
    }

    SingleInstance instance(bus);
    if (instance.acquire(tokens, launch) == SingleInstance::Result::Secondary) return EXIT_SUCCESS;
    // A start without a bus, or on another one, cannot see the first there. Given up before the name on the bus, so
    // that whoever gets the name finds the lock free.
    InstanceLock lock(InstanceLock::place());
    if (lock.acquire(tokens.forWindow()) == InstanceLock::Result::Taken) {
        std::fputs("Kestrin is already running.\n", stderr);
        return EXIT_SUCCESS;
    }

    AppearanceFollower appearance(bus);

    const std::expected<StateLocations, std::string> locations = StateLocations::find();
    if (!locations) return refuseToStart(appearance, locations.error());

    // Without a bus no icon and no second start leads back to a window that was closed, so closing it ends the
    // program.
    QApplication::setQuitOnLastWindowClosed(!bus);
    std::unique_ptr<AppDelegate> delegate;
    try {
        delegate = std::make_unique<AppDelegate>(locations->stateRoot, appearance,
            bus ? std::make_unique<StatusNotifierItem>(*bus) : nullptr, std::move(notices));
    } catch (const std::exception& error) {
        return refuseToStart(appearance, error.what());
    }
    lock.onActivate = instance.onActivate = [&delegate](const std::string& token) { delegate->activate(token); };
    const int status = QApplication::exec();
    lock.onActivate = instance.onActivate = nullptr;
    if (!delegate->shutDown()) {
        // What still runs, as a lookup that cannot be stopped, must not meet destroyed objects.
        ::_exit(status);
    }
    return status;
}
