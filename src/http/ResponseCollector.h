#pragma once

#include "http/BoundedResponseBody.h"
#include "http/HTTPHop.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

/// Builds one response from header lines and pieces of body in the order of their arrival, and says when nothing
/// more of it is wanted: at the head for headers only and for redirects, at a head that declares too long a body,
/// and at the piece that crosses the limit. Knows nothing of the connection. One thread.
class ResponseCollector {
public:
    enum class State { Reading, Complete, TooLarge, Invalid };
    enum class Next { Continue, Stop };

    /// Heads, interim ones and trailers together, may take so many bytes; more is an invalid response.
    static constexpr std::size_t maximumHeadBytes = 256 * 1024;

    ResponseCollector(bool headersOnly, std::int64_t maximumBodyBytes);

    /// One line with its line end: a status line, a field, or the blank line that ends a head. Lines behind the
    /// final head are trailers, of which nothing is kept.
    [[nodiscard]] Next takeHeaderLine(std::string_view line);
    [[nodiscard]] Next takeBody(std::string_view bytes);

    /// Stays `Reading` where only the end of the connection ends the response.
    [[nodiscard]] State state() const { return state_; }
    /// The server has sent a status line.
    [[nodiscard]] bool hasStatus() const { return statusSeen_; }
    /// A final head was read to its blank line.
    [[nodiscard]] bool hasHead() const { return headEnded_; }
    /// To be taken once, and only with `hasHead()`.
    [[nodiscard]] HTTPHopResponse takeResponse();

private:
    Next stop(State state);
    Next startHead(std::string_view line);
    void takeField(std::string_view line);
    void finishField();
    Next endHead();

    bool headersOnly_;
    BoundedResponseBody body_;
    State state_ = State::Reading;
    bool statusSeen_ = false;
    bool headEnded_ = false;
    std::size_t headBytes_ = 0;
    std::optional<HTTPHeader> openField_; ///< may go on in the next line, as old servers fold long fields
    std::optional<std::string> declaredLength_;
    bool contradictoryLength_ = false;
    bool chunked_ = false;
    HTTPHopResponse response_;
};

} // namespace kestrin
