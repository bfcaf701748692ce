#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

namespace kestrin {

/// Judges a JSON text strictly and finds the members of its outermost object, in memory that does not grow with the
/// text: a parser takes ten bytes and more for each byte of a text that consists of brackets. Says the same as the
/// parser of history lines, also of how deep values may nest. For one text; one thread.
class JSONObjectWalk {
public:
    /// A member of the outermost object, both parts as they stand in the text, strings with quotes.
    using MemberHandler = std::function<void(std::string_view key, std::string_view value)>;
    /// Judges the scalars that are not simple: numbers that are no short integers, strings with `\u`.
    using ScalarJudge = std::function<bool(std::string_view scalar)>;

    JSONObjectWalk(std::string_view text, MemberHandler onMember, ScalarJudge isScalar)
        : text_(text), onMember_(std::move(onMember)), isScalar_(std::move(isScalar)) {}

    /// Whether the text is one JSON object, apart from its encoding: that strings hold UTF-8 is not looked at.
    /// Members may have been handed out when it is not.
    [[nodiscard]] bool run();

private:
    static constexpr std::size_t maximumDepth = 1024;
    enum class Container : bool { Array, Object };

    bool walkValues();
    bool beginValue();
    bool open(Container kind);
    bool key();
    bool endValue();
    bool string();
    bool number();
    bool literal(std::string_view expected);
    bool pass(char expected);
    void passBlanks();
    [[nodiscard]] char next() const { return at_ < text_.size() ? text_[at_] : '\0'; }

    std::string_view text_;
    MemberHandler onMember_;
    ScalarJudge isScalar_;
    std::size_t at_ = 0;
    std::size_t depth_ = 0;             ///< how many containers are open
    std::bitset<maximumDepth> objects_; ///< which of them are objects
    bool valueEnded_ = false;
    std::string_view memberKey_;
    std::size_t memberBegin_ = 0;
};

} // namespace kestrin
