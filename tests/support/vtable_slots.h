// Where a virtual function stands in its class's table: the order is part of the interface.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zoltest {

/// Number of the table's entry behind a pointer to a virtual member function, for the C++ ABI that GCC and Clang share
/// on Linux and Windows. The destructor takes two entries there.
template <typename Member>
std::size_t tableEntry(Member member) {
    std::uintptr_t offsetPlusOne = 0;
    static_assert(sizeof member >= sizeof offsetPlusOne);
    std::memcpy(&offsetPlusOne, &member, sizeof offsetPlusOne);
    return (offsetPlusOne - 1) / sizeof(void*);
}

}  // namespace zoltest
