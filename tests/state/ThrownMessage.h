#pragma once

#include "model/MessageError.h"

#include <string>
#include <utility>

namespace kestrin {

/// The message of the error of that very type which the action throws; other types and no error say so instead.
template <class Error, class Action> std::string thrownMessage(Action&& action) {
    try {
        std::forward<Action>(action)();
    } catch (const Error& error) {
        return error.message;
    } catch (const MessageError& error) {
        return "another type of error: " + error.message;
    }
    return "no error";
}

} // namespace kestrin
