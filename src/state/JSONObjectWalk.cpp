#include "state/JSONObjectWalk.h"

namespace kestrin {

namespace {

bool isDigit(char letter) {
    return letter >= '0' && letter <= '9';
}

} // namespace

bool JSONObjectWalk::run() {
    passBlanks();
    if (next() != '{' || !walkValues()) return false;
    passBlanks();
    return at_ == text_.size();
}

/// From the beginning of a value to its end, without recursion.
bool JSONObjectWalk::walkValues() {
    do {
        if (!(valueEnded_ ? endValue() : beginValue())) return false;
    } while (depth_ > 0 || !valueEnded_);
    return true;
}

/// Passes a scalar or an empty container, or enters one up to its first value.
bool JSONObjectWalk::beginValue() {
    valueEnded_ = true;
    switch (next()) {
    case '{':
        return open(Container::Object);
    case '[':
        return open(Container::Array);
    case '"':
        return string();
    case 't':
        return literal("true");
    case 'f':
        return literal("false");
    case 'n':
        return literal("null");
    default:
        return number();
    }
}

bool JSONObjectWalk::open(Container kind) {
    ++at_;
    passBlanks();
    if (pass(kind == Container::Object ? '}' : ']')) return true; // an empty one does not count as a level
    if (depth_ + 1 == maximumDepth) return false;
    objects_[depth_++] = kind == Container::Object;
    valueEnded_ = false;
    return kind == Container::Array || key();
}

/// Up to the value of the member.
bool JSONObjectWalk::key() {
    const std::size_t begin = at_;
    if (next() != '"' || !string()) return false;
    if (depth_ == 1) memberKey_ = text_.substr(begin, at_ - begin);
    passBlanks();
    if (!pass(':')) return false;
    passBlanks();
    if (depth_ == 1) memberBegin_ = at_;
    return true;
}

/// From the end of a value to the next one, or out of the container.
bool JSONObjectWalk::endValue() {
    const bool inObject = objects_[depth_ - 1];
    if (depth_ == 1) onMember_(memberKey_, text_.substr(memberBegin_, at_ - memberBegin_));
    passBlanks();
    if (pass(',')) {
        passBlanks();
        valueEnded_ = false;
        return !inObject || key();
    }
    --depth_;
    return pass(inObject ? '}' : ']');
}

bool JSONObjectWalk::string() {
    constexpr std::string_view simpleEscapes = "\"\\/bfnrt";
    const std::size_t begin = at_++;
    bool simple = true;
    for (; at_ < text_.size(); ++at_) {
        const char letter = text_[at_];
        if (letter == '"') {
            ++at_;
            return simple || isScalar_(text_.substr(begin, at_ - begin));
        }
        if (static_cast<unsigned char>(letter) < 0x20) return false;
        if (letter != '\\') continue;
        ++at_;
        if (next() == 'u')
            simple = false;
        else if (at_ == text_.size() || simpleEscapes.find(text_[at_]) == std::string_view::npos)
            return false;
    }
    return false;
}

bool JSONObjectWalk::number() {
    constexpr std::size_t digitsThatNeverOverflow = 18;
    const std::size_t begin = at_;
    pass('-');
    const std::size_t firstDigit = at_;
    while (isDigit(next()))
        ++at_;
    const std::size_t digits = at_ - firstDigit;
    if (digits == 0) return false;
    const std::string_view rest = text_.substr(at_);
    const bool integer = rest.empty() || std::string_view(".eE").find(rest.front()) == std::string_view::npos;
    if (integer && digits <= digitsThatNeverOverflow) return digits == 1 || text_[firstDigit] != '0';
    while (isDigit(next()) || (next() != '\0' && std::string_view(".eE+-").find(next()) != std::string_view::npos))
        ++at_;
    return isScalar_(text_.substr(begin, at_ - begin));
}

bool JSONObjectWalk::literal(std::string_view expected) {
    if (!text_.substr(at_).starts_with(expected)) return false;
    at_ += expected.size();
    return true;
}

bool JSONObjectWalk::pass(char expected) {
    if (at_ == text_.size() || text_[at_] != expected) return false;
    ++at_;
    return true;
}

void JSONObjectWalk::passBlanks() {
    while (
        at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\t' || text_[at_] == '\r' || text_[at_] == '\n'))
        ++at_;
}

} // namespace kestrin
