#include "platform/PlasmaFont.h"

#include <QFile>
#include <QStandardPaths>
#include <algorithm>

namespace kestrin {

namespace {

constexpr qint64 mostBytes = 1 << 20;

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

// "font", and "font[$i]" where an administrator has fixed it.
bool namesFont(std::string_view key) {
    return key == "font" || key.starts_with("font[$");
}

} // namespace

std::optional<std::string> fontInKdeglobals(std::string_view content) {
    std::optional<std::string> font;
    bool inGeneral = false;
    while (!content.empty()) {
        const std::string_view line = content.substr(0, content.find('\n'));
        content.remove_prefix(std::min(content.size(), line.size() + 1));
        const std::string_view text = trimmed(line);
        if (text.starts_with('[')) inGeneral = text == "[General]" || text == "[General][$i]";
        const std::size_t equals = text.find('=');
        if (!inGeneral || equals == std::string_view::npos || !namesFont(trimmed(text.substr(0, equals)))) continue;
        font = trimmed(text.substr(equals + 1));
    }
    return font;
}

std::optional<std::string> plasmaFont() {
    const QStringList places =
        QStandardPaths::locateAll(QStandardPaths::GenericConfigLocation, QStringLiteral("kdeglobals"));
    for (const QString& place : places) {
        QFile file(place);
        if (!file.open(QIODevice::ReadOnly)) continue;
        const QByteArray content = file.read(mostBytes);
        if (auto font = fontInKdeglobals({content.data(), static_cast<std::size_t>(content.size())})) return font;
    }
    return std::nullopt;
}

} // namespace kestrin
