#include "zollog/zollog.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Line = std::pair<std::wstring, std::wstring>;

std::vector<Line>& lines() {
    static std::vector<Line> list;
    return list;
}

void collect(const wchar_t* tag, const wchar_t* text) { lines().emplace_back(tag, text); }

void other(const wchar_t* /*tag*/, const wchar_t* /*text*/) {}

/// Installs a sink for one test and restores what was there.
class SinkGuard {
public:
    explicit SinkGuard(MorvaLogSink sink) : before_(SetMorvaLogSink(sink)) { lines().clear(); }
    ~SinkGuard() { SetMorvaLogSink(before_); }
    SinkGuard(const SinkGuard&) = delete;
    SinkGuard& operator=(const SinkGuard&) = delete;

private:
    MorvaLogSink before_;
};

std::string standardErrorOf(const wchar_t* tag, const wchar_t* text) {
    const SinkGuard guard(nullptr);
    testing::internal::CaptureStderr();
    MorvaLog(tag, text);
    return testing::internal::GetCapturedStderr();
}

TEST(Zollog, HandsTagAndTextToTheSink) {
    const SinkGuard guard(&collect);
    MorvaLog(L"zolcs - E", L"Exception: Out of memory");
    MorvaLog(L"", L"");
    EXPECT_EQ(lines(), (std::vector<Line>{{L"zolcs - E", L"Exception: Out of memory"}, {L"", L""}}));
}

TEST(Zollog, NullStringsPrintAsNull) {
    const SinkGuard guard(&collect);
    MorvaLog(nullptr, L"text");
    MorvaLog(L"tag", nullptr);
    EXPECT_EQ(lines(), (std::vector<Line>{{L"(null)", L"text"}, {L"tag", L"(null)"}}));
    EXPECT_EQ(standardErrorOf(nullptr, nullptr), "(null): (null)\n");
}

TEST(Zollog, SettingASinkReturnsTheOneBefore) {
    const SinkGuard guard(nullptr);
    EXPECT_EQ(SetMorvaLogSink(&collect), nullptr);
    EXPECT_EQ(SetMorvaLogSink(&other), &collect);
    EXPECT_EQ(SetMorvaLogSink(nullptr), &other);
    EXPECT_EQ(SetMorvaLogSink(nullptr), nullptr);
}

TEST(Zollog, StandardErrorTakesTheLineWhileNoSinkIsSet) {
    EXPECT_EQ(standardErrorOf(L"zolcs - E", L"Out of memory"), "zolcs - E: Out of memory\n");
    EXPECT_EQ(standardErrorOf(L"", L""), ": \n");
}

TEST(Zollog, ASinkKeepsTheLineFromStandardError) {
    const SinkGuard guard(&collect);
    testing::internal::CaptureStderr();
    MorvaLog(L"a", L"b");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(lines().size(), 1U);
}

TEST(Zollog, StandardErrorIsUtf8) {
    EXPECT_EQ(standardErrorOf(L"\u00e9", L"\u20ac \U0001F600 \uFFFF"),
              "\xC3\xA9: \xE2\x82\xAC \xF0\x9F\x98\x80 \xEF\xBF\xBF\n");
}

TEST(Zollog, BrokenSurrogatesBecomeTheReplacementCharacter) {
    const wchar_t loneHigh[] = {L'a', static_cast<wchar_t>(0xD83D), L'b', L'\0'};
    const wchar_t highAtTheEnd[] = {L'a', static_cast<wchar_t>(0xD83D), L'\0'};
    const wchar_t loneLow[] = {static_cast<wchar_t>(0xDE00), L'b', L'\0'};
    EXPECT_EQ(standardErrorOf(L"t", loneHigh),
              "t: a\xEF\xBF\xBD"
              "b\n");
    EXPECT_EQ(standardErrorOf(L"t", highAtTheEnd), "t: a\xEF\xBF\xBD\n");
    EXPECT_EQ(standardErrorOf(L"t", loneLow),
              "t: \xEF\xBF\xBD"
              "b\n");
}

TEST(Zollog, OneCallStaysOneLine) { EXPECT_EQ(standardErrorOf(L"a\nb", L"c\r\nd\te\x1b\x7f"), "a b: c  d e  \n"); }

TEST(Zollog, LongLinesComeWhole) {
    for (const std::size_t length : {500U, 511U, 512U, 513U, 5000U}) {
        const std::wstring text(length, L'x');
        EXPECT_EQ(standardErrorOf(L"t", text.c_str()), "t: " + std::string(length, 'x') + "\n");
    }
}

void logFromWithin(const wchar_t* tag, const wchar_t* text) {
    collect(tag, text);
    if (std::wstring(text) == L"outer") MorvaLog(tag, L"inner");
}

TEST(Zollog, ASinkMayLogItself) {
    const SinkGuard guard(&logFromWithin);
    MorvaLog(L"t", L"outer");
    EXPECT_EQ(lines(), (std::vector<Line>{{L"t", L"outer"}, {L"t", L"inner"}}));
}

std::atomic<int> inside{0};
std::atomic<bool> overlapped{false};
std::atomic<int> calls{0};

void watch(const wchar_t* /*tag*/, const wchar_t* /*text*/) {
    if (inside.fetch_add(1) != 0) overlapped = true;
    ++calls;
    std::this_thread::yield();
    inside.fetch_sub(1);
}

TEST(Zollog, TheSinkIsNeverCalledFromTwoThreadsAtOnce) {
    const SinkGuard guard(&watch);
    calls = 0;
    const auto work = [] {
        for (int i = 0; i < 500; ++i) MorvaLog(L"t", L"x");
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
    EXPECT_EQ(calls, 1000);
    EXPECT_FALSE(overlapped);
}

}  // namespace
