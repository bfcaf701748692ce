#include "state/HistoryLineDecoder.h"

#include "state/HistoryKeys.h"
#include "state/HistoryScanner.h"
#include "state/JSONObjectWalk.h"

#include <simdjson.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrin {

namespace {

namespace dom = simdjson::dom;

static_assert(historyLinePadding >= simdjson::SIMDJSON_PADDING);

/// Ordinary lines have a few hundred bytes. The parser takes many times the memory of what it parses, so a longer
/// line is walked through and only the values that count are parsed, one at a time.
constexpr std::size_t ordinaryLineBytes = 65'536;

/// Where the value of a known key goes. The types are judged after the whole object was seen, since only the last
/// of two equal keys counts.
struct Slot {
    std::string_view key;
    std::optional<dom::element> value; ///< in an ordinary line
    std::string_view text;             ///< in a long line, not parsed yet
};

template <std::size_t count> bool collect(const dom::element& line, std::array<Slot, count>& slots) {
    dom::object object;
    if (line.get(object) != simdjson::SUCCESS) return false;
    for (const auto [key, value] : object)
        for (Slot& slot : slots)
            if (slot.key == key) {
                slot.value = value;
                break;
            }
    return true;
}

using Value = std::optional<dom::element>;

// Each returns whether the value is there and of its type. Memory of the target is used again.

bool read(const Value& value, std::string& target) {
    std::string_view text;
    if (!value || value->get(text) != simdjson::SUCCESS) return false;
    target = text;
    return true;
}

bool read(const Value& value, bool& target) {
    return value && value->get(target) == simdjson::SUCCESS;
}

bool read(const Value& value, std::int64_t& target) {
    // Asked for an integer, the parser also gives one for an unsigned in range, never for a fraction.
    return value && value->get(target) == simdjson::SUCCESS;
}

bool read(const Value& value, std::vector<std::string>& target) {
    dom::array array;
    if (!value || value->get(array) != simdjson::SUCCESS) return false;
    std::size_t count = 0;
    for (const dom::element element : array) {
        std::string_view text;
        if (element.get(text) != simdjson::SUCCESS) return false;
        if (count == target.size()) target.emplace_back();
        target[count++] = text;
    }
    target.resize(count);
    return true;
}

bool read(const Value& value, ProviderState& target) {
    std::string_view name;
    if (!value || value->get(name) != simdjson::SUCCESS) return false;
    const auto state = providerStateNamed(name);
    if (state) target = *state;
    return state.has_value();
}

bool read(const Value& value, ProviderFailureCategory& target) {
    std::string_view name;
    if (!value || value->get(name) != simdjson::SUCCESS) return false;
    const auto category = providerFailureCategoryNamed(name);
    if (category) target = *category;
    return category.has_value();
}

template <class Field> bool readOptional(const Value& value, std::optional<Field>& target) {
    if (!value || value->is_null()) {
        target.reset();
        return true;
    }
    if (!target) target.emplace();
    return read(value, *target);
}

} // namespace

struct HistoryLineDecoder::Parser {
    dom::parser ordinary;
    std::optional<dom::parser> large;

    /// No value for what is no JSON. What the value refers to lives until the next call.
    Value parse(std::string_view text) {
        large.reset();
        dom::parser& parser = text.size() <= ordinaryLineBytes ? ordinary : large.emplace();
        dom::element element;
        // Not copied: the scanner leaves readable bytes behind every line.
        constexpr bool copyForPadding = false;
        if (parser.parse(text.data(), text.size(), copyForPadding).get(element) != simdjson::SUCCESS)
            return std::nullopt;
        return element;
    }

    template <std::size_t count> bool find(std::string_view line, std::array<Slot, count>& slots) {
        if (line.size() <= ordinaryLineBytes) {
            const Value parsed = parse(line);
            return parsed && collect(*parsed, slots);
        }
        const auto judge = [this](std::string_view scalar) { return parse(scalar).has_value(); };
        const auto note = [&](std::string_view key, std::string_view value) {
            for (Slot& slot : slots)
                if (isKey(key, slot.key)) slot.text = value;
        };
        return simdjson::validate_utf8(line.data(), line.size()) && JSONObjectWalk(line, note, judge).run();
    }

    Value valueOf(const Slot& slot) {
        if (slot.text.empty()) return slot.value;
        // No field is an object, and a long array is read below: it is enough to know what it is.
        static constexpr char anyArray[2 + historyLinePadding] = "[]";
        return isLongContainer(slot.text) ? parse({anyArray, 2}) : parse(slot.text);
    }

