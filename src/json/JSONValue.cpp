#include "json/JSONValue.h"

#include <algorithm>
#include <limits>

namespace kestrin {

JSONValue::JSONValue(std::uint64_t value) {
    if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
        value_ = static_cast<std::int64_t>(value);
    else
        value_ = value;
}

JSONValue JSONValue::strings(const std::vector<std::string>& texts) {
    return Array(texts.begin(), texts.end());
}

std::optional<std::int64_t> JSONValue::signedInteger() const {
    if (const auto* value = std::get_if<std::int64_t>(&value_)) return *value;
    return std::nullopt;
}

std::optional<std::uint64_t> JSONValue::unsignedInteger() const {
    if (const auto* value = std::get_if<std::uint64_t>(&value_)) return *value;
    if (const auto* value = std::get_if<std::int64_t>(&value_); value != nullptr && *value >= 0)
        return static_cast<std::uint64_t>(*value);
    return std::nullopt;
}

const JSONValue* JSONValue::member(std::string_view key) const {
    const Object* object = asObject();
    if (object == nullptr) return nullptr;
    const auto found = std::ranges::find(*object, key, &Member::first);
    return found == object->end() ? nullptr : &found->second;
}

void JSONValue::add(std::string key, JSONValue value) {
    std::get<Object>(value_).emplace_back(std::move(key), std::move(value));
}

} // namespace kestrin
