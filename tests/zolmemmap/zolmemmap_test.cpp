#include "zolmemmap/zolmemmap.h"

#if !defined(_WIN32)
#include "support/file_limit.h"
#endif

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

namespace {

using Buffer = std::unique_ptr<ZolMemMappedBuffer>;

ZolMemMappedManager& manager() { return *ZolMemMappedManager::getIntance(); }

Buffer make(unsigned int bytes, unsigned long guard, bool mapped) {
    return Buffer(manager().allocateMapMemory(bytes, guard, mapped, false));
}

/// Restores the manager's settings and expects that nothing is left behind.
class ZolMemMap : public testing::Test {
protected:
    void TearDown() override {
        manager().setLimit(std::numeric_limits<std::size_t>::max());
        manager().setUseMappings(true);
        EXPECT_EQ(manager().getBytesInUse(), before_);
    }
    [[nodiscard]] std::size_t inUse() const { return manager().getBytesInUse() - before_; }

private:
    std::size_t before_ = manager().getBytesInUse();
};

TEST_F(ZolMemMap, IsOneForTheProcess) {
    EXPECT_NE(ZolMemMappedManager::getIntance(), nullptr);
    EXPECT_EQ(ZolMemMappedManager::getIntance(), ZolMemMappedManager::getIntance());
}

TEST_F(ZolMemMap, NewMemoryIsZeroAndCanBeWrittenGuardsIncluded) {
    for (const bool mapped : {false, true}) {
        for (const unsigned int bytes : {1U, 66U, 4096U, 100001U}) {
            for (const unsigned long guard : {0UL, 1UL, 18UL, 64UL, 5000UL}) {
                const Buffer buffer = make(bytes, guard, mapped);
                ASSERT_NE(buffer, nullptr);
                unsigned char* const data = buffer->lock();
                ASSERT_NE(data, nullptr);
                unsigned char* const first = data - guard;
                unsigned char* const last = data + bytes + guard;
                EXPECT_TRUE(std::all_of(first, last, [](unsigned char byte) { return byte == 0; }));
                std::fill(first, last, static_cast<unsigned char>(0xA5));
                EXPECT_EQ(std::count(first, last, static_cast<unsigned char>(0xA5)), last - first);
                buffer->unlock(0, 1);
            }
        }
    }
}

TEST_F(ZolMemMap, MemoryIsZeroAgainWhenItIsReused) {
    for (const bool mapped : {false, true}) {
        for (int round = 0; round < 4; ++round) {
            const Buffer buffer = make(70000, 300, mapped);
            unsigned char* const data = buffer->lock();
            EXPECT_TRUE(std::all_of(data, data + 70000, [](unsigned char byte) { return byte == 0; }));
            std::fill(data, data + 70000, static_cast<unsigned char>(round + 1));
        }
    }
}

TEST_F(ZolMemMap, PixelsStartAtAMultipleOf64) {
    for (const bool mapped : {false, true}) {
        for (unsigned long guard = 0; guard < 130; ++guard) {
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(make(10, guard, mapped)->lock()) % 64, 0U);
        }
    }
}

TEST_F(ZolMemMap, TheFlagChoosesBetweenMappingAndHeap) {
    EXPECT_EQ(make(100, 10, false)->getMapHandle(), nullptr);
    EXPECT_NE(make(100, 10, true)->getMapHandle(), nullptr);
    // The switch concerns DIB sections only.
    manager().setUseMappings(false);
    EXPECT_NE(make(100, 10, true)->getMapHandle(), nullptr);
}

TEST_F(ZolMemMap, TheReservedFlagChangesNothing) {
    const Buffer heap(manager().allocateMapMemory(10, 2, false, true));
    const Buffer mapped(manager().allocateMapMemory(10, 2, true, true));
    EXPECT_EQ(heap->getMapHandle(), nullptr);
    EXPECT_NE(mapped->getMapHandle(), nullptr);
}

TEST_F(ZolMemMap, CountsBytesWithBothGuards) {
    {
        const Buffer heap = make(66, 18, false);
        EXPECT_EQ(heap->getSize(), 66U);
        EXPECT_EQ(inUse(), 66U + 2 * 18);
        const Buffer mapped = make(1000, 0, true);
        EXPECT_EQ(inUse(), 66U + 2 * 18 + 1000);
        const Buffer dib(manager().allocateMemoryOnlyOnMap(96));
        EXPECT_EQ(inUse(), 66U + 2 * 18 + 1000 + 96);
    }
    EXPECT_EQ(inUse(), 0U);
}

TEST_F(ZolMemMap, NoBytesAreABufferOfSizeZero) {
    for (const bool mapped : {false, true}) {
        const Buffer buffer = make(0, 0, mapped);
        ASSERT_NE(buffer, nullptr);
        EXPECT_EQ(buffer->getSize(), 0U);
        EXPECT_NE(buffer->lock(), nullptr);
    }
}

