#include "zolcs/ccsmemorymanager.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "support/new_failure.h"
#include "support/report_capture.h"

namespace {

using zoltest::NothrowNewLimit;
using zoltest::Report;
using zoltest::ReportCapture;

constexpr std::size_t blockChunks = 64;

std::vector<Report> takeTraces() {
    std::vector<Report> out;
    out.swap(ReportCapture::debugReports());
    return out;
}

Report trace(const std::wstring& message, unsigned int count, int line) {
    return {L"CS-D", L"source\\zolcs\\ccsmemorymanager", line, message + L" " + std::to_wstring(count) + L" ", 0};
}
Report allocated(unsigned int count) { return trace(L"Total number of chunks in use during allocate ", count, 90); }
Report released(unsigned int count) { return trace(L"Total number of chunks in use after release ", count, 109); }

/// The count that the next allocation starts from, seen from outside.
unsigned int chunksInUse() {
    const ReportCapture capture;
    CCsMemoryManager::releaseChunk(CCsMemoryManager::allocateChunk());
    const std::wstring text = takeTraces().at(1).text;
    return static_cast<unsigned int>(std::stoul(text.substr(text.rfind(L' ', text.size() - 2))));
}

class CCsMemoryManagerTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(chunksInUse(), before_); }
    [[nodiscard]] unsigned int before() const { return before_; }

private:
    unsigned int before_ = chunksInUse();
};

TEST_F(CCsMemoryManagerTest, AChunkHolds65536EntriesOf32Bits) {
    static_assert(CCsMemoryManager::chunkSize == 262144);
    auto* const chunk = static_cast<std::uint32_t*>(CCsMemoryManager::allocateChunk());
    ASSERT_NE(chunk, nullptr);
    for (std::uint32_t i = 0; i < 65536; ++i) chunk[i] = i * 2654435761U;
    auto* const other = static_cast<unsigned char*>(CCsMemoryManager::allocateChunk());
    std::memset(other, 0xFF, CCsMemoryManager::chunkSize);
    for (std::uint32_t i = 0; i < 65536; ++i) ASSERT_EQ(chunk[i], i * 2654435761U);
    CCsMemoryManager::releaseChunk(other);
    CCsMemoryManager::releaseChunk(chunk);
}

TEST_F(CCsMemoryManagerTest, TracesTheCountOfBothOperations) {
    const ReportCapture capture;
    void* const one = CCsMemoryManager::allocateChunk();
    void* const two = CCsMemoryManager::allocateChunk();
    CCsMemoryManager::releaseChunk(one);
    CCsMemoryManager::releaseChunk(two);
    EXPECT_EQ(takeTraces(), (std::vector<Report>{allocated(before() + 1), allocated(before() + 2),
                                                 released(before() + 1), released(before())}));
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{});
}

TEST_F(CCsMemoryManagerTest, AReleasedChunkIsTheNextOneHandedOut) {
    void* const one = CCsMemoryManager::allocateChunk();
    void* const two = CCsMemoryManager::allocateChunk();
    void* const three = CCsMemoryManager::allocateChunk();
    EXPECT_NE(one, two);
    EXPECT_NE(two, three);
    EXPECT_NE(one, three);
    CCsMemoryManager::releaseChunk(two);
    CCsMemoryManager::releaseChunk(one);
    EXPECT_EQ(CCsMemoryManager::allocateChunk(), one);
    EXPECT_EQ(CCsMemoryManager::allocateChunk(), two);
    CCsMemoryManager::releaseChunk(one);
    CCsMemoryManager::releaseChunk(two);
    CCsMemoryManager::releaseChunk(three);
}

TEST_F(CCsMemoryManagerTest, WithoutAHandlerTheCountIsStillKept) {
    void* const one = CCsMemoryManager::allocateChunk();
    void* const two = CCsMemoryManager::allocateChunk();
    {
        const ReportCapture capture;
        CCsMemoryManager::releaseChunk(two);
        EXPECT_EQ(takeTraces(), std::vector<Report>{released(before() + 1)});
    }
    CCsMemoryManager::releaseChunk(one);
}

