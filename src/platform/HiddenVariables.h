#pragma once

#include <span>
#include <string>
#include <vector>

namespace kestrin {

/// Hides environment variables from the whole process, until `restore` or its own end. To be made before there are
/// other threads. Restoring is safe beside threads that look up other variables: no text of the environment moves,
/// since only the first byte of each name is changed and put back. The variables must not be set meanwhile.
class HiddenVariables {
public:
    explicit HiddenVariables(std::span<const char* const> names);
    ~HiddenVariables() { restore(); }
    HiddenVariables(const HiddenVariables&) = delete;
    HiddenVariables& operator=(const HiddenVariables&) = delete;

    void restore();

private:
    struct Entry {
        char* text;
        char firstByte;
    };
    std::vector<Entry> hidden_;
};

/// What makes Qt load a plugin of the desktop's for its looks, which costs up to 100 MB and may register a second
/// application with screen readers: hidden while the application object is constructed.
inline constexpr const char* platformThemeVariables[] = {"XDG_CURRENT_DESKTOP", "DESKTOP_SESSION",
    "KDE_FULL_SESSION", "GNOME_DESKTOP_SESSION_ID", "QT_QPA_PLATFORMTHEME", "QT_STYLE_OVERRIDE"};

} // namespace kestrin
