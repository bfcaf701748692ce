#pragma once

#include "model/MessageError.h"

namespace kestrin {

/// A text that is no JSON, or JSON that is not what its reader needs. The message names the key that is at fault.
struct JSONError : MessageError {
    using MessageError::MessageError;
};

} // namespace kestrin
