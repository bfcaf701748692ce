#include "platform/XSettings.h"

#include <utility>

namespace kestrin {

namespace {

enum class Type : std::uint8_t { Integer, String, Colour };
constexpr std::size_t colourBytes = 8;

/// Goes through bytes and never past their end. What was asked for beyond it is zero or empty, and `failed` from
/// then on.
class Reader {
public:
    explicit Reader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    void setBigEndian(bool bigEndian) { bigEndian_ = bigEndian; }
    [[nodiscard]] bool failed() const { return failed_; }

    std::span<const std::uint8_t> take(std::size_t count) {
        if (count > bytes_.size()) {
            failed_ = true;
            bytes_ = {};
            return {};
        }
        const auto taken = bytes_.first(count);
        bytes_ = bytes_.subspan(count);
        return taken;
    }

    std::uint32_t number(std::size_t width) {
        std::uint32_t value = 0;
        const auto taken = take(width);
        for (std::size_t i = 0; i < taken.size(); ++i)
            value = (value << 8) | taken[bigEndian_ ? i : taken.size() - 1 - i];
        return value;
    }

    /// Texts are filled up to a multiple of four bytes.
    std::string text(std::size_t length) {
        const auto taken = take(length);
        take((4 - length % 4) % 4);
        return {taken.begin(), taken.end()};
    }

private:
    std::span<const std::uint8_t> bytes_;
    bool bigEndian_ = false;
    bool failed_ = false;
};

} // namespace

std::optional<XSettings> parseXSettings(std::span<const std::uint8_t> bytes) {
    Reader reader(bytes);
    const std::uint32_t byteOrder = reader.number(1);
    if (byteOrder > 1) return std::nullopt;
    reader.setBigEndian(byteOrder == 1);
    reader.take(3);
    reader.number(4); // the serial
    XSettings settings;
    for (std::uint32_t left = reader.number(4); left > 0 && !reader.failed(); --left) {
        const std::uint32_t type = reader.number(1);
        reader.take(1);
        std::string name = reader.text(reader.number(2));
        reader.number(4); // the serial of the last change
        if (type == std::to_underlying(Type::Integer))
            settings[std::move(name)] = static_cast<std::int32_t>(reader.number(4));
        else if (type == std::to_underlying(Type::String))
            settings[std::move(name)] = reader.text(reader.number(4));
        else if (type == std::to_underlying(Type::Colour))
            reader.take(colourBytes);
        else
            return std::nullopt;
    }
    if (reader.failed()) return std::nullopt;
    return settings;
}

} // namespace kestrin