TEST_F(ZolMemMap, SizesThatOverflowGiveNull) {
    if (sizeof(unsigned long) < sizeof(std::size_t)) GTEST_SKIP() << "no guard is so large that sums overflow here";
    constexpr auto mostGuard = std::numeric_limits<unsigned long>::max();
    for (const bool mapped : {false, true}) {
        EXPECT_EQ(make(1, mostGuard, mapped), nullptr);
        EXPECT_EQ(make(1, mostGuard / 2, mapped), nullptr);
        EXPECT_EQ(make(1, mostGuard / 2 + 1, mapped), nullptr);
        EXPECT_EQ(make(std::numeric_limits<unsigned int>::max(), mostGuard / 2 - 40, mapped), nullptr);
    }
    EXPECT_EQ(inUse(), 0U);
}

TEST_F(ZolMemMap, TheLimitIsReachedExactly) {
    const std::size_t before = manager().getBytesInUse();
    for (const bool mapped : {false, true}) {
        manager().setLimit(before + 100 + 2 * 7);
        {
            const Buffer fits = make(100, 7, mapped);
            ASSERT_NE(fits, nullptr);
            EXPECT_EQ(make(1, 0, mapped), nullptr);
            EXPECT_EQ(manager().allocateMemoryOnlyOnMap(1), nullptr);
            EXPECT_EQ(inUse(), 114U);
        }
        manager().setLimit(before + 100 + 2 * 7 - 1);
        EXPECT_EQ(make(100, 7, mapped), nullptr);
        EXPECT_EQ(inUse(), 0U);
    }
}

TEST_F(ZolMemMap, ALimitBelowWhatIsInUseRefusesEverything) {
    const Buffer one = make(1000, 0, false);
    manager().setLimit(0);
    EXPECT_EQ(make(1, 0, false), nullptr);
    manager().setLimit(std::numeric_limits<std::size_t>::max());
    EXPECT_NE(make(1, 0, false), nullptr);
}

#if !defined(_WIN32)
TEST_F(ZolMemMap, AMappingThatCannotBeMadeIsNotReplacedByTheHeap) {
    const zoltest::FileLimit limit(1000);
    EXPECT_EQ(make(2000, 0, true), nullptr);
    EXPECT_EQ(manager().allocateMemoryOnlyOnMap(2000), nullptr);
    EXPECT_EQ(inUse(), 0U);
    EXPECT_NE(make(2000, 0, false), nullptr);
}
#endif

TEST_F(ZolMemMap, DibMemoryIsOneMappingThatTheHandleShows) {
    const Buffer buffer(manager().allocateMemoryOnlyOnMap(96));
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(buffer->getSize(), 96U);
    ASSERT_NE(buffer->getMapHandle(), nullptr);
    unsigned char* const data = buffer->lock();
    ASSERT_NE(data, nullptr);
    EXPECT_TRUE(std::all_of(data, data + 96, [](unsigned char byte) { return byte == 0; }));
    data[0] = 1;
    data[95] = 95;
    auto* const view = static_cast<unsigned char*>(MapViewOfFile(buffer->getMapHandle(), FILE_MAP_ALL_ACCESS, 0, 0, 0));
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view[0], 1);
    EXPECT_EQ(view[95], 95);
    view[1] = 2;
    EXPECT_EQ(data[1], 2);
    UnmapViewOfFile(view);
}

TEST_F(ZolMemMap, WithMappingsOffDibMemoryWaitsForSomebodyElses) {
    manager().setUseMappings(false);
    std::vector<unsigned char> memory(96, 7);
    {
        const Buffer buffer(manager().allocateMemoryOnlyOnMap(96));
        ASSERT_NE(buffer, nullptr);
        EXPECT_EQ(buffer->getMapHandle(), nullptr);
        EXPECT_EQ(buffer->getSize(), 96U);
        EXPECT_EQ(buffer->lock(), nullptr);
        EXPECT_EQ(inUse(), 0U);
        buffer->setHeapBuffer(memory.data());
        EXPECT_EQ(buffer->lock(), memory.data());
        EXPECT_EQ(buffer->getMapHandle(), nullptr);
        EXPECT_EQ(inUse(), 0U);
    }
    EXPECT_EQ(memory, std::vector<unsigned char>(96, 7));
}

TEST_F(ZolMemMap, SetHeapBufferReleasesWhatTheBufferHad) {
    std::vector<unsigned char> memory(50);
    for (const bool mapped : {false, true}) {
        const Buffer buffer = make(50, 5, mapped);
        buffer->setHeapBuffer(memory.data());
        EXPECT_EQ(inUse(), 0U);
        EXPECT_EQ(buffer->lock(), memory.data());
        EXPECT_EQ(buffer->getMapHandle(), nullptr);
        EXPECT_EQ(buffer->getSize(), 50U);
        buffer->setHeapBuffer(nullptr);
        EXPECT_EQ(buffer->lock(), nullptr);
    }
}

