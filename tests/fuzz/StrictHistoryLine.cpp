#include "fuzz/StrictHistoryLine.h"

#include "json/JSONParser.h"

#include <algorithm>
#include <cmath>

namespace kestrin {

namespace {

bool isHuge(const JSONValue& value) {
    if (const double* number = value.asDouble()) return std::abs(*number) >= 0x1p63;
    if (const auto* array = value.asArray()) return std::ranges::any_of(*array, isHuge);
    if (const auto* object = value.asObject())
        return std::ranges::any_of(*object, [](const auto& member) { return isHuge(member.second); });
    return false;
}

CheckRecord checkIn(const JSONReader& line) {
    return {.timestamp = line.string("timestamp"),
        .siteID = line.string("site_id"),
        .url = line.string("url"),
        .dnsOK = line.boolean("dns_ok"),
        .ips = line.strings("ips"),
        .httpStatus = line.optionalSignedInteger("http_status"),
        .elapsedMS = line.optionalSignedInteger("elapsed_ms"),
        .up = line.boolean("up"),
        .error = line.optionalString("error")};
}

ProviderCheckRecord providerCheckIn(const JSONReader& line) {
    const auto state = providerStateNamed(line.string("state"));
    if (!state) throw JSONError("unknown state");
    const auto categoryName = line.optionalString("failure_category");
    const auto category = categoryName ? providerFailureCategoryNamed(*categoryName) : std::nullopt;
    if (categoryName && !category) throw JSONError("unknown category");
    return {.timestamp = line.string("timestamp"),
        .providerID = line.string("provider_id"),
        .endpoint = line.string("endpoint"),
        .httpStatus = line.optionalSignedInteger("http_status"),
        .elapsedMS = line.optionalSignedInteger("elapsed_ms"),
        .state = *state,
        .summary = line.string("summary"),
        .officialUpdatedAt = line.optionalString("official_updated_at"),
        .error = line.optionalString("error"),
        .failureCategory = category};
}

} // namespace

StrictHistoryLine::StrictHistoryLine(std::string_view line) {
    try {
        value_ = parseJSON(line);
        holdsAHugeNumber_ = isHuge(*value_);
    } catch (const JSONError& refusal) {
        const auto says = [&](const char* reason) { return refusal.message.find(reason) != std::string::npos; };
        refusedForItsOwnReasons_ = says("twice") || says("nested") || says("out of range");
    }
}

template <class Record>
std::optional<Record> StrictHistoryLine::record(
    const char* keyOfTheKind, Record (*recordIn)(const JSONReader&)) const {
    // Asked first because most lines are of one kind alone, and throwing takes longer than all the rest.
    if (!value_ || value_->member(keyOfTheKind) == nullptr) return std::nullopt;
    try {
        return recordIn(JSONReader(*value_));
    } catch (const JSONError&) {
        return std::nullopt;
    }
}

std::optional<CheckRecord> StrictHistoryLine::check() const {
    return record("site_id", checkIn);
}

std::optional<ProviderCheckRecord> StrictHistoryLine::providerCheck() const {
    return record("provider_id", providerCheckIn);
}

} // namespace kestrin
