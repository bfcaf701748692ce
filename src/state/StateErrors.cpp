#include "state/StateErrors.h"

#include <cerrno>
#include <cstring>

namespace kestrin {

namespace {

int knownCode(int errorNumber) {
    return ::strerrordesc_np(errorNumber) == nullptr ? EIO : errorNumber;
}

} // namespace

// Not strerror: it answers in the user's language, while every other sentence is English.
POSIXError::POSIXError(int errorNumber)
    : MessageError(::strerrordesc_np(knownCode(errorNumber))), code(knownCode(errorNumber)) {}

void throwPOSIXError() {
    throw POSIXError(errno);
}

} // namespace kestrin
