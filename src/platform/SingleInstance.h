#pragma once

#include <QDBusConnection>
#include <QObject>
#include <functional>
#include <optional>
#include <string>

namespace kestrin {

/// What the desktop hands to a program that it starts, so that its window may come forward.
struct LaunchTokens {
    std::string startupId;       ///< X11
    std::string activationToken; ///< Wayland

    /// Reads and removes the variables, which a child process must not inherit. Before the application object is
    /// made, since Qt removes them too.
    [[nodiscard]] static LaunchTokens takeFromEnvironment();

    /// The one that lets a window come forward, or an empty text.
    [[nodiscard]] const std::string& forWindow() const {
        return activationToken.empty() ? startupId : activationToken;
    }
};

enum class Launch {
    Ordinary,
    ByActivation, ///< the bus started the program, and the call it did so for is still to arrive
};

/// Reads and removes what the bus leaves in the environment of a program that it starts.
[[nodiscard]] Launch takeLaunchFromEnvironment();

class ApplicationAdaptor;

/// One Kestrin per session: owns the bus name "app.kestrin.Kestrin" and serves org.freedesktop.Application, by
/// which a second start reaches the first. Main thread. Waits for the bus for 2 s at most per step.
class SingleInstance final : public QObject {
public:
    enum class Result {
        Primary,
        Secondary, ///< another one runs and has been told; this one ends
        NoBus,     ///< nothing is known of others
    };

    explicit SingleInstance(std::optional<QDBusConnection> bus);
    ~SingleInstance() override;

    [[nodiscard]] Result acquire(const LaunchTokens& tokens, Launch launch = Launch::Ordinary);

    /// The program was started again. With the token that lets a window come forward, or an empty text. The call
    /// that an activation by the bus began with is the launch itself and is not told.
    std::function<void(const std::string& activationToken)> onActivate;
    /// A named action of the desktop file. False when there is none of that name.
    std::function<bool(const std::string& action, const std::string& activationToken)> onAction;

private:
    std::optional<QDBusConnection> bus_;
    ApplicationAdaptor* adaptor_ = nullptr;
    bool owner_ = false;
};

} // namespace kestrin
