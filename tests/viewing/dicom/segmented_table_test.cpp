#include "viewing/dicom/segmented_table.h"

#include "viewing/image/stored_image.h"

#include <gtest/gtest.h>

namespace {

using namespace viewing;
using Words = std::vector<std::uint16_t>;

Words expand(const Words& words, std::size_t count, int bits = 16) {
    return expandSegments(words, count, bits, "red palette");
}

TEST(SegmentedTable, DiscreteSegments) {
    EXPECT_EQ(expand({0, 3, 7, 65535, 9}, 3), (Words{7, 65535, 9}));
    EXPECT_EQ(expand({0, 1, 7, 0, 0, 0, 2, 8, 9}, 3), (Words{7, 8, 9}));
}

TEST(SegmentedTable, LinesRunFromTheEntryBefore) {
    EXPECT_EQ(expand({0, 1, 10, 1, 4, 20}, 5), (Words{10, 13, 15, 18, 20}));
    EXPECT_EQ(expand({0, 1, 20, 1, 4, 10}, 5), (Words{20, 18, 15, 13, 10}));
    EXPECT_EQ(expand({0, 1, 0, 1, 1, 65535}, 2), (Words{0, 65535}));
    EXPECT_EQ(expand({0, 1, 5, 1, 0, 9, 1, 2, 9}, 3), (Words{5, 7, 9}));
}

TEST(SegmentedTable, EarlierSegmentsAreRepeated) {
    // The line at byte 6, twice more, each time from the entry before.
    EXPECT_EQ(expand({0, 1, 10, 1, 2, 20, 2, 1, 6, 0, 2, 1, 6, 0}, 7), (Words{10, 15, 20, 20, 20, 20, 20}));
    EXPECT_EQ(expand({0, 2, 1, 2, 1, 2, 6, 2, 2, 0, 0}, 8), (Words{1, 2, 4, 6, 1, 2, 4, 6}));
}

TEST(SegmentedTable, EightBitsHaveSegmentsOfBytes) {
    // 0 1 5, 1 2 9, and a byte to fill the word.
    EXPECT_EQ(expand({0x0100, 0x0105, 0x0902}, 3, 8), (Words{5, 7, 9}));
    // 0 2 3 4, 2 1 with the place 0 in four bytes.
    EXPECT_EQ(expand({0x0200, 0x0403, 0x0102, 0x0000, 0x0000}, 4, 8), (Words{3, 4, 3, 4}));
}

TEST(SegmentedTable, RepeatingNothingIsRefused) {
    // 65535 times an empty segment, which makes no entry however often it is repeated.
    EXPECT_THROW(expand({0, 1, 10, 2, 65535, 14, 0, 0, 0, 0, 1, 11}, 2), Refusal);
    // An empty segment where it stands is none of these.
    EXPECT_EQ(expand({0, 1, 10, 0, 0, 2, 1, 0, 0}, 2), (Words{10, 10}));
}

TEST(SegmentedTable, SurplusEntriesAreCutOff) { EXPECT_EQ(expand({0, 3, 7, 8, 9}, 2), (Words{7, 8})); }

TEST(SegmentedTable, WhatCannotBeIsRefused) {
    const Words broken[] = {
        {},                         // nothing at all
        {0},                        // no length
        {0, 3, 1, 2},               // fewer entries than announced
        {0, 1, 1},                  // fewer than the table has
        {1, 2, 5},                  // a line from nowhere
        {3, 1, 1},                  // no such segment
        {0, 1, 1, 2, 1, 6},         // half a place
        {0, 1, 1, 2, 1, 6, 0},      // repeats itself
        {0, 1, 1, 2, 1, 999, 0},    // beyond the end
        {0, 1, 1, 2, 0, 0, 0},      // repeats nothing and ends
        {0, 1, 1, 2, 1, 0, 0xFFFF}  // far beyond the end
    };
    for (const Words& words : broken) {
        try {
            expand(words, 2);
            ADD_FAILURE() << words.size();
        } catch (const Refusal& refusal) {
            EXPECT_STREQ(refusal.what(), "has a red palette whose segments cannot be read");
        }
    }
}

}  // namespace
