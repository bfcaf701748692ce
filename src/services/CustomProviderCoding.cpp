#include "services/CustomProviderCoding.h"

#include "services/CustomProviderStoreError.h"
#include "json/JSONError.h"
#include "json/JSONParser.h"
#include "json/JSONReader.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace kestrin {

namespace {

constexpr std::string_view schemaVersionKey = "schema_version";
constexpr std::string_view providersKey = "providers";
constexpr std::string_view idKey = "id";
constexpr std::string_view nameKey = "name";
constexpr std::string_view statusPageURLKey = "status_page_url";
constexpr std::string_view adapterKey = "adapter";
constexpr std::string_view adapterVersionKey = "adapter_version";
constexpr std::string_view enabledKey = "enabled";

constexpr std::array fileKeys = {schemaVersionKey, providersKey};
constexpr std::array definitionKeys = {idKey, nameKey, statusPageURLKey, adapterKey, adapterVersionKey, enabledKey};

/// Whether the value is an object of these keys and no others. The parser has refused a key that is there twice.
template <std::size_t count>
bool hasExactly(const std::array<std::string_view, count>& keys, const JSONValue& value) {
    const JSONValue::Object* object = value.asObject();
    return object != nullptr && object->size() == count &&
           std::ranges::all_of(keys, [&](std::string_view key) { return value.member(key) != nullptr; });
}

bool hasSupportedShape(const JSONValue& value) {
    if (!hasExactly(fileKeys, value)) return false;
    const JSONValue::Array* providers = value.member(providersKey)->asArray();
    return providers != nullptr &&
           std::ranges::all_of(*providers, [](const JSONValue& each) { return hasExactly(definitionKeys, each); });
}

CustomProviderDefinition decodeDefinition(const JSONReader& reader) {
    return {.id = reader.string(idKey),
        .name = reader.string(nameKey),
        .statusPageURL = reader.string(statusPageURLKey),
        .adapter = reader.string(adapterKey),
        .adapterVersion = reader.signedInteger(adapterVersionKey),
        .enabled = reader.boolean(enabledKey)};
}

JSONValue encodeDefinition(const CustomProviderDefinition& definition) {
    return JSONValue::object({{std::string(idKey), definition.id}, {std::string(nameKey), definition.name},
        {std::string(statusPageURLKey), definition.statusPageURL}, {std::string(adapterKey), definition.adapter},
        {std::string(adapterVersionKey), definition.adapterVersion},
        {std::string(enabledKey), definition.enabled}});
}

} // namespace

CustomProviderConfiguration decodeCustomProviders(std::string_view text) {
    try {
        const JSONValue value = parseJSON(text);
        if (!hasSupportedShape(value))
            throw CustomProviderStoreError("Kestrin refused unsupported custom-provider settings.");
        const JSONReader reader(value);
        CustomProviderConfiguration configuration{
            .schemaVersion = reader.signedInteger(schemaVersionKey), .providers = {}};
        for (const JSONReader& definition : reader.objects(providersKey))
            configuration.providers.push_back(decodeDefinition(definition));
        return configuration;
    } catch (const JSONError&) {
        // Without what the parser says: it would repeat the words of a text that may come from anywhere.
        throw CustomProviderStoreError("Kestrin could not read custom-provider settings.");
    }
}

JSONValue encodeCustomProviders(const CustomProviderConfiguration& configuration) {
    JSONValue::Array providers;
    for (const CustomProviderDefinition& definition : configuration.providers)
        providers.push_back(encodeDefinition(definition));
    return JSONValue::object({{std::string(schemaVersionKey), configuration.schemaVersion},
        {std::string(providersKey), std::move(providers)}});
}

} // namespace kestrin
