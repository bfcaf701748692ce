#include "state/HistoryLineParser.h"

#include "state/HistoryScanner.h"
#include "state/JSONObjectWalk.h"

namespace kestrin {

namespace {

namespace dom = simdjson::dom;

static_assert(historyLinePadding >= simdjson::SIMDJSON_PADDING);

/// Ordinary lines have a few hundred bytes.
constexpr std::size_t ordinaryBytes = 65'536;

bool isLongContainer(std::string_view text) {
    return text.size() > ordinaryBytes && (text.front() == '[' || text.front() == '{');
}

std::optional<std::string_view> stringIn(const HistoryLineParser::Value& value) {
    std::string_view text;
    if (!value || value->get(text) != simdjson::SUCCESS) return std::nullopt;
    return text;
}

bool append(std::optional<std::string_view> text, std::vector<std::string>& target, std::size_t& count) {
    if (!text) return false;
    if (count == target.size()) target.emplace_back();
    target[count++] = *text;
    return true;
}

} // namespace

bool HistoryLineParser::find(std::string_view line, std::span<HistoryLineField> fields) {
    if (line.size() > ordinaryBytes) {
        const auto judge = [this](std::string_view scalar) { return parse(scalar).has_value(); };
        const auto note = [&](std::string_view key, std::string_view value) {
            for (HistoryLineField& field : fields)
                if (isKey(key, field.key)) field.text = value;
        };
        return simdjson::validate_utf8(line.data(), line.size()) && JSONObjectWalk(line, note, judge).run();
    }
    dom::object object;
    const Value parsed = parse(line);
    if (!parsed || parsed->get(object) != simdjson::SUCCESS) return false;
    for (const auto [key, value] : object)
        for (HistoryLineField& field : fields)
            if (field.key == key) {
                field.value = value;
                break;
            }
    return true;
}

HistoryLineParser::Value HistoryLineParser::valueOf(const HistoryLineField& field) {
    if (field.text.empty()) return field.value;
    // No field is an object, and long arrays are read otherwise: it is enough to know that it is a container.
    static constexpr char anyContainer[2 + historyLinePadding] = "[]";
    return isLongContainer(field.text) ? parse({anyContainer, 2}) : parse(field.text);
}

std::optional<std::string_view> HistoryLineParser::textOf(const HistoryLineField& field) {
    return field.text.starts_with('"') ? textIn(field.text) : stringIn(valueOf(field));
}

/// A valid string without escapes stands there as it is; parsing it would hold a long one twice.
std::optional<std::string_view> HistoryLineParser::textIn(std::string_view quoted) {
    if (quoted.find('\\') == std::string_view::npos) return quoted.substr(1, quoted.size() - 2);
    return stringIn(parse(quoted));
}

bool HistoryLineParser::readStrings(const HistoryLineField& field, std::vector<std::string>& target) {
    if (isLongContainer(field.text)) return field.text.front() == '[' && readLongArray(field.text, target);
    const Value value = valueOf(field);
    dom::array array;
    if (!value || value->get(array) != simdjson::SUCCESS) return false;
    std::size_t count = 0;
    for (const dom::element element : array)
        if (!append(stringIn(element), target, count)) return false;
    target.resize(count);
    return true;
}

HistoryLineParser::Value HistoryLineParser::parse(std::string_view text) {
    constexpr char beginningOfAByteOrderMark = '\xEF'; // simdjson skips the mark from 3.12 on, JSON forbids it
    if (text.starts_with(beginningOfAByteOrderMark)) return std::nullopt;
    large_.reset();
    dom::parser& parser = text.size() <= ordinaryBytes ? ordinary_ : large_.emplace();
    dom::element element;
    // Not copied: the scanner leaves readable bytes behind every line.
    constexpr bool copyForPadding = false;
    if (parser.parse(text.data(), text.size(), copyForPadding).get(element) != simdjson::SUCCESS)
        return std::nullopt;
    return element;
}

bool HistoryLineParser::isKey(std::string_view quoted, std::string_view key) {
    constexpr std::size_t longestEscape = 6;
    if (quoted.size() > key.size() * longestEscape + 2) return false;
    return textIn(quoted) == key;
}

/// An array that was found to be valid, one string after the other.
bool HistoryLineParser::readLongArray(std::string_view array, std::vector<std::string>& target) {
    std::size_t count = 0;
    for (std::size_t at = 1; (at = array.find_first_not_of(", \t\r\n", at)) != array.size() - 1;) {
        if (array[at] != '"') return false;
        const std::size_t begin = at++;
        while (array[at] != '"')
            at += array[at] == '\\' ? std::size_t{2} : std::size_t{1};
        ++at;
        if (!append(textIn(array.substr(begin, at - begin)), target, count)) return false;
    }
    target.resize(count);
    return true;
}

} // namespace kestrin
