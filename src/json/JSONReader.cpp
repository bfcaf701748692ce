#include "json/JSONReader.h"

#include <utility>

namespace kestrin {

namespace {

constexpr std::string_view text = "text";
constexpr std::string_view trueOrFalse = "true or false";
constexpr std::string_view wholeNumber = "a whole number";
constexpr std::string_view positiveNumber = "a whole number that is not negative";
constexpr std::string_view anyNumber = "a number";
constexpr std::string_view list = "a list";
constexpr std::string_view objectName = "an object";

[[noreturn]] void refuse(const std::string& path, std::string_view expected) {
    const std::string subject = path.empty() ? "The JSON value" : "“" + path + "”";
    throw JSONError(subject + " must be " + std::string(expected) + ".");
}

std::string elementPath(const std::string& path, std::size_t index) {
    return path + "[" + std::to_string(index) + "]";
}

const std::string& stringIn(const JSONValue& value, const std::string& path) {
    if (const std::string* found = value.asString()) return *found;
    refuse(path, text);
}

bool booleanIn(const JSONValue& value, const std::string& path) {
    if (const bool* found = value.asBoolean()) return *found;
    refuse(path, trueOrFalse);
}

std::int64_t signedIn(const JSONValue& value, const std::string& path) {
    if (const auto found = value.signedInteger()) return *found;
    refuse(path, wholeNumber);
}

std::uint64_t unsignedIn(const JSONValue& value, const std::string& path) {
    if (const auto found = value.unsignedInteger()) return *found;
    refuse(path, positiveNumber);
}

double numberIn(const JSONValue& value, const std::string& path) {
    if (const double* found = value.asDouble()) return *found;
    if (const auto found = value.signedInteger()) return static_cast<double>(*found);
    if (const auto found = value.unsignedInteger()) return static_cast<double>(*found);
    refuse(path, anyNumber);
}

} // namespace

JSONReader::JSONReader(const JSONValue& value, std::string path) : value_(&value), path_(std::move(path)) {
    if (value.asObject() == nullptr) refuse(path_, objectName);
}

const std::string& JSONReader::string(std::string_view key) const {
    return stringIn(required(key), pathOf(key));
}
bool JSONReader::boolean(std::string_view key) const {
    return booleanIn(required(key), pathOf(key));
}

std::int64_t JSONReader::signedInteger(std::string_view key) const {
    return signedIn(required(key), pathOf(key));
}

std::uint64_t JSONReader::unsignedInteger(std::string_view key) const {
    return unsignedIn(required(key), pathOf(key));
}

double JSONReader::number(std::string_view key) const {
    return numberIn(required(key), pathOf(key));
}
JSONReader JSONReader::object(std::string_view key) const {
    return JSONReader(required(key), pathOf(key));
}

std::vector<JSONReader> JSONReader::objects(std::string_view key) const {
    const JSONValue::Array& elements = array(key);
    const std::string path = pathOf(key);
    std::vector<JSONReader> readers;
    readers.reserve(elements.size());
    for (const JSONValue& element : elements)
        readers.emplace_back(element, elementPath(path, readers.size()));
    return readers;
}

std::vector<std::string> JSONReader::strings(std::string_view key) const {
    const JSONValue::Array& elements = array(key);
    const std::string path = pathOf(key);
    std::vector<std::string> texts;
    texts.reserve(elements.size());
    for (const JSONValue& element : elements)
        texts.push_back(stringIn(element, elementPath(path, texts.size())));
    return texts;
}

std::optional<std::string> JSONReader::optionalString(std::string_view key) const {
    const JSONValue* value = present(key);
    return value == nullptr ? std::nullopt : std::optional(stringIn(*value, pathOf(key)));
}

std::optional<bool> JSONReader::optionalBoolean(std::string_view key) const {
    const JSONValue* value = present(key);
    return value == nullptr ? std::nullopt : std::optional(booleanIn(*value, pathOf(key)));
}

std::optional<std::int64_t> JSONReader::optionalSignedInteger(std::string_view key) const {
    const JSONValue* value = present(key);
    return value == nullptr ? std::nullopt : std::optional(signedIn(*value, pathOf(key)));
}

std::optional<std::uint64_t> JSONReader::optionalUnsignedInteger(std::string_view key) const {
    const JSONValue* value = present(key);
    return value == nullptr ? std::nullopt : std::optional(unsignedIn(*value, pathOf(key)));
}

std::optional<double> JSONReader::optionalNumber(std::string_view key) const {
    const JSONValue* value = present(key);
    return value == nullptr ? std::nullopt : std::optional(numberIn(*value, pathOf(key)));
}

std::optional<JSONReader> JSONReader::optionalObject(std::string_view key) const {
    const JSONValue* value = present(key);
    return value == nullptr ? std::nullopt : std::optional(JSONReader(*value, pathOf(key)));
}

std::vector<JSONReader> JSONReader::optionalObjects(std::string_view key) const {
    return present(key) == nullptr ? std::vector<JSONReader>() : objects(key);
}

std::string JSONReader::pathOf(std::string_view key) const {
    return path_.empty() ? std::string(key) : path_ + "." + std::string(key);
}

const JSONValue* JSONReader::member(std::string_view key) const {
    const JSONValue* found = nullptr;
    for (const auto& [name, value] : *value_->asObject()) {
        if (name != key) continue;
        if (found != nullptr) throw JSONError("“" + pathOf(key) + "” stands there twice.");
        found = &value;
    }
    return found;
}

const JSONValue& JSONReader::required(std::string_view key) const {
    const JSONValue* value = member(key);
    if (value == nullptr) throw JSONError("“" + pathOf(key) + "” is missing.");
    return *value;
}

const JSONValue* JSONReader::present(std::string_view key) const {
    const JSONValue* value = member(key);
    return value == nullptr || value->isNull() ? nullptr : value;
}

const JSONValue::Array& JSONReader::array(std::string_view key) const {
    if (const JSONValue::Array* elements = required(key).asArray()) return *elements;
    refuse(pathOf(key), list);
}

} // namespace kestrin
