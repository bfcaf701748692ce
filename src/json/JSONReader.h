#pragma once

#include "json/JSONError.h"
#include "json/JSONValue.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

/// Reads the members of one object by key and type, and knows no other tolerance than the caller asks for: an
/// integer is an integer token in range, null is accepted by the optional readers alone, where it means absent, and
/// a key that is read may not stand there twice. Everything else throws `JSONError` with the key and what it must
/// be, for instance “interval_seconds” must be a whole number. Members of inner objects are named by their path,
/// “sites[2].url”. Unknown keys are ignored. The value must outlive the reader.
class JSONReader {
public:
    /// Throws unless the value is an object. `path` names it in messages; the top level has none.
    explicit JSONReader(const JSONValue& value, std::string path = {});

    [[nodiscard]] const std::string& string(std::string_view key) const;
    [[nodiscard]] bool boolean(std::string_view key) const;
    [[nodiscard]] std::int64_t signedInteger(std::string_view key) const;
    [[nodiscard]] std::uint64_t unsignedInteger(std::string_view key) const;
    [[nodiscard]] double number(std::string_view key) const; ///< an integer or a fraction
    [[nodiscard]] JSONReader object(std::string_view key) const;
    [[nodiscard]] std::vector<JSONReader> objects(std::string_view key) const;  ///< a list of objects
    [[nodiscard]] std::vector<std::string> strings(std::string_view key) const; ///< a list of strings

    /// Absent or null gives no value.
    [[nodiscard]] std::optional<std::string> optionalString(std::string_view key) const;
    [[nodiscard]] std::optional<bool> optionalBoolean(std::string_view key) const;
    [[nodiscard]] std::optional<std::int64_t> optionalSignedInteger(std::string_view key) const;
    [[nodiscard]] std::optional<std::uint64_t> optionalUnsignedInteger(std::string_view key) const;
    [[nodiscard]] std::optional<double> optionalNumber(std::string_view key) const;
    [[nodiscard]] std::optional<JSONReader> optionalObject(std::string_view key) const;
    [[nodiscard]] std::vector<JSONReader> optionalObjects(std::string_view key) const; ///< none instead of no value

    /// The path of a member as messages show it.
    [[nodiscard]] std::string pathOf(std::string_view key) const;

private:
    [[nodiscard]] const JSONValue* member(std::string_view key) const;
    [[nodiscard]] const JSONValue& required(std::string_view key) const;
    [[nodiscard]] const JSONValue* present(std::string_view key) const;
    [[nodiscard]] const JSONValue::Array& array(std::string_view key) const;

    const JSONValue* value_;
    std::string path_;
};

} // namespace kestrin
