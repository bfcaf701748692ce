#pragma once

#include <functional>

namespace kestrin {

/// Runs what is posted to it, one thing at a time, in the order of posting, and never inside `post` itself.
/// `post` may be called from any thread. State that only one executor touches needs no lock.
class Executor {
public:
    virtual ~Executor() = default;
    virtual void post(std::function<void()> work) = 0;
};

} // namespace kestrin