    bool readStrings(const Slot& slot, std::vector<std::string>& target) {
        if (!isLongContainer(slot.text)) return read(valueOf(slot), target);
        return slot.text.front() == '[' && readLongArray(slot.text, target);
    }

private:
    static bool isLongContainer(std::string_view text) {
        return text.size() > ordinaryLineBytes && (text.front() == '[' || text.front() == '{');
    }

    /// An array that was found to be valid, one string after the other.
    bool readLongArray(std::string_view array, std::vector<std::string>& target) {
        std::size_t count = 0;
        for (std::size_t at = 1; (at = array.find_first_not_of(", \t\r\n", at)) != array.size() - 1;) {
            if (array[at] != '"') return false;
            const std::size_t begin = at++;
            while (array[at] != '"')
                at += array[at] == '\\' ? std::size_t{2} : std::size_t{1};
            ++at;
            if (count == target.size()) target.emplace_back();
            if (!read(parse(array.substr(begin, at - begin)), target[count++])) return false;
        }
        target.resize(count);
        return true;
    }

    bool isKey(std::string_view quoted, std::string_view key) {
        constexpr std::size_t longestEscape = 6;
        if (quoted.size() > key.size() * longestEscape + 2) return false;
        if (quoted.find('\\') == std::string_view::npos) return quoted.substr(1, quoted.size() - 2) == key;
        std::string_view text;
        const Value parsed = parse(quoted);
        return parsed && parsed->get(text) == simdjson::SUCCESS && text == key;
    }
};

HistoryLineDecoder::HistoryLineDecoder() : parser_(std::make_unique<Parser>()) {}
HistoryLineDecoder::~HistoryLineDecoder() = default;

CheckRecord* HistoryLineDecoder::decodeCheck(std::string_view line) {
    std::array<Slot, 9> slots = {
        {{historyKeys::timestamp, {}, {}}, {historyKeys::siteID, {}, {}}, {historyKeys::url, {}, {}},
            {historyKeys::dnsOK, {}, {}}, {historyKeys::ips, {}, {}}, {historyKeys::httpStatus, {}, {}},
            {historyKeys::elapsedMS, {}, {}}, {historyKeys::up, {}, {}}, {historyKeys::error, {}, {}}}};
    if (!parser_->find(line, slots)) return nullptr;
    const auto of = [this](const Slot& slot) { return parser_->valueOf(slot); };
    const auto& [timestamp, siteID, url, dnsOK, ips, httpStatus, elapsedMS, up, error] = slots;
    CheckRecord& record = check_;
    const bool complete =
        read(of(timestamp), record.timestamp) && read(of(siteID), record.siteID) && read(of(url), record.url) &&
        read(of(dnsOK), record.dnsOK) && parser_->readStrings(ips, record.ips) &&
        readOptional(of(httpStatus), record.httpStatus) && readOptional(of(elapsedMS), record.elapsedMS) &&
        read(of(up), record.up) && readOptional(of(error), record.error);
    parser_->large.reset();
    return complete ? &record : nullptr;
}

ProviderCheckRecord* HistoryLineDecoder::decodeProviderCheck(std::string_view line) {
    std::array<Slot, 10> slots = {{{historyKeys::timestamp, {}, {}}, {historyKeys::providerID, {}, {}},
        {historyKeys::endpoint, {}, {}}, {historyKeys::httpStatus, {}, {}}, {historyKeys::elapsedMS, {}, {}},
        {historyKeys::state, {}, {}}, {historyKeys::summary, {}, {}}, {historyKeys::officialUpdatedAt, {}, {}},
        {historyKeys::error, {}, {}}, {historyKeys::failureCategory, {}, {}}}};
    if (!parser_->find(line, slots)) return nullptr;
    const auto of = [this](const Slot& slot) { return parser_->valueOf(slot); };
    const auto& [timestamp, providerID, endpoint, httpStatus, elapsedMS, state, summary, updatedAt, error,
        category] = slots;
    ProviderCheckRecord& record = providerCheck_;
    const bool complete =
        read(of(timestamp), record.timestamp) && read(of(providerID), record.providerID) &&
        read(of(endpoint), record.endpoint) && readOptional(of(httpStatus), record.httpStatus) &&
        readOptional(of(elapsedMS), record.elapsedMS) && read(of(state), record.state) &&
        read(of(summary), record.summary) && readOptional(of(updatedAt), record.officialUpdatedAt) &&
        readOptional(of(error), record.error) && readOptional(of(category), record.failureCategory);
    parser_->large.reset();
    return complete ? &record : nullptr;
}

} // namespace kestrin
