// The memory of the grey maps' tables, and clones of maps.
#include "zolcs/ccsmap.h"

#include "zolcs/mapping/greymaps_fixture.h"

namespace {

using namespace zoltest::greymaps;
using zoltest::everything;
using zoltest::GreyMapKind;
using zoltest::GreyMaps;
using zoltest::Pixels;
using zoltest::present;
using zoltest::ramp;
using zoltest::Report;
using zoltest::ReportCapture;
using zoltest::set;
using zoltest::testRemap;
using zoltest::Values;
using zoltest::windowLevel;

// ---- the table's memory -------------------------------------------------------------------------------------------

TEST_P(GreyMaps, WithoutChunkThereIsNoTable) {
    const zoltest::LogCapture log;
    {
        const zoltest::ExhaustedChunks exhausted;
        EXPECT_EQ(map().getLut(), nullptr);
        ASSERT_EQ(log.lines().size(), 1U);
        EXPECT_EQ(log.lines()[0].first, L"zolcs - E");
        EXPECT_EQ(log.lines()[0].second, L"Exception: Out of memory");
        EXPECT_EQ(map().allocateLut(), 1);
        EXPECT_EQ(log.lines().size(), 2U);
    }
    EXPECT_TRUE(ReportCapture::take().empty()) << "logged, not reported";
    EXPECT_EQ(map().allocateLut(), 255);
    EXPECT_NE(map().getLut(), nullptr);
    EXPECT_EQ(log.lines().size(), 2U);
}

TEST_P(GreyMaps, WithoutChunkNothingIsBuilt) {
    const zoltest::LogCapture log;
    const zoltest::ExhaustedChunks exhausted;
    map().setWindow(5, 0);
    EXPECT_EQ(map().getLut(), nullptr);
    EXPECT_TRUE(ReportCapture::take().empty()) << "not even the width was looked at";
}

TEST_P(GreyMaps, ChunksGoBackToThePool) {
    map().getLut();
    const void* chunk = map().getLut();
    map().releaseLut();
    void* next = CCsMemoryManager::allocateChunk();
    EXPECT_EQ(next, chunk);
    CCsMemoryManager::releaseChunk(next);
    EXPECT_EQ(map().getLut(), chunk);
    map_.reset();
    next = CCsMemoryManager::allocateChunk();
    EXPECT_EQ(next, chunk);
    CCsMemoryManager::releaseChunk(next);
}

TEST_P(GreyMaps, ReleasingTwiceIsHarmless) {
    map().getLut();
    map().releaseLut();
    map().releaseLut();
    EXPECT_NE(map().getLut(), nullptr);
}

TEST_P(GreyMaps, CopyLut) {
    map().setWindow(static_cast<unsigned>(depth() / 2), depth());
    const Pixels table = lut();
    Pixels copy(0x10001, 0x77777777U);
    unsigned* out = copy.data();
    map().copyLut(&out);
    EXPECT_EQ(out, copy.data());
    // Byte offsets 0x4000 * k are entries 4096 * k; 0x1000 bytes are 1024 entries, also over the table's own.
    for (std::size_t i = 0; i < 0x10000; ++i) {
        const std::uint32_t own = i < table.size() ? table[i] : 0U;
        ASSERT_EQ(copy[i], i % 4096 < 1024 ? table[i % 4096] : own) << i;
    }
    EXPECT_EQ(copy.back(), 0x77777777U);
}

TEST_P(GreyMaps, CopyLutWithoutTableGivesZeroes) {
    map().getLut();
    map().setColorMapIndex(nullptr);
    Pixels copy(0x10001, 0x77777777U);
    unsigned* out = copy.data();
    map().copyLut(&out);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{colourMapReport()});
    EXPECT_TRUE(std::all_of(copy.begin(), copy.end() - 1, [](std::uint32_t p) { return p == 0; }));
    EXPECT_EQ(copy.back(), 0x77777777U);
    out = nullptr;
    map().copyLut(&out);
    map().copyLut(nullptr);
}

// ---- clones -------------------------------------------------------------------------------------------------------

