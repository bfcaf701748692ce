#include "text/POSIXLocale.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kestrin {

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 3> scripts = {{
    {"latin", "Latn"},
    {"cyrillic", "Cyrl"},
    {"devanagari", "Deva"},
}};

} // namespace

std::string icuLocaleName(std::string_view posixName) {
    const auto at = posixName.find('@');
    const std::string_view modifier = at == std::string_view::npos ? std::string_view() : posixName.substr(at + 1);
    std::string name(posixName.substr(0, std::min(at, posixName.find('.'))));
    if (modifier.contains('=')) return name.append("@").append(modifier);
    for (const auto& [word, script] : scripts)
        if (modifier == word) name.insert(std::min(name.find('_'), name.size()), std::string("_").append(script));
    return name;
}

} // namespace kestrin