TEST_F(CCsMemoryManagerTest, ChunksAreDistinctAcrossBlocks) {
    std::vector<void*> chunks(2 * blockChunks + 3);
    std::set<void*> distinct;
    for (void*& chunk : chunks) {
        chunk = CCsMemoryManager::allocateChunk();
        ASSERT_NE(chunk, nullptr);
        std::memset(chunk, 1, CCsMemoryManager::chunkSize);
        distinct.insert(chunk);
    }
    EXPECT_EQ(distinct.size(), chunks.size());
    const void* previous = nullptr;
    for (void* const chunk : distinct) {
        if (previous != nullptr) {
            EXPECT_GE(static_cast<const char*>(chunk) - static_cast<const char*>(previous),
                      static_cast<std::ptrdiff_t>(CCsMemoryManager::chunkSize));
        }
        previous = chunk;
    }
    for (void* const chunk : chunks) CCsMemoryManager::releaseChunk(chunk);
}

TEST_F(CCsMemoryManagerTest, PurgeFreesAllBlocksAndLeavesTheCount) {
    const ReportCapture capture;
    void* const chunk = CCsMemoryManager::allocateChunk();
    EXPECT_TRUE(CCsMemoryManager::purgeChunks());
    EXPECT_FALSE(CCsMemoryManager::purgeChunks());
    ReportCapture::debugReports().clear();
    // The chunk's block is gone: it is counted back, and is not handed out again from nowhere.
    CCsMemoryManager::releaseChunk(chunk);
    EXPECT_EQ(takeTraces(), std::vector<Report>{released(before())});
    void* const fresh = CCsMemoryManager::allocateChunk();
    ASSERT_NE(fresh, nullptr);
    std::memset(fresh, 0, CCsMemoryManager::chunkSize);
    EXPECT_EQ(takeTraces(), std::vector<Report>{allocated(before() + 1)});
    CCsMemoryManager::releaseChunk(fresh);
}

TEST_F(CCsMemoryManagerTest, PurgeTracesNothing) {
    CCsMemoryManager::releaseChunk(CCsMemoryManager::allocateChunk());
    const ReportCapture capture;
    EXPECT_TRUE(CCsMemoryManager::purgeChunks());
    EXPECT_EQ(takeTraces(), std::vector<Report>{});
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{});
}

TEST_F(CCsMemoryManagerTest, ABlockHolds64ChunksAndNoMore) {
    if (!zoltest::canFailNothrowNew()) GTEST_SKIP() << "the library's operator new[] cannot be reached here";
    CCsMemoryManager::purgeChunks();
    std::vector<void*> chunks;
    chunks.push_back(CCsMemoryManager::allocateChunk());
    {
        const NothrowNewLimit limit(CCsMemoryManager::chunkSize);
        for (std::size_t i = 1; i < blockChunks; ++i) chunks.push_back(CCsMemoryManager::allocateChunk());
        EXPECT_EQ(NothrowNewLimit::refusals(), 0);
        for (void* const chunk : chunks) EXPECT_NE(chunk, nullptr);
        EXPECT_EQ(CCsMemoryManager::allocateChunk(), nullptr);
        EXPECT_EQ(NothrowNewLimit::refusals(), 2);
        CCsMemoryManager::releaseChunk(nullptr);
    }
    for (void* const chunk : chunks) CCsMemoryManager::releaseChunk(chunk);
    CCsMemoryManager::purgeChunks();
}

TEST_F(CCsMemoryManagerTest, AnExhaustedMemoryGivesNullAndCountsItAllTheSame) {
    if (!zoltest::canFailNothrowNew()) GTEST_SKIP() << "the library's operator new[] cannot be reached here";
    CCsMemoryManager::purgeChunks();
    const ReportCapture capture;
    {
        const NothrowNewLimit limit(1);
        EXPECT_EQ(CCsMemoryManager::allocateChunk(), nullptr);
        EXPECT_EQ(CCsMemoryManager::allocateChunk(), nullptr);
    }
    EXPECT_EQ(takeTraces(), (std::vector<Report>{allocated(before() + 1), allocated(before() + 2)}));
    CCsMemoryManager::releaseChunk(nullptr);
    CCsMemoryManager::releaseChunk(nullptr);
    EXPECT_EQ(takeTraces(), (std::vector<Report>{released(before() + 1), released(before())}));
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{});
    CCsMemoryManager::purgeChunks();
}

/// How many chunks can be had while no new block can. A block that is tried for in vain halves the count of the next.
std::size_t chunksLeft() {
    const NothrowNewLimit limit(1);
    std::vector<void*> chunks;
    while (void* const chunk = CCsMemoryManager::allocateChunk()) chunks.push_back(chunk);
    CCsMemoryManager::releaseChunk(nullptr);
    for (void* const chunk : chunks) CCsMemoryManager::releaseChunk(chunk);
    return chunks.size();
}

