#include "zolcs/support/parallel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace {

/// The bands of one call, in order.
std::vector<std::pair<int, int>> bandsOf(int first, int last, int rowsPerBand) {
    std::mutex mutex;
    std::vector<std::pair<int, int>> bands;
    zolcs::parallelRows(
        first, last,
        [&](int begin, int end) {
            const std::lock_guard lock(mutex);
            bands.emplace_back(begin, end);
        },
        rowsPerBand);
    std::sort(bands.begin(), bands.end());
    return bands;
}

TEST(ParallelRows, EveryRowIsInExactlyOneBand) {
    for (const int first : {-7, 0, 3}) {
        for (int rows = 1; rows < 70; ++rows) {
            for (const int rowsPerBand : {1, 2, 5, 1000}) {
                const auto bands = bandsOf(first, first + rows, rowsPerBand);
                int next = first;
                for (const auto& [begin, end] : bands) {
                    EXPECT_EQ(begin, next);
                    EXPECT_LT(begin, end);
                    EXPECT_GE(end - begin, std::min(rows, rowsPerBand));
                    next = end;
                }
                EXPECT_EQ(next, first + rows);
            }
        }
    }
}

TEST(ParallelRows, NoRowsNoCall) {
    EXPECT_TRUE(bandsOf(5, 5, 1).empty());
    EXPECT_TRUE(bandsOf(5, 4, 1).empty());
    EXPECT_TRUE(bandsOf(2000000000, -2000000000, 1).empty());
}

TEST(ParallelRows, TakesAnyRange) {
    const auto bands = bandsOf(-2147483647, 2147483647, 1);
    EXPECT_EQ(bands.front().first, -2147483647);
    EXPECT_EQ(bands.back().second, 2147483647);
    EXPECT_EQ(bandsOf(0, 3, 0).back().second, 3);
    EXPECT_EQ(bandsOf(0, 3, -1).back().second, 3);
}

TEST(ParallelRows, FewRowsStayOnTheCallersThread) {
    std::thread::id worker;
    zolcs::parallelRows(
        0, 10, [&](int, int) { worker = std::this_thread::get_id(); }, 10);
    EXPECT_EQ(worker, std::this_thread::get_id());
}

// The first band ends only when a second one has begun. (Bands that ran one after the other would wait for ever.)
TEST(ParallelRows, BandsRunAtTheSameTime) {
    if (bandsOf(0, 1000, 1).size() < 2) GTEST_SKIP() << "one processor";
    std::atomic<int> started{0};
    zolcs::parallelRows(0, 1000, [&](int, int) {
        ++started;
        while (started < 2) std::this_thread::yield();
    });
    EXPECT_GE(started, 2);
}

TEST(ParallelRows, WhatABandThrowsReachesTheCallerAfterAllBands) {
    std::atomic<int> rows{0};
    const auto call = [&] {
        zolcs::parallelRows(0, 100, [&](int begin, int end) {
            rows += end - begin;
            throw std::runtime_error("band");
        });
    };
    EXPECT_THROW(call(), std::runtime_error);
    EXPECT_EQ(rows, 100);
}

TEST(ParallelRows, TakesAConstFunction) {
    const auto nothing = [](int, int) {};
    zolcs::parallelRows(0, 4, nothing);
}

}  // namespace
