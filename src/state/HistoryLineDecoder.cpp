#include "state/HistoryLineDecoder.h"

#include "state/HistoryKeys.h"
#include "state/HistoryScanner.h"

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

/// Ordinary lines have a few hundred bytes. The parser needs many times the memory of its longest line, so a longer
/// one gets a parser that goes away with it.
constexpr std::size_t ordinaryLineBytes = 65'536;

/// Where the value of a known key goes. The types are judged after the whole object was seen, since only the last
/// of two equal keys counts.
struct Slot {
    std::string_view key;
    std::optional<dom::element> value;
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

// Each returns whether the value is there and of its type. Memory of the target is used again.

bool read(const Slot& slot, std::string& target) {
    std::string_view text;
    if (!slot.value || slot.value->get(text) != simdjson::SUCCESS) return false;
    target = text;
    return true;
}

bool read(const Slot& slot, bool& target) {
    return slot.value && slot.value->get(target) == simdjson::SUCCESS;
}

bool read(const Slot& slot, std::int64_t& target) {
    // Asked for an integer, the parser also gives one for an unsigned in range, never for a fraction.
    return slot.value && slot.value->get(target) == simdjson::SUCCESS;
}

bool read(const Slot& slot, std::vector<std::string>& target) {
    dom::array array;
    if (!slot.value || slot.value->get(array) != simdjson::SUCCESS) return false;
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

bool read(const Slot& slot, ProviderState& target) {
    std::string_view name;
    if (!slot.value || slot.value->get(name) != simdjson::SUCCESS) return false;
    const auto state = providerStateNamed(name);
    if (state) target = *state;
    return state.has_value();
}

bool read(const Slot& slot, ProviderFailureCategory& target) {
    std::string_view name;
    if (!slot.value || slot.value->get(name) != simdjson::SUCCESS) return false;
    const auto category = providerFailureCategoryNamed(name);
    if (category) target = *category;
    return category.has_value();
}

template <class Value> bool readOptional(const Slot& slot, std::optional<Value>& target) {
    if (!slot.value || slot.value->is_null()) {
        target.reset();
        return true;
    }
    if (!target) target.emplace();
    return read(slot, *target);
}

} // namespace

struct HistoryLineDecoder::Parser {
    dom::parser ordinary;
    std::optional<dom::parser> large;

    /// No value for a line that is no JSON. What the value refers to lives until the next call.
    std::optional<dom::element> parse(std::string_view line) {
        large.reset();
        dom::parser& parser = line.size() <= ordinaryLineBytes ? ordinary : large.emplace();
        dom::element element;
        // Not copied: the scanner leaves readable bytes behind every line.
        constexpr bool copyForPadding = false;
        if (parser.parse(line.data(), line.size(), copyForPadding).get(element) != simdjson::SUCCESS)
            return std::nullopt;
        return element;
    }
};

HistoryLineDecoder::HistoryLineDecoder() : parser_(std::make_unique<Parser>()) {}
HistoryLineDecoder::~HistoryLineDecoder() = default;

const CheckRecord* HistoryLineDecoder::decodeCheck(std::string_view line) {
    const auto parsed = parser_->parse(line);
    std::array<Slot, 9> slots = {{{historyKeys::timestamp, {}}, {historyKeys::siteID, {}}, {historyKeys::url, {}},
        {historyKeys::dnsOK, {}}, {historyKeys::ips, {}}, {historyKeys::httpStatus, {}},
        {historyKeys::elapsedMS, {}}, {historyKeys::up, {}}, {historyKeys::error, {}}}};
    if (!parsed || !collect(*parsed, slots)) return nullptr;
    const auto& [timestamp, siteID, url, dnsOK, ips, httpStatus, elapsedMS, up, error] = slots;
    const bool complete =
        read(timestamp, check_.timestamp) && read(siteID, check_.siteID) && read(url, check_.url) &&
        read(dnsOK, check_.dnsOK) && read(ips, check_.ips) && readOptional(httpStatus, check_.httpStatus) &&
        readOptional(elapsedMS, check_.elapsedMS) && read(up, check_.up) && readOptional(error, check_.error);
    return complete ? &check_ : nullptr;
}

const ProviderCheckRecord* HistoryLineDecoder::decodeProviderCheck(std::string_view line) {
    const auto parsed = parser_->parse(line);
    std::array<Slot, 10> slots = {{{historyKeys::timestamp, {}}, {historyKeys::providerID, {}},
        {historyKeys::endpoint, {}}, {historyKeys::httpStatus, {}}, {historyKeys::elapsedMS, {}},
        {historyKeys::state, {}}, {historyKeys::summary, {}}, {historyKeys::officialUpdatedAt, {}},
        {historyKeys::error, {}}, {historyKeys::failureCategory, {}}}};
    if (!parsed || !collect(*parsed, slots)) return nullptr;
    const auto& [timestamp, providerID, endpoint, httpStatus, elapsedMS, state, summary, updatedAt, error,
        category] = slots;
    ProviderCheckRecord& record = providerCheck_;
    const bool complete = read(timestamp, record.timestamp) && read(providerID, record.providerID) &&
                          read(endpoint, record.endpoint) && readOptional(httpStatus, record.httpStatus) &&
                          readOptional(elapsedMS, record.elapsedMS) && read(state, record.state) &&
                          read(summary, record.summary) && readOptional(updatedAt, record.officialUpdatedAt) &&
                          readOptional(error, record.error) && readOptional(category, record.failureCategory);
    return complete ? &record : nullptr;
}

} // namespace kestrin
