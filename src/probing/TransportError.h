#pragma once

#include "model/MessageError.h"

namespace kestrin {

/// The network or the server failed: a time-out, no route, a certificate that is not trusted. Nothing was refused
/// by us. The message is the sentence that the transport chose.
struct TransportError : MessageError {
    using MessageError::MessageError;
};

} // namespace kestrin
