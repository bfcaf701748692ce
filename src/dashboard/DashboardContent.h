#pragma once

#include "content/Command.h"
#include "content/StateColor.h"
#include "dashboard/NoteContent.h"
#include "dashboard/ServicesPageContent.h"
#include "dashboard/WebsitePageContent.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kestrin {

/// A full-width button above the header. Pressing it opens the download page.
struct UpdateBannerContent {
    std::string symbol;
    std::string title;
    std::string subtitle;
    std::string trailingSymbol;
    std::string accessibleLabel;
    std::string accessibleHint;

    bool operator==(const UpdateBannerContent&) const = default;
};

struct SitePickerEntry {
    std::string id;
    std::string name;
    std::string state; ///< the words of the website's badge
    StateColor color = StateColor::secondary;

    bool operator==(const SitePickerEntry&) const = default;
};

struct SitePickerContent {
    std::string accessibleLabel;
    std::vector<SitePickerEntry> entries;
    std::string selectedID;

    bool operator==(const SitePickerContent&) const = default;
};

struct HeaderContent {
    std::string title;
    std::string subtitle;
    std::optional<SitePickerContent> picker;

    bool operator==(const HeaderContent&) const = default;
};

/// The switch between the two pages of the dashboard.
struct PageSwitchContent {
    std::string accessibleLabel;
    std::string sitesLabel;
    std::string servicesLabel;
    bool showsServices = false;

    bool operator==(const PageSwitchContent&) const = default;
};

struct LoadingContent {
    std::string text;

    bool operator==(const LoadingContent&) const = default;
};

/// A message that takes the place of a page.
struct PanelContent {
    std::string symbol;
    StateColor color = StateColor::secondary;
    std::string title;
    std::string description;
    std::optional<std::string> settingsButton; ///< its label; it runs the command `openSettings`

    bool operator==(const PanelContent&) const = default;
};

struct StatusBarContent {
    bool isBusy = false; ///< a spinner takes the place of the symbol
    std::string symbol;
    StateColor color = StateColor::secondary;
    std::string text;
    std::string secondLine;

    bool operator==(const StatusBarContent&) const = default;
};

/// Everything the dashboard says, as a plain value: a view draws it and adds nothing of its own. Every text is
/// ready to be shown, and short enough to be laid out.
struct DashboardContent {
    std::optional<UpdateBannerContent> banner;
    std::vector<NoteContent> notices; ///< what the start of the program had to say, below the header
    HeaderContent header;
    std::optional<PageSwitchContent> pageSwitch;
    std::variant<LoadingContent, PanelContent, WebsitePageContent, ServicesPageContent> body;
    StatusBarContent statusBar;
    bool isMonitoring = false;
    std::string checkNowSymbol;
    std::string intervalText; ///< in the middle of the bottom bar
    std::string settingsSymbol;
    std::vector<Command> commands; ///< one of each `CommandID`

    bool operator==(const DashboardContent&) const = default;
};

} // namespace kestrin
