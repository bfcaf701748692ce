#pragma once

#include "model/MessageError.h"

namespace kestrin {

/// A file of the state directory is unsafe, too large, or changed while it was being replaced.
struct AtomicStateFileError : MessageError {
    using MessageError::MessageError;
};

/// A path inside the state directory is unsafe.
struct StatePathError : MessageError {
    using MessageError::MessageError;
};

/// A configuration or an identifier is not acceptable.
struct StateValidationError : MessageError {
    using MessageError::MessageError;
};

/// "sites.json" or its backups cannot be read.
struct ConfigurationReadError : MessageError {
    using MessageError::MessageError;
};

/// A history file cannot be read, or changed meanwhile.
struct HistoryReadError : MessageError {
    using MessageError::MessageError;
};

/// A record or a configuration was refused on writing.
struct StateWriteError : MessageError {
    using MessageError::MessageError;
};

/// A failure of the operating system. `code` is the `errno`, or `EIO` for a number that is none; the message is the
/// system's English sentence for it, the same in every locale, for instance "No space left on device".
struct POSIXError : MessageError {
    explicit POSIXError(int errorNumber);

    int code;
};

/// Throws what `errno` says now.
[[noreturn]] void throwPOSIXError();

} // namespace kestrin
