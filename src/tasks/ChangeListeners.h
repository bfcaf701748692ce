#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace kestrin {

/// Who wants to hear that a model has changed. One thread. A listener may add and remove listeners: one that is
/// added while a change is announced hears of the next, one that is removed hears nothing more.
class ChangeListeners {
    struct Listener {
        std::function<void()> call;
        bool hasEnded = false;
    };
    using Listeners = std::vector<std::shared_ptr<Listener>>;

public:
    /// Ends with its destruction. It may outlive the model.
    class [[nodiscard]] Subscription {
    public:
        Subscription() = default;
        Subscription(std::weak_ptr<Listeners> listeners, std::shared_ptr<Listener> listener)
            : listeners_(std::move(listeners)), listener_(std::move(listener)) {}
        Subscription(Subscription&&) noexcept = default;
        Subscription& operator=(Subscription&& other) noexcept {
            if (this == &other) return *this;
            end();
            listeners_ = std::exchange(other.listeners_, {});
            listener_ = std::exchange(other.listener_, nullptr);
            return *this;
        }
        ~Subscription() { end(); }

        void end() {
            if (!listener_) return;
            listener_->hasEnded = true;
            if (const auto listeners = listeners_.lock()) std::erase(*listeners, listener_);
            listener_ = nullptr;
        }

    private:
        std::weak_ptr<Listeners> listeners_;
        std::shared_ptr<Listener> listener_;
    };

    Subscription add(std::function<void()> call) {
        auto listener = std::make_shared<Listener>(std::move(call));
        listeners_->push_back(listener);
        return Subscription(listeners_, std::move(listener));
    }

    /// Calls them in the order in which they were added.
    void announce() const {
        const Listeners present = *listeners_;
        for (const auto& listener : present)
            if (!listener->hasEnded) listener->call();
    }

private:
    std::shared_ptr<Listeners> listeners_ = std::make_shared<Listeners>();
};

} // namespace kestrin
