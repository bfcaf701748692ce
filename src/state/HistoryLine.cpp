#include "state/HistoryLine.h"
#include "state/HistoryKeys.h"
#include "json/JSONWriter.h"

#include <optional>
#include <string_view>

namespace kestrin {

namespace {

void add(JSONValue& line, std::string_view key, JSONValue value) {
    line.add(std::string(key), std::move(value));
}

template <class Value> void addIfPresent(JSONValue& line, std::string_view key, const std::optional<Value>& value) {
    if (value) add(line, key, *value);
}

} // namespace

std::string historyLine(const CheckRecord& record) {
    JSONValue line = JSONValue::object({});
    add(line, historyKeys::timestamp, record.timestamp);
    add(line, historyKeys::siteID, record.siteID);
    add(line, historyKeys::url, record.url);
    add(line, historyKeys::dnsOK, record.dnsOK);
    add(line, historyKeys::ips, JSONValue::strings(record.ips));
    addIfPresent(line, historyKeys::httpStatus, record.httpStatus);
    addIfPresent(line, historyKeys::elapsedMS, record.elapsedMS);
    add(line, historyKeys::up, record.up);
    addIfPresent(line, historyKeys::error, record.error);
    return writeCompact(line);
}

std::string historyLine(const ProviderCheckRecord& record) {
    JSONValue line = JSONValue::object({});
    add(line, historyKeys::timestamp, record.timestamp);
    add(line, historyKeys::providerID, record.providerID);
    add(line, historyKeys::endpoint, record.endpoint);
    addIfPresent(line, historyKeys::httpStatus, record.httpStatus);
    addIfPresent(line, historyKeys::elapsedMS, record.elapsedMS);
    add(line, historyKeys::state, persistedName(record.state));
    add(line, historyKeys::summary, record.summary);
    addIfPresent(line, historyKeys::officialUpdatedAt, record.officialUpdatedAt);
    addIfPresent(line, historyKeys::error, record.error);
    if (record.failureCategory) add(line, historyKeys::failureCategory, persistedName(*record.failureCategory));
    return writeCompact(line);
}

} // namespace kestrin
