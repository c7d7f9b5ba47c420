// Failing memory for the value maps, and a palette whose colours tell the levels apart.
#pragma once

#include "zolcs/ccscolorman.h"
#include "zolcs/mapping/storedtable.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "zollog/zollog.h"

namespace zoltest {

/// Lets the first `left` allocations of tables succeed and fails all others, while it lives.
class FailingTables {
public:
    explicit FailingTables(int left) : saved_(zolcs::mapping::memorySources()) {
        left_ = left;
        zolcs::mapping::memorySources().allocateTable = [](std::size_t bytes) {
            return left_-- > 0 ? std::calloc(bytes, 1) : nullptr;
        };
    }
    ~FailingTables() { zolcs::mapping::memorySources() = saved_; }
    FailingTables(const FailingTables&) = delete;
    FailingTables& operator=(const FailingTables&) = delete;

private:
    static inline int left_ = 0;
    zolcs::mapping::MemorySources saved_;
};

/// No chunk for anybody, while it lives.
class ExhaustedChunks {
public:
    ExhaustedChunks() : saved_(zolcs::mapping::memorySources()) {
        zolcs::mapping::memorySources().allocateChunk = []() -> void* { return nullptr; };
    }
    ~ExhaustedChunks() { zolcs::mapping::memorySources() = saved_; }
    ExhaustedChunks(const ExhaustedChunks&) = delete;
    ExhaustedChunks& operator=(const ExhaustedChunks&) = delete;

private:
    zolcs::mapping::MemorySources saved_;
};

/// Keeps what is logged while it lives, as (tag, text).
class LogCapture {
public:
    LogCapture()
        : saved_(SetMorvaLogSink([](const wchar_t* tag, const wchar_t* text) { lines().emplace_back(tag, text); })) {
        lines().clear();
    }
    ~LogCapture() { SetMorvaLogSink(saved_); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    static std::vector<std::pair<std::wstring, std::wstring>>& lines() {
        static std::vector<std::pair<std::wstring, std::wstring>> list;
        return list;
    }

private:
    MorvaLogSink saved_;
};

/// 256 colours of which no two are equal, in no order.
struct TestPalette {
    TestPalette() {
        for (std::uint32_t i = 0; i < 256; ++i) colours[i] = i * 0x9E3779B1U ^ 0x5A5A5AU;
        map.entries = colours.data();
    }
    TestPalette(const TestPalette&) = delete;
    TestPalette& operator=(const TestPalette&) = delete;

    std::array<std::uint32_t, 256> colours{};
    CCsColorMapT map;
};

}  // namespace zoltest
