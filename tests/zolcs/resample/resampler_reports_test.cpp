// What the resamplers report, as a list; that they do report it is tested beside the members.
#include "support/accelerated_members.h"
#include "support/bicubic_members.h"
#include "support/bilinear_members.h"
#include "support/nearest_members.h"

#include <map>
#include <set>

namespace {

using zoltest::Problem;
using zoltest::StatedReport;
using Problems = std::multiset<Problem>;

TEST(ResamplerReports, LinesAreDistinctWithinAModule) {
    std::set<std::pair<std::wstring, int>> lines;
    for (const StatedReport& report : zoltest::resamplerReports()) {
        EXPECT_TRUE(lines.emplace(report.module, report.line).second)
            << zoltest::narrow(report.member) << ' ' << report.line;
    }
}

TEST(ResamplerReports, EveryMemberHasOneForEachProblem) {
    std::map<std::wstring, Problems> stated;
    for (const StatedReport& report : zoltest::resamplerReports()) stated[report.member].insert(report.problem);
    std::map<std::wstring, Problems> needed;
    const auto need = [&](const auto& members) {
        for (const auto& member : members) {
            Problems problems{Problem::Type, Problem::Source, Problem::Destination, Problem::Exception};
            if (member.callWithoutTable != nullptr) problems.insert(Problem::Table);
            needed[member.name] = problems;
        }
    };
    need(zoltest::nearestMembers());
    need(zoltest::bilinearMembers());
    need(zoltest::bicubicMembers());
    for (const auto& member : zoltest::acceleratedCases()) {
        needed[member.wideName()] = {Problem::Type, Problem::Region, Problem::NullPointer, Problem::Status,
                                     Problem::Exception};
    }
    EXPECT_EQ(needed.size(), 27U);
    EXPECT_TRUE(stated == needed);
}

}  // namespace