/// Takes a chunk while only blocks of fewer than `chunks` chunks can be had, expecting so many vain tries.
void* allocateFromSmallerThan(std::size_t chunks, int refusals) {
    const NothrowNewLimit limit(chunks * CCsMemoryManager::chunkSize);
    void* const chunk = CCsMemoryManager::allocateChunk();
    EXPECT_EQ(NothrowNewLimit::refusals(), refusals) << chunks;
    return chunk;
}

TEST_F(CCsMemoryManagerTest, ABlockThatCannotBeHadIsRetriedWithHalfItsChunks) {
    if (!zoltest::canFailNothrowNew()) GTEST_SKIP() << "the library's operator new[] cannot be reached here";
    CCsMemoryManager::purgeChunks();
    void* const chunk = allocateFromSmallerThan(blockChunks, 1);
    EXPECT_NE(chunk, nullptr);
    EXPECT_EQ(chunksLeft(), 31U);
    CCsMemoryManager::releaseChunk(chunk);
    EXPECT_EQ(chunksLeft(), 32U);
    CCsMemoryManager::purgeChunks();
}

TEST_F(CCsMemoryManagerTest, AHalvedCountStaysHalvedUntilThePoolIsPurged) {
    if (!zoltest::canFailNothrowNew()) GTEST_SKIP() << "the library's operator new[] cannot be reached here";
    CCsMemoryManager::purgeChunks();
    std::vector<void*> chunks = {allocateFromSmallerThan(blockChunks, 1)};
    // Memory is plentiful again, yet blocks go on holding 32 chunks each.
    for (std::size_t i = 1; i < 3 * 32; ++i) chunks.push_back(CCsMemoryManager::allocateChunk());
    chunks.push_back(allocateFromSmallerThan(1, 2));
    EXPECT_EQ(chunks.back(), nullptr) << "three full blocks";
    for (void* const chunk : chunks) CCsMemoryManager::releaseChunk(chunk);
    CCsMemoryManager::purgeChunks();
    void* const fresh = CCsMemoryManager::allocateChunk();
    EXPECT_EQ(chunksLeft(), blockChunks - 1);
    CCsMemoryManager::releaseChunk(fresh);
    CCsMemoryManager::purgeChunks();
}

TEST_F(CCsMemoryManagerTest, TheCountIsHalvedFromFiveOnOnly) {
    if (!zoltest::canFailNothrowNew()) GTEST_SKIP() << "the library's operator new[] cannot be reached here";
    CCsMemoryManager::purgeChunks();
    // 64 is halved to 32, 32 to 16, 16 to 8 and 8 to 4, which is tried as it is.
    for (const int refusals : {2, 2, 2, 2, 1, 1}) EXPECT_EQ(allocateFromSmallerThan(1, refusals), nullptr);
    for (int i = 0; i < 6; ++i) CCsMemoryManager::releaseChunk(nullptr);
    void* const chunk = CCsMemoryManager::allocateChunk();
    EXPECT_NE(chunk, nullptr);
    EXPECT_EQ(chunksLeft(), 3U);
    CCsMemoryManager::releaseChunk(chunk);
    CCsMemoryManager::purgeChunks();
}

TEST_F(CCsMemoryManagerTest, ThreadsShareNoChunkAndLoseNoCount) {
    constexpr int rounds = 2000;
    std::atomic<bool> shared{false};
    const auto work = [&shared](unsigned char mark) {
        for (int i = 0; i < rounds; ++i) {
            auto* const one = static_cast<unsigned char*>(CCsMemoryManager::allocateChunk());
            auto* const two = static_cast<unsigned char*>(CCsMemoryManager::allocateChunk());
            one[0] = mark;
            two[CCsMemoryManager::chunkSize - 1] = mark;
            std::this_thread::yield();
            if (one[0] != mark || two[CCsMemoryManager::chunkSize - 1] != mark) shared = true;
            CCsMemoryManager::releaseChunk(one);
            CCsMemoryManager::releaseChunk(two);
        }
    };
    std::thread first(work, static_cast<unsigned char>(1));
    std::thread second(work, static_cast<unsigned char>(2));
    first.join();
    second.join();
    EXPECT_FALSE(shared);
}

}  // namespace