TEST_P(GreyMaps, CloneTakesAllSettings) {
    const auto remap = testRemap();
    unsigned plane[16] = {};
    unsigned group[16] = {};
    set(map(), ramp(300, 7), false, 12);
    present(map(), ramp(100, 3));
    map().setIndexRemap(remap.data());
    map().setWindow(700, 900);
    map().setOverlayColors(plane, group);
    map().setMapFlags(6);
    map().setEnabled(false);
    const Pixels table = lut();

    const std::unique_ptr<IMap> owner(map().clone());
    ASSERT_NE(owner, nullptr);
    auto& clone = static_cast<IGreyMap&>(*owner);
    EXPECT_EQ(clone.getMapFlags(), 6);
    EXPECT_FALSE(clone.isEnabled());
    EXPECT_TRUE(clone.hasPresentationLut());
    EXPECT_EQ(clone.getNonLinearShift(), map().getNonLinearShift());
    EXPECT_EQ(clone.getOverlayColors(), map().getOverlayColors());
    clone.setColorMapIndex(&palette_.map);
    EXPECT_EQ(lutOf(clone), table);
    EXPECT_NE(clone.getLut(), map().getLut());
}

TEST_P(GreyMaps, CloneTakesSigmoidAndExactWindow) {
    map().enableSigmoid();
    map().setSigmoidBits(9);
    map().setWindow(700, 900);
    std::unique_ptr<IMap> owner(map().clone());
    owner->setColorMapIndex(&palette_.map);
    EXPECT_EQ(lutOf(static_cast<IGreyMap&>(*owner)), lut());
    set(map(), ramp(300, 7), true);
    owner.reset(map().clone());
    owner->setColorMapIndex(&palette_.map);
    EXPECT_EQ(lutOf(static_cast<IGreyMap&>(*owner)), lut());
}

TEST_P(GreyMaps, CloneSharesNoTable) {
    set(map(), ramp(300, 7), false);
    map().setWindow(700, 900);
    map().getLut();
    const std::unique_ptr<IMap> owner(map().clone());
    auto& clone = static_cast<IGreyMap&>(*owner);
    unsigned short* mine = nullptr;
    unsigned short* its = nullptr;
    for (const bool whole : {false, true}) {
        ASSERT_EQ(map().getWindowedNonLinearLut(&mine, nullptr, nullptr, whole), 255);
        ASSERT_EQ(clone.getWindowedNonLinearLut(&its, nullptr, nullptr, whole), 255);
        EXPECT_NE(mine, its);
        EXPECT_EQ(std::memcmp(mine, its, 300 * 2), 0);
    }
    const Pixels before = lut();
    clone.setColorMapIndex(&palette_.map);
    clone.setWindow(100, 10);
    EXPECT_NE(lutOf(clone), before);
    EXPECT_EQ(lut(), before) << "the source's window has not changed";
    map_.reset();
    EXPECT_EQ(clone.getWindowedNonLinearLut(&its, nullptr, nullptr, true), 255);
    EXPECT_EQ(Values(its, its + 300), ramp(300, 7));
}

// The clone of a map with a valid table counts as valid but has no table, until it gets a colour map.
TEST_P(GreyMaps, CloneOfABuiltMapGivesNullUntilItHasAColourMap) {
    map().getLut();
    const std::unique_ptr<IMap> owner(map().clone());
    EXPECT_EQ(owner->getLut(), nullptr);
    EXPECT_TRUE(ReportCapture::take().empty());
    Pixels copy(0x10000, 0x77777777U);
    unsigned* out = copy.data();
    static_cast<IGreyMap&>(*owner).copyLut(&out);
    EXPECT_TRUE(std::all_of(copy.begin(), copy.end(), [](std::uint32_t p) { return p == 0; }));
    owner->setColorMapIndex(&palette_.map);
    EXPECT_NE(owner->getLut(), nullptr);
}

TEST_P(GreyMaps, CloneOfABuiltMapNeverShowsAnUnbuiltTable) {
    map().getLut();
    const std::unique_ptr<IMap> owner(map().clone());
    EXPECT_EQ(static_cast<IGreyMap&>(*owner).allocateLut(), 255);
    EXPECT_EQ(owner->getLut(), nullptr);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{colourMapReport()});
}

TEST_P(GreyMaps, CloneOfAStaleMapIsStale) {
    const std::unique_ptr<IMap> owner(map().clone());
    EXPECT_EQ(owner->getLut(), nullptr);
    EXPECT_EQ(ReportCapture::take(), std::vector<Report>{colourMapReport()});
}

TEST_P(GreyMaps, CloneWithoutMemoryIsNull) {
    set(map(), ramp(300, 7), false);
    present(map(), ramp(100, 3));
    map().setWindow(700, 900);
    map().getLut();
    for (const int left : {0, 1, 2}) {
        const zoltest::FailingTables failing(left);
        EXPECT_EQ(map().clone(), nullptr) << left;
    }
    const zoltest::FailingTables enough(3);
    EXPECT_NE(std::unique_ptr<IMap>(map().clone()), nullptr);
}

}  // namespace
