#include "zolcs/ccserror.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "support/report_capture.h"

namespace {

using zoltest::Report;

struct Call {
    std::wstring tag;
    const wchar_t* file;
    int line;
    std::wstring text;
    int category;

    bool operator==(const Call&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Call& call) {
    return out << Report{call.tag, call.file != nullptr ? call.file : L"(null)", call.line, call.text, call.category};
}

std::vector<Call>& firstCalls() {
    static std::vector<Call> list;
    return list;
}
std::vector<Call>& secondCalls() {
    static std::vector<Call> list;
    return list;
}

void first(CStringW tag, wchar_t* file, int line, CStringW message, ErrorCategory category) {
    firstCalls().push_back({tag.GetString(), file, line, message.GetString(), category});
}
void second(CStringW tag, wchar_t* file, int line, CStringW message, ErrorCategory category) {
    secondCalls().push_back({tag.GetString(), file, line, message.GetString(), category});
}

const wchar_t* const file = L"source\\zolcs\\sample";

class CCsErrorTest : public testing::Test {
protected:
    CCsErrorTest() {
        firstCalls().clear();
        secondCalls().clear();
    }
};

TEST_F(CCsErrorTest, WithoutAHandlerNothingHappens) {
    CCsError::debug(L"x", 1, file, 2);
    CCsError::error(L"x", 1, file, 2);
    CCsError::warning(L"x", 1, file, 2);
    CCsError::error(nullptr, 1, nullptr, 2);
    EXPECT_TRUE(firstCalls().empty());
}

TEST_F(CCsErrorTest, EachEntryPointHasItsTag) {
    const CCsError error(&first);
    CCsError::debug(L"some trace", 12, file, 90);
    CCsError::error(L"some failure", 13, file, 91);
    CCsError::warning(L"some warning", 14, file, 92);
    EXPECT_EQ(firstCalls(), (std::vector<Call>{{L"CS-D", file, 90, L"some trace 12 ", 0},
                                               {L"CS-E", file, 91, L"some failure 13 ", 0},
                                               {L"CS-W", file, 92, L"some warning 14 ", 0}}));
}

TEST_F(CCsErrorTest, NumbersHave32Bits) {
    const CCsError error(&first);
    const auto textOf = [](auto report, auto number) {
        firstCalls().clear();
        report(L"x", number, file, 1);
        return firstCalls().at(0).text;
    };
    EXPECT_EQ(textOf(CCsError::error, -1L), L"x -1 ");
    EXPECT_EQ(textOf(CCsError::warning, -1L), L"x -1 ");
    EXPECT_EQ(textOf(CCsError::error, 0L), L"x 0 ");
    EXPECT_EQ(textOf(CCsError::error, 10L), L"x 10 ");
    EXPECT_EQ(textOf(CCsError::error, 2147483647L), L"x 2147483647 ");
    EXPECT_EQ(textOf(CCsError::error, -2147483647L - 1), L"x -2147483648 ");
    EXPECT_EQ(textOf(CCsError::debug, 4294967295UL), L"x 4294967295 ");
    EXPECT_EQ(textOf(CCsError::debug, 0UL), L"x 0 ");
    if constexpr (sizeof(long) > 4) {
        EXPECT_EQ(textOf(CCsError::error, static_cast<long>(0x1FFFFFFFELL)), L"x -2 ");
        EXPECT_EQ(textOf(CCsError::warning, static_cast<long>(0x100000007LL)), L"x 7 ");
        EXPECT_EQ(textOf(CCsError::debug, static_cast<unsigned long>(0x1FFFFFFFFULL)), L"x 4294967295 ");
    }
}

TEST_F(CCsErrorTest, MessagesAreNeverReadAsFormats) {
    const CCsError error(&first);
    CCsError::error(L"100%s %d %n \u00e9 \u4e2d", 5, file, 1);
    EXPECT_EQ(firstCalls().at(0).text, L"100%s %d %n \u00e9 \u4e2d 5 ");
}

TEST_F(CCsErrorTest, DebugIgnoresNullPointers) {
    const CCsError error(&first);
    CCsError::debug(nullptr, 1, file, 2);
    CCsError::debug(L"x", 1, nullptr, 2);
    CCsError::debug(nullptr, 1, nullptr, 2);
    EXPECT_TRUE(firstCalls().empty());
}

TEST_F(CCsErrorTest, ErrorAndWarningDeliberatelyReportNullPointers) {
    const CCsError error(&first);
    CCsError::error(nullptr, 1, file, 2);
    CCsError::error(L"x", -1, nullptr, 3);
    CCsError::warning(nullptr, 4, nullptr, 5);
    EXPECT_EQ(firstCalls(), (std::vector<Call>{{L"CS-E", file, 2, L"(null) 1 ", 0},
                                               {L"CS-E", nullptr, 3, L"x -1 ", 0},
                                               {L"CS-W", nullptr, 5, L"(null) 4 ", 0}}));
}

TEST_F(CCsErrorTest, EmptyMessageKeepsBothBlanks) {
    const CCsError error(&first);
    CCsError::error(L"", 7, L"", 0);
    EXPECT_EQ(firstCalls().at(0).text, L" 7 ");
}

TEST_F(CCsErrorTest, TheFilePointerIsHandedOverUnchanged) {
    const CCsError error(&first);
    CCsError::error(L"x", 1, file, 2);
    CCsError::debug(L"x", 1, file, 2);
    EXPECT_EQ(firstCalls().at(0).file, file);
    EXPECT_EQ(firstCalls().at(1).file, file);
}

TEST_F(CCsErrorTest, LongTextIsCutTo254Characters) {
    const CCsError error(&first);
    for (std::size_t length = 245; length <= 300; ++length) {
        const std::wstring message(length, L'm');
        const std::wstring whole = message + L" -12345 ";
        for (const auto report : {&CCsError::error, &CCsError::warning}) {
            firstCalls().clear();
            report(message.c_str(), -12345, file, 1);
            EXPECT_EQ(firstCalls().at(0).text, whole.substr(0, 254)) << length;
        }
        firstCalls().clear();
        CCsError::debug(message.c_str(), 12345, file, 1);
        EXPECT_EQ(firstCalls().at(0).text, (message + L" 12345 ").substr(0, 254)) << length;
    }
}

TEST_F(CCsErrorTest, ASecondObjectComplainsToTheFirstHandlerAndReplacesIt) {
    const CCsError one(&first);
    const CCsError two(&second);
    EXPECT_EQ(firstCalls(), (std::vector<Call>{{L"CS-E", firstCalls().at(0).file, 56,
                                                L"Cannot create a second exit handler object 0 ", 0}}));
    EXPECT_EQ(std::wstring(firstCalls().at(0).file), L"source\\zolcs\\ccserror");
    EXPECT_TRUE(secondCalls().empty());
    CCsError::error(L"x", 1, file, 2);
    EXPECT_EQ(firstCalls().size(), 1U);
    EXPECT_EQ(secondCalls(), (std::vector<Call>{{L"CS-E", file, 2, L"x 1 ", 0}}));
}

TEST_F(CCsErrorTest, DestroyingEitherObjectLeavesNoHandler) {
    for (const bool destroyFirst : {true, false}) {
        std::optional<CCsError> one(&first);
        std::optional<CCsError> two(&second);
        firstCalls().clear();
        (destroyFirst ? one : two).reset();
        CCsError::error(L"x", 1, file, 2);
        CCsError::debug(L"x", 1, file, 2);
        EXPECT_TRUE(firstCalls().empty());
        EXPECT_TRUE(secondCalls().empty());
    }
}

TEST_F(CCsErrorTest, ANewObjectWorksAfterTheSlotWasCleared) {
    { const CCsError one(&first); }
    const CCsError two(&second);
    EXPECT_TRUE(firstCalls().empty());
    CCsError::warning(L"x", 1, file, 2);
    EXPECT_EQ(secondCalls().size(), 1U);
}

TEST_F(CCsErrorTest, ANullHandlerIsNone) {
    const CCsError none(nullptr);
    CCsError::error(L"x", 1, file, 2);
    const CCsError one(&first);
    EXPECT_TRUE(firstCalls().empty());
    CCsError::error(L"x", 1, file, 2);
    EXPECT_EQ(firstCalls().size(), 1U);
}

std::atomic<int> wholeReports{0};

// The handler is called on the thread that reports, on several at the same time.
TEST_F(CCsErrorTest, ThreadsReportAtTheSameTime) {
    wholeReports = 0;
    const CCsError handler([](CStringW tag, wchar_t* module, int line, CStringW message, ErrorCategory /*category*/) {
        const std::wstring expected = L"from " + std::to_wstring(line) + L" " + std::to_wstring(line * 1000) + L" ";
        if (tag == L"CS-W" && module == file && message.GetString() == expected) ++wholeReports;
    });
    std::vector<std::thread> threads;
    for (int line = 1; line <= 3; ++line) {
        threads.emplace_back([line] {
            const std::wstring message = L"from " + std::to_wstring(line);
            for (int i = 0; i < 500; ++i) CCsError::warning(message.c_str(), line * 1000, file, line);
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wholeReports, 1500);
}

}  // namespace