TEST_F(ZolMemMap, LocksAreCounted) {
    const Buffer buffer = make(10, 0, false);
    EXPECT_EQ(buffer->getLockCount(), 0);
    unsigned char* const first = buffer->lock();
    EXPECT_EQ(buffer->getLockCount(), 1);
    EXPECT_EQ(buffer->lock(), first);
    EXPECT_EQ(buffer->getLockCount(), 2);
    buffer->unlock(0, 1);
    buffer->unlock(0, 1);
    EXPECT_EQ(buffer->getLockCount(), 0);
    EXPECT_EQ(buffer->lock(), first);
}

std::vector<unsigned char> contents(ZolMemMappedBuffer& buffer) {
    const unsigned char* const data = buffer.lock();
    buffer.unlock(0, 1);
    return {data, data + buffer.getSize()};
}

Buffer numbered(unsigned int bytes, unsigned char first) {
    Buffer buffer = make(bytes, 4, false);
    for (unsigned int i = 0; i < bytes; ++i) buffer->lock()[i] = static_cast<unsigned char>(first + i);
    return buffer;
}

TEST_F(ZolMemMap, MemcpyCopiesToTheOffset) {
    const Buffer source = numbered(4, 1);
    const Buffer target = numbered(6, 100);
    target->Memcpy(1, source.get(), 3);
    EXPECT_EQ(contents(*target), (std::vector<unsigned char>{100, 1, 2, 3, 104, 105}));
    EXPECT_EQ(contents(*source), (std::vector<unsigned char>{1, 2, 3, 4}));
}

TEST_F(ZolMemMap, MemcpyStaysInsideBothBuffers) {
    const Buffer source = numbered(4, 1);
    const Buffer target = numbered(6, 100);
    target->Memcpy(0, source.get(), 1000);
    EXPECT_EQ(contents(*target), (std::vector<unsigned char>{1, 2, 3, 4, 104, 105}));
    target->Memcpy(4, source.get(), std::numeric_limits<unsigned long>::max());
    EXPECT_EQ(contents(*target), (std::vector<unsigned char>{1, 2, 3, 4, 1, 2}));
    EXPECT_EQ(target->lock()[6], 0);
    target->Memcpy(6, source.get(), 1);
    target->Memcpy(std::numeric_limits<unsigned long>::max(), source.get(), 4);
    target->Memcpy(0, source.get(), 0);
    target->Memcpy(0, nullptr, 4);
    EXPECT_EQ(contents(*target), (std::vector<unsigned char>{1, 2, 3, 4, 1, 2}));
    EXPECT_EQ(target->lock()[6], 0);
}

TEST_F(ZolMemMap, MemcpyWithinOneBufferMayOverlap) {
    const Buffer buffer = numbered(6, 1);
    buffer->Memcpy(2, buffer.get(), 4);
    EXPECT_EQ(contents(*buffer), (std::vector<unsigned char>{1, 2, 1, 2, 3, 4}));
}

TEST_F(ZolMemMap, MemcpyWithoutMemoryDoesNothing) {
    manager().setUseMappings(false);
    const Buffer empty(manager().allocateMemoryOnlyOnMap(6));
    const Buffer full = numbered(6, 1);
    full->Memcpy(0, empty.get(), 6);
    empty->Memcpy(0, full.get(), 6);
    EXPECT_EQ(contents(*full), (std::vector<unsigned char>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(empty->lock(), nullptr);
}

TEST_F(ZolMemMap, ThreadsLoseNoByteOfTheCount) {
    const auto work = [] {
        for (unsigned int i = 1; i <= 300; ++i) {
            const Buffer one = make(i, i % 7, i % 16 == 0);
            const Buffer two = make(2 * i, 0, false);
            ASSERT_NE(one, nullptr);
            ASSERT_NE(two, nullptr);
        }
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
    EXPECT_EQ(inUse(), 0U);
}

TEST_F(ZolMemMap, ThreadsNeverPassTheLimitTogether) {
    manager().setLimit(manager().getBytesInUse() + 1000);
    std::vector<Buffer> kept[2];
    const auto work = [](std::vector<Buffer>* list) {
        for (int i = 0; i < 400; ++i) {
            if (Buffer buffer = make(10, 0, false)) list->push_back(std::move(buffer));
        }
    };
    std::thread first(work, &kept[0]);
    std::thread second(work, &kept[1]);
    first.join();
    second.join();
    EXPECT_EQ(kept[0].size() + kept[1].size(), 100U);
    EXPECT_EQ(inUse(), 1000U);
}

}  // namespace
