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

bool read(std::optional<std::string_view> text, std::string& target) {
    if (text) target = *text;
    return text.has_value();
}

bool read(const Value& value, bool& target) {
    return value && value->get(target) == simdjson::SUCCESS;
}

bool read(const Value& value, std::int64_t& target) {
    // Asked for an integer, the parser also gives one for an unsigned in range, never for a fraction.
    return value && value->get(target) == simdjson::SUCCESS;
}

bool read(std::optional<std::string_view> name, ProviderState& target) {
    const auto state = providerStateNamed(name.value_or(""));
    if (state) target = *state;
    return state.has_value();
}

bool read(std::optional<std::string_view> name, ProviderFailureCategory& target) {
    const auto category = providerFailureCategoryNamed(name.value_or(""));
    if (category) target = *category;
    return category.has_value();
}

template <class Number> bool readOptional(const Value& value, std::optional<Number>& target) {
    if (!value || value->is_null()) {
        target.reset();
        return true;
    }
    if (!target) target.emplace();
    return read(value, *target);
}

/// The same for what is written as a string.
template <class Text>
bool readOptional(HistoryLineParser& parser, const Field& field, std::optional<Text>& target) {
    if (const auto text = parser.textOf(field)) {
        if (!target) target.emplace();
        return read(text, *target);
    }
    target.reset();
    const Value value = parser.valueOf(field);
    return !value || value->is_null();
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
    const auto textOf = [this](const Field& field) { return parser_->textOf(field); };
    const auto& [timestamp, siteID, url, dnsOK, ips, httpStatus, elapsedMS, up, error] = fields;
    CheckRecord& record = check_;
    const bool complete =
        read(textOf(timestamp), record.timestamp) && read(textOf(siteID), record.siteID) &&
        read(textOf(url), record.url) && read(of(dnsOK), record.dnsOK) && parser_->readStrings(ips, record.ips) &&
        readOptional(of(httpStatus), record.httpStatus) && readOptional(of(elapsedMS), record.elapsedMS) &&
        read(of(up), record.up) && readOptional(*parser_, error, record.error);
    parser_->release();
    return complete ? &record : nullptr;
}

ProviderCheckRecord* HistoryLineDecoder::decodeProviderCheck(std::string_view line) {
    std::array<Field, 10> fields = {{{historyKeys::timestamp}, {historyKeys::providerID}, {historyKeys::endpoint},
        {historyKeys::httpStatus}, {historyKeys::elapsedMS}, {historyKeys::state}, {historyKeys::summary},
        {historyKeys::officialUpdatedAt}, {historyKeys::error}, {historyKeys::failureCategory}}};
    if (!parser_->find(line, fields)) return nullptr;
    const auto of = [this](const Field& field) { return parser_->valueOf(field); };
    const auto textOf = [this](const Field& field) { return parser_->textOf(field); };
    const auto& [timestamp, providerID, endpoint, httpStatus, elapsedMS, state, summary, updatedAt, error,
        category] = fields;
    ProviderCheckRecord& record = providerCheck_;
    const bool complete =
        read(textOf(timestamp), record.timestamp) && read(textOf(providerID), record.providerID) &&
        read(textOf(endpoint), record.endpoint) && readOptional(of(httpStatus), record.httpStatus) &&
        readOptional(of(elapsedMS), record.elapsedMS) && read(textOf(state), record.state) &&
        read(textOf(summary), record.summary) && readOptional(*parser_, updatedAt, record.officialUpdatedAt) &&
        readOptional(*parser_, error, record.error) && readOptional(*parser_, category, record.failureCategory);
    parser_->release();
    return complete ? &record : nullptr;
}

} // namespace kestrin
