#include "zolview/progress.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using std::chrono::milliseconds;
using zolview::Progress;

class ProgressTest : public ::testing::Test {
protected:
    Progress::Clock clock() {
        return [this] { return time_; };
    }

    std::ostringstream out_;
    milliseconds time_{100000};
};

TEST_F(ProgressTest, NothingIsToldWhereNobodyWantsIt) {
    Progress progress(out_, Progress::Way::None, "ct.dcm", clock());
    time_ += milliseconds(10000);
    progress.stage("reading");
    progress.clear();
    EXPECT_EQ(out_.str(), "");
}

TEST_F(ProgressTest, EveryStageHasALineWithTheTimeSinceTheStart) {
    {
        Progress progress(out_, Progress::Way::Lines, "ct.dcm", clock());
        progress.stage("reading");
        time_ += milliseconds(1260);
        progress.stage("drawing");
        progress.clear();
    }
    EXPECT_EQ(out_.str(), "zolview: ct.dcm: reading (0.0 s)\nzolview: ct.dcm: drawing (1.3 s)\n");
}

TEST_F(ProgressTest, ATerminalSeesNothingOfWorkThatIsSoonDone) {
    {
        Progress progress(out_, Progress::Way::Line, "ct.dcm", clock());
        progress.stage("reading");
        time_ += milliseconds(499);
        progress.stage("writing");
    }
    EXPECT_EQ(out_.str(), "");
}

TEST_F(ProgressTest, ATerminalsLineChangesAndGoesAway) {
    {
        Progress progress(out_, Progress::Way::Line, "a", clock());
        time_ += milliseconds(500);
        progress.stage("drawing");
        EXPECT_EQ(out_.str(), "zolview: a: drawing (0.5 s)");
        out_.str("");
        time_ += milliseconds(2000);
        progress.stage("x");
        EXPECT_EQ(out_.str(), "\r" + std::string(27, ' ') + "\rzolview: a: x (2.5 s)");
        out_.str("");
        progress.clear();
        EXPECT_EQ(out_.str(), "\r" + std::string(21, ' ') + "\r");
        out_.str("");
        progress.clear();
    }
    EXPECT_EQ(out_.str(), "");
}

TEST(ProgressWay, IsAlwaysLinesWhenAskedFor) { EXPECT_EQ(zolview::progressWay(true), Progress::Way::Lines); }

}  // namespace
