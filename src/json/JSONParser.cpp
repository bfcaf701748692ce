#include "json/JSONParser.h"

#include "text/Shortening.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

// The library asserts that strtod has read the whole of a number, which fails in locales whose decimal separator is
// longer than one byte. Numbers with a fraction are read anew below, independent of the locale.
#define JSON_ASSERT(condition) static_cast<void>(condition)
#include <nlohmann/json.hpp>

namespace kestrin {

namespace {

/// A hostile key may be megabytes long.
constexpr std::size_t longestNamedKey = 80;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

enum class Maker { Ourselves, SomebodyElse };

/// Builds the tree from the library's events. Open containers stand on a stack of their own, so that the depth of
/// the input costs no stack of the thread. An event that returns false ends the parse; `problem` then says why.
class TreeBuilder : public nlohmann::json_sax<nlohmann::json> {
public:
    /// `size` is that of the input, in bytes.
    TreeBuilder(std::size_t size, Maker maker) : size_(size), maker_(maker) {}

    bool null() override { return add(JSONValue()); }
    bool boolean(bool value) override { return add(JSONValue(value)); }
    bool number_integer(number_integer_t value) override { return add(JSONValue(std::int64_t{value})); }
    bool number_unsigned(number_unsigned_t value) override { return add(JSONValue(std::uint64_t{value})); }

    bool number_float(number_float_t, const string_t& token) override {
        std::string text = token;
        // What is neither digit, sign nor exponent is the locale's decimal separator.
        const auto isSeparator = [](char c) {
            return std::string_view("0123456789+-eE").find(c) == std::string_view::npos;
        };
        std::ranges::replace_if(text, isSeparator, '.');
        double value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        // The library has refused what is too large, so this is too close to zero.
        const bool isZero = error == std::errc::result_out_of_range && maker_ == Maker::SomebodyElse;
        if ((error != std::errc() && !isZero) || end != text.data() + text.size())
            return fail("a number is out of range");
        return add(JSONValue(value));
    }

    bool string(string_t& value) override { return add(JSONValue(std::move(value))); }
    bool binary(binary_t&) override { return fail("it is binary"); }

    bool key(string_t& value) override {
        open_.back().keys.push_back(std::move(value));
        return true;
    }

    bool start_object(std::size_t) override { return open(true); }
    bool start_array(std::size_t) override { return open(false); }

    bool end_object() override {
        Container done = std::move(open_.back());
        open_.pop_back();
        if (maker_ == Maker::Ourselves && hasDuplicate(done.keys)) return false;
        JSONValue::Object object;
        object.reserve(done.keys.size());
        for (std::size_t i = 0; i < done.keys.size(); ++i)
            object.emplace_back(std::move(done.keys[i]), std::move(done.values[i]));
        return add(JSONValue(std::move(object)));
    }

    bool end_array() override {
        Container done = std::move(open_.back());
        open_.pop_back();
        return add(JSONValue(std::move(done.values)));
    }

    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception&) override {
        if (position > size_) return fail("it ends too early");
        return fail("byte " + std::to_string(position) + " is not acceptable");
    }

    [[nodiscard]] JSONValue take() { return std::move(root_); }
    [[nodiscard]] const std::string& problem() const { return problem_; }

private:
    struct Container {
        bool isObject = false;
        std::vector<std::string> keys; ///< of an object, one for each value
        std::vector<JSONValue> values;
    };

    bool open(bool isObject) {
        if (open_.size() >= maximumJSONDepth)
            return fail("it is nested more than " + std::to_string(maximumJSONDepth) + " levels deep");
        open_.emplace_back().isObject = isObject;
        return true;
    }

    bool add(JSONValue value) {
        if (open_.empty())
            root_ = std::move(value);
        else
            open_.back().values.push_back(std::move(value));
        return true;
    }

    /// Sorts references, since comparing every key with every other takes hours on a hostile file.
    bool hasDuplicate(const std::vector<std::string>& keys) {
        std::vector<std::string_view> sorted(keys.begin(), keys.end());
        std::ranges::sort(sorted);
        const auto twice = std::ranges::adjacent_find(sorted);
        if (twice == sorted.end()) return false;
        fail("the key “" + shortenedForDisplay(*twice, longestNamedKey) + "” stands there twice");
        return true;
    }

    bool fail(std::string problem) {
        problem_ = std::move(problem);
        return false;
    }

    std::size_t size_;
    Maker maker_;
    JSONValue root_;
    std::vector<Container> open_;
    std::string problem_;
};

[[noreturn]] void refuse(const std::string& problem) {
    throw JSONError("This is not valid JSON: " + problem + ".");
}

JSONValue parse(std::string_view text, Maker maker) {
    // The library takes a NUL for the end of the text.
    if (const auto nul = text.find('\0'); nul != std::string_view::npos)
        refuse("byte " + std::to_string(nul + 1) + " is not acceptable");
    try {
        TreeBuilder builder(text.size(), maker);
        if (!nlohmann::json::sax_parse(text.data(), text.data() + text.size(), &builder)) refuse(builder.problem());
        return builder.take();
    } catch (const std::bad_alloc&) {
        refuse("it is too large for the memory");
    } catch (const std::length_error&) {
        refuse("it is too large for the memory");
    }
}

} // namespace

JSONValue parseJSON(std::string_view text) {
    // Which the library skips.
    if (text.starts_with(byteOrderMark)) refuse("it begins with a byte order mark");
    return parse(text, Maker::Ourselves);
}

JSONValue parseForeignJSON(std::string_view text) {
    return parse(text, Maker::SomebodyElse);
}

} // namespace kestrin
