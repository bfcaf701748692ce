#pragma once

#include "model/MessageError.h"

namespace kestrin {

/// The added services cannot be read or saved.
struct CustomProviderStoreError : MessageError {
    using MessageError::MessageError;
};

} // namespace kestrin
