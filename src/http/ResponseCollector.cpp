#include "http/ResponseCollector.h"

#include "text/ASCIICase.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace kestrin {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Three digits behind the protocol's version, or nothing.
std::optional<int> statusOf(std::string_view line) {
    const auto blank = line.find(' ');
    if (blank == std::string_view::npos) return std::nullopt;
    const auto digits = line.substr(blank + 1, 3);
    int status = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), status);
    const bool whole = error == std::errc() && digits.size() == 3 && end == digits.data() + 3;
    const bool followed = line.size() > blank + 4 && std::string_view(" \r\n").contains(line[blank + 4]);
    if (!whole || !followed || status < 100) return std::nullopt;
    return status;
}

/// A length beyond 64 bits is a length beyond every limit.
std::optional<std::uint64_t> lengthOf(std::string_view text) {
    const bool digits =
        !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!digits) return std::nullopt;
    std::uint64_t length = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    return error == std::errc::result_out_of_range ? UINT64_MAX : length;
}

} // namespace

ResponseCollector::ResponseCollector(bool headersOnly, std::int64_t maximumBodyBytes)
    : headersOnly_(headersOnly),
      body_{.limit = static_cast<std::uint64_t>(std::max<std::int64_t>(0, maximumBodyBytes)), .data = {}} {}

ResponseCollector::Next ResponseCollector::stop(State state) {
    state_ = state;
    return Next::Stop;
}

ResponseCollector::Next ResponseCollector::takeHeaderLine(std::string_view line) {
    headBytes_ += line.size();
    if (headBytes_ > maximumHeadBytes) return stop(State::Invalid);
    if (headEnded_) return Next::Continue;
    if (line == "\r\n" || line == "\n" || line.empty()) return endHead();
    if (line.starts_with("HTTP/") && response_.status == 0) return startHead(line);
    takeField(line);
    return Next::Continue;
}

ResponseCollector::Next ResponseCollector::startHead(std::string_view line) {
    const auto status = statusOf(line);
    // Nobody asked to switch protocols, so what follows a 101 is not HTTP.
    if (!status || *status == 101) return stop(State::Invalid);
    response_.status = *status;
    statusSeen_ = true;
    return Next::Continue;
}

void ResponseCollector::takeField(std::string_view line) {
    if (openField_ && (line.front() == ' ' || line.front() == '\t')) {
        const auto more = trimmed(line);
        if (!more.empty() && !openField_->value.empty()) openField_->value += ' ';
        openField_->value += more;
        return;
    }
    finishField();
    const auto colon = line.find(':');
    if (colon == std::string_view::npos) return;
    openField_ =
        HTTPHeader{asciiLowercase(trimmed(line.substr(0, colon))), std::string(trimmed(line.substr(colon + 1)))};
}

void ResponseCollector::finishField() {
    if (!openField_) return;
    const HTTPHeader field = *std::exchange(openField_, std::nullopt);
    if (field.name == "location") {
        response_.locations.push_back(field.value);
    } else if (field.name == "content-type") {
        if (!response_.contentType) response_.contentType = field.value;
    } else if (field.name == "transfer-encoding") {
        chunked_ = true;
    } else if (field.name == "content-length") {
        contradictoryLength_ = contradictoryLength_ || (declaredLength_ && *declaredLength_ != field.value);
        declaredLength_ = field.value;
    }
}

ResponseCollector::Next ResponseCollector::endHead() {
    finishField();
    if (response_.status == 0) return stop(State::Invalid);
    if (response_.status < 200) {
        response_ = {};
        declaredLength_.reset();
        contradictoryLength_ = chunked_ = false;
        return Next::Continue;
    }
    headEnded_ = true;
    if (headersOnly_ || response_.isRedirect()) return stop(State::Complete);

    // A chunked body has no declared length, and these statuses have no body whatever is declared.
    const bool bodiless = response_.status == 204 || response_.status == 304;
    if (declaredLength_ && !chunked_ && !bodiless) {
        const auto length = lengthOf(*declaredLength_);
        if (!length || contradictoryLength_) return stop(State::Invalid);
        if (*length > body_.limit) return stop(State::TooLarge);
    }
    return Next::Continue;
}

ResponseCollector::Next ResponseCollector::takeBody(std::string_view bytes) {
    if (!headEnded_) return stop(State::Invalid);
    return body_.append(bytes) ? Next::Continue : stop(State::TooLarge);
}

HTTPHopResponse ResponseCollector::takeResponse() {
    response_.body = std::move(body_.data);
    return std::move(response_);
}

} // namespace kestrin
