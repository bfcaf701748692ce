#include "tasks/WeakReference.h"

#include <gtest/gtest.h>

#include <optional>

namespace kestrin {
namespace {

struct Owner {
    WeakReferenceSource<Owner> self{*this};
};

TEST(AWeakReference, givesTheObjectWhileItLives) {
    const Owner owner;
    EXPECT_EQ(owner.self.reference().get(), &owner);
}

TEST(AWeakReference, givesNothingOnceTheObjectIsGone) {
    std::optional<Owner> owner(std::in_place);
    const WeakReference<Owner> reference = owner->self.reference();
    const WeakReference<Owner> copy = reference;
    owner.reset();
    EXPECT_EQ(reference.get(), nullptr);
    EXPECT_EQ(copy.get(), nullptr);
}

} // namespace
} // namespace kestrin
