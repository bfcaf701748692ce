#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

/// Turns a list of numbers, which a property's search makes up and makes smaller, into decisions. When the numbers
/// run out every decision is the first one, so put the plainest first: that is what a counterexample shrinks to.
class Choices {
public:
    explicit Choices(const std::vector<std::uint32_t>& numbers) : numbers_(numbers) {}

    /// From 0 to `bound` - 1.
    std::size_t below(std::size_t bound) { return used_ < numbers_.size() ? numbers_[used_++] % bound : 0; }
    bool once(std::size_t in) { return below(in) == in - 1; }
    std::string of(std::span<const std::string_view> texts) { return std::string(texts[below(texts.size())]); }

private:
    const std::vector<std::uint32_t>& numbers_;
    std::size_t used_ = 0;
};

/// Makes RapidCheck try the same cases on every run, unless the environment's RC_PARAMS asks for others. To be
/// defined once in a file of properties.
struct RepeatableCases {
    explicit RepeatableCases(const char* parameters) { ::setenv("RC_PARAMS", parameters, 0); }
};

} // namespace kestrin
