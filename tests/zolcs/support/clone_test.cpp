#include "zolcs/support/clone.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>

namespace {

/// Has no memory for a copy when it is told so.
struct Original {
    Original() = default;
    Original(const Original& other) : number(other.number) {
        if (other.isTooLarge) throw std::bad_alloc();
    }
    Original& operator=(const Original&) = delete;
    ~Original() = default;

    int number = 0;
    bool isTooLarge = false;
};

TEST(Clone, IsACopyOrNullWithoutMemory) {
    Original original;
    original.number = 7;
    const std::unique_ptr<Original> copy(zolcs::cloneOf(original));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->number, 7);
    original.isTooLarge = true;
    EXPECT_EQ(zolcs::cloneOf(original), nullptr);
}

}  // namespace
