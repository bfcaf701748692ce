#include "json/JSONWriter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace kestrin {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

struct Sequence {
    std::size_t length; ///< bytes that belong together
    bool valid;
};

/// The UTF-8 sequence at the front of a text that is not empty. Of a bad one the longest part that could have been
/// the beginning of a good one, so that a broken letter becomes one replacement character.
Sequence sequenceAt(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const std::uint8_t lead = byte(0);
    if (lead < 0x80) return {1, true};
    if (lead < 0xC2 || lead > 0xF4) return {1, false};
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    // Only the second byte's range depends on the first: no overlong forms, no surrogates, nothing above U+10FFFF.
    std::uint8_t low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    std::uint8_t high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    for (std::size_t i = 1; i < length; ++i) {
        if (i >= text.size() || byte(i) < low || byte(i) > high) return {i, false};
        low = 0x80;
        high = 0xBF;
    }
    return {length, true};
}

/// A byte that stands for itself inside a string.
bool isPlain(char c) {
    return static_cast<unsigned char>(c) >= 0x20 && static_cast<unsigned char>(c) < 0x80 && c != '"' && c != '\\';
}

/// Sorts members by the bytes of their keys, equal ones as they were given.
bool isBefore(const JSONValue::Member* left, const JSONValue::Member* right) {
    const int order = left->first.compare(right->first);
    return order != 0 ? order < 0 : left < right;
}

class Emitter {
public:
    explicit Emitter(bool pretty) : pretty_(pretty) {}

    void emit(const JSONValue& value) {
        if (const auto* object = value.asObject()) return emitObject(*object);
        if (const auto* array = value.asArray()) return emitArray(*array);
        if (const auto* string = value.asString()) return emitString(*string);
        if (const auto* boolean = value.asBoolean()) return append(*boolean ? "true" : "false");
        if (const auto* number = value.asDouble()) return emitDouble(*number);
        if (const auto integer = value.signedInteger()) return append(std::to_string(*integer));
        if (const auto integer = value.unsignedInteger()) return append(std::to_string(*integer));
        append("null");
    }

    [[nodiscard]] std::string take() { return std::move(out_); }

private:
    void append(std::string_view text) { out_ += text; }

    void emitObject(const JSONValue::Object& object) {
        std::vector<const JSONValue::Member*> members;
        members.reserve(object.size());
        for (const JSONValue::Member& member : object)
            members.push_back(&member);
        if (pretty_) std::ranges::sort(members, isBefore);
        open('{');
        for (const JSONValue::Member* member : members) {
            separate(member == members.front());
            emitString(member->first);
            append(pretty_ ? ": " : ":");
            emit(member->second);
        }
        close('}', members.empty());
    }

    void emitArray(const JSONValue::Array& array) {
        open('[');
        for (const JSONValue& element : array) {
            separate(&element == &array.front());
            emit(element);
        }
        close(']', array.empty());
    }

    void open(char bracket) {
        out_ += bracket;
        ++depth_;
    }

    void separate(bool first) {
        if (!first) out_ += ',';
        breakLine();
    }

    void close(char bracket, bool empty) {
        --depth_;
        if (!empty) breakLine();
        out_ += bracket;
    }

    void breakLine() {
        if (!pretty_) return;
        out_ += '\n';
        out_.append(2 * depth_, ' ');
    }

    void emitDouble(double value) {
        if (!std::isfinite(value)) return append("null");
        std::array<char, 32> digits{};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
        out_.append(digits.data(), end);
    }

    void emitString(std::string_view text) {
        out_ += '"';
        while (!text.empty()) {
            const auto special = std::ranges::find_if_not(text, isPlain);
            const auto plain = static_cast<std::size_t>(special - text.begin());
            append(text.substr(0, plain));
            text.remove_prefix(plain);
            if (!text.empty()) text.remove_prefix(emitSpecial(text));
        }
        out_ += '"';
    }

    /// Writes the first letter of the text and says how many bytes it took.
    std::size_t emitSpecial(std::string_view text) {
        const Sequence sequence = sequenceAt(text);
        if (!sequence.valid)
            append(replacement);
        else if (sequence.length == 1)
            emitASCII(text.front());
        else
            append(text.substr(0, sequence.length));
        return sequence.length;
    }

    void emitASCII(char c) {
        constexpr std::string_view hexadecimal = "0123456789abcdef";
        switch (c) {
        case '"':
            return append("\\\"");
        case '\\':
            return append("\\\\");
        case '\b':
            return append("\\b");
        case '\f':
            return append("\\f");
        case '\n':
            return append("\\n");
        case '\r':
            return append("\\r");
        case '\t':
            return append("\\t");
        default:
            break;
        }
        append("\\u00");
        out_ += hexadecimal[static_cast<unsigned char>(c) >> 4];
        out_ += hexadecimal[static_cast<unsigned char>(c) & 0xF];
    }

    bool pretty_;
    std::size_t depth_ = 0;
    std::string out_;
};

std::string written(const JSONValue& value, bool pretty) {
    Emitter emitter(pretty);
    emitter.emit(value);
    return emitter.take();
}

} // namespace

std::string writePretty(const JSONValue& value) {
    return written(value, true) + "\n";
}
std::string writeCompact(const JSONValue& value) {
    return written(value, false);
}

} // namespace kestrin
