#include "state/HistoryLineDecoder.h"

#include "state/HistoryKeys.h"
#include "state/HistoryLineParser.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace kestrin {

namespace {

using Field = HistoryLineField;
using Value = HistoryLineParser::Value;

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

HistoryLineDecoder::HistoryLineDecoder() : parser_(std::make_unique<HistoryLineParser>()) {}
HistoryLineDecoder::~HistoryLineDecoder() = default;

CheckRecord* HistoryLineDecoder::decodeCheck(std::string_view line) {
    std::array<Field, 9> fields = {{{historyKeys::timestamp}, {historyKeys::siteID}, {historyKeys::url},
        {historyKeys::dnsOK}, {historyKeys::ips}, {historyKeys::httpStatus}, {historyKeys::elapsedMS},
        {historyKeys::up}, {historyKeys::error}}};
    if (!parser_->find(line, fields)) return nullptr;
    const auto of = [this](const Field& field) { return parser_->valueOf(field); };
    const auto& [timestamp, siteID, url, dnsOK, ips, httpStatus, elapsedMS, up, error] = fields;
    CheckRecord& record = check_;
    const bool complete =
        read(of(timestamp), record.timestamp) && read(of(siteID), record.siteID) && read(of(url), record.url) &&
        read(of(dnsOK), record.dnsOK) && parser_->readStrings(ips, record.ips) &&
        readOptional(of(httpStatus), record.httpStatus) && readOptional(of(elapsedMS), record.elapsedMS) &&
        read(of(up), record.up) && readOptional(of(error), record.error);
    parser_->release();
    return complete ? &record : nullptr;
}

ProviderCheckRecord* HistoryLineDecoder::decodeProviderCheck(std::string_view line) {
    std::array<Field, 10> fields = {{{historyKeys::timestamp}, {historyKeys::providerID}, {historyKeys::endpoint},
        {historyKeys::httpStatus}, {historyKeys::elapsedMS}, {historyKeys::state}, {historyKeys::summary},
        {historyKeys::officialUpdatedAt}, {historyKeys::error}, {historyKeys::failureCategory}}};
    if (!parser_->find(line, fields)) return nullptr;
    const auto of = [this](const Field& field) { return parser_->valueOf(field); };
    const auto& [timestamp, providerID, endpoint, httpStatus, elapsedMS, state, summary, updatedAt, error,
        category] = fields;
    ProviderCheckRecord& record = providerCheck_;
    const bool complete =
        read(of(timestamp), record.timestamp) && read(of(providerID), record.providerID) &&
        read(of(endpoint), record.endpoint) && readOptional(of(httpStatus), record.httpStatus) &&
        readOptional(of(elapsedMS), record.elapsedMS) && read(of(state), record.state) &&
        read(of(summary), record.summary) && readOptional(of(updatedAt), record.officialUpdatedAt) &&
        readOptional(of(error), record.error) && readOptional(of(category), record.failureCategory);
    parser_->release();
    return complete ? &record : nullptr;
}

} // namespace kestrin
