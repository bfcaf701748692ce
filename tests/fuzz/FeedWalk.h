#pragma once

#include "json/JSONValue.h"

#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

/// A place in a feed, for a second reading that shares nothing with the adapters but the parser. A value of the
/// wrong type reads like an absent one and is noted, once for all places of one feed; so is a key that stands
/// twice.
class FeedWalk {
public:
    /// `value` is null where nothing is. Both must outlive the walk.
    FeedWalk(const JSONValue* value, bool& wrongType) : value_(value), wrongType_(&wrongType) {
        if (value_ == nullptr || value_->asObject() != nullptr) return;
        wrongType = true;
        value_ = nullptr;
    }

    [[nodiscard]] bool isThere() const { return value_ != nullptr; }

    [[nodiscard]] FeedWalk object(std::string_view key) const { return {present(key), *wrongType_}; }

    /// Null where no text is.
    [[nodiscard]] const std::string* text(std::string_view key) const {
        const JSONValue* const found = present(key);
        if (found != nullptr && found->asString() == nullptr) *wrongType_ = true;
        return found == nullptr ? nullptr : found->asString();
    }

    [[nodiscard]] std::vector<FeedWalk> list(std::string_view key) const {
        std::vector<FeedWalk> elements;
        const JSONValue* const found = present(key);
        if (found == nullptr) return elements;
        if (found->asArray() == nullptr)
            *wrongType_ = true;
        else
            for (const JSONValue& element : *found->asArray())
                elements.emplace_back(&element, *wrongType_);
        return elements;
    }

private:
    [[nodiscard]] const JSONValue* present(std::string_view key) const {
        const JSONValue* found = nullptr;
        if (value_ == nullptr) return found;
        for (const auto& [name, member] : *value_->asObject()) {
            if (name != key) continue;
            if (found != nullptr) *wrongType_ = true;
            found = &member;
        }
        return found == nullptr || found->isNull() ? nullptr : found;
    }

    const JSONValue* value_;
    bool* wrongType_;
};

} // namespace kestrin
