#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace kestrin {

/// One JSON value as a plain tree. Integers and fractions are told apart, because 300.9 must never pass for 300,
/// and an object keeps its members in the order given. The parser never builds a tree deeper than
/// `maximumJSONDepth`, so a tree may be walked by recursion. An integer is signed if it fits, unsigned otherwise.
class JSONValue {
public:
    using Array = std::vector<JSONValue>;
    using Member = std::pair<std::string, JSONValue>;
    using Object = std::vector<Member>;

    JSONValue() = default; ///< null
    JSONValue(std::nullptr_t) {}
    JSONValue(bool value) : value_(value) {}
    JSONValue(int value) : value_(std::int64_t{value}) {}
    JSONValue(std::int64_t value) : value_(value) {}
    JSONValue(std::uint64_t value);
    JSONValue(double value) : value_(value) {}
    JSONValue(const char* value) : value_(std::string(value)) {}
    JSONValue(std::string_view value) : value_(std::string(value)) {}
    JSONValue(std::string value) : value_(std::move(value)) {}
    JSONValue(Array value) : value_(std::move(value)) {}
    JSONValue(Object value) : value_(std::move(value)) {}

    /// An object in the order of writing, the usual way to build one: `JSONValue::object({{"id", id}})`.
    [[nodiscard]] static JSONValue object(std::initializer_list<Member> members) { return Object(members); }
    [[nodiscard]] static JSONValue array(std::initializer_list<JSONValue> elements) { return Array(elements); }
    [[nodiscard]] static JSONValue strings(const std::vector<std::string>& texts);

    /// Each gives null when the value is of another type.
    [[nodiscard]] const bool* asBoolean() const { return std::get_if<bool>(&value_); }
    [[nodiscard]] const std::string* asString() const { return std::get_if<std::string>(&value_); }
    [[nodiscard]] const Array* asArray() const { return std::get_if<Array>(&value_); }
    [[nodiscard]] const Object* asObject() const { return std::get_if<Object>(&value_); }
    [[nodiscard]] const double* asDouble() const { return std::get_if<double>(&value_); }

    [[nodiscard]] bool isNull() const { return std::holds_alternative<std::monostate>(value_); }
    /// Integer tokens in range only: a fraction, an exponent or `true` gives no value.
    [[nodiscard]] std::optional<std::int64_t> signedInteger() const;
    [[nodiscard]] std::optional<std::uint64_t> unsignedInteger() const;

    /// The member of that key; null when this is no object or has no such key.
    [[nodiscard]] const JSONValue* member(std::string_view key) const;
    /// Adds a member behind the others of an object that is being built.
    void add(std::string key, JSONValue value);

    bool operator==(const JSONValue&) const = default;

private:
    std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string, Array, Object> value_;
};

} // namespace kestrin
