#pragma once

#include <memory>
#include <utility>

namespace kestrin {

/// A task's way to an object that it does not own. `get` gives the object, or null once it is gone, and is called
/// on the object's thread only; the pointer is good until the next `co_await`. Copies may be destroyed on any
/// thread.
template <class T> class WeakReference {
public:
    explicit WeakReference(std::shared_ptr<T* const> place) : place_(std::move(place)) {}
    [[nodiscard]] T* get() const { return *place_; }

private:
    std::shared_ptr<T* const> place_;
};

/// A member of the object, from which its weak references are made. They are null from its destruction on.
template <class T> class WeakReferenceSource {
public:
    explicit WeakReferenceSource(T& object) : place_(std::make_shared<T*>(&object)) {}
    ~WeakReferenceSource() { *place_ = nullptr; }
    WeakReferenceSource(const WeakReferenceSource&) = delete;
    WeakReferenceSource& operator=(const WeakReferenceSource&) = delete;

    [[nodiscard]] WeakReference<T> reference() const { return WeakReference<T>(place_); }

private:
    std::shared_ptr<T*> place_;
};

} // namespace kestrin
