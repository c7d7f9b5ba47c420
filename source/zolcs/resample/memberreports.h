// What every resampling member may have to report, with its own name and line numbers.
#pragma once

#include "zolcs/ccsresults.h"
#include "zolcs/support/report.h"

#include <cstddef>
#include <initializer_list>

namespace zolcs {

/// Texts joined at compile time: reporting must not need memory.
struct JoinedText {
    constexpr JoinedText(const wchar_t* first, const wchar_t* second, const wchar_t* third = L"") {
        std::size_t at = 0;
        for (const wchar_t* text : {first, second, third}) {
            for (; *text != 0; ++text) characters[at++] = *text;
        }
    }
    wchar_t characters[128] = {};
};

/// The report sites of one resampling member. All of its members report with number 0 and give CCS_FAILED.
class MemberReports {
public:
    struct Lines {
        int type;
        int source;
        int destination;
        int exception;
        int table = 0;  ///< for members that take tables
    };

    constexpr MemberReports(const wchar_t* module, const wchar_t* member, Lines lines)
        : module_(module),
          lines_(lines),
          source_(L"get origin for source raster returned NULL in method ", member),
          destination_(L"get origin for dst raster returned NULL in method ", member),
          table_(L"look-up table is NULL in method ", member),
          exception_(L"Exception in function ", member) {}

    [[nodiscard]] int wrongType() const {
        return fail({L"Image type not supported", module_, lines_.type}, 0, CCS_FAILED);
    }
    [[nodiscard]] int noSource() const { return fail({source_.characters, module_, lines_.source}, 0, CCS_FAILED); }
    [[nodiscard]] int noDestination() const {
        return fail({destination_.characters, module_, lines_.destination}, 0, CCS_FAILED);
    }
    [[nodiscard]] int noTable() const { return fail({table_.characters, module_, lines_.table}, 0, CCS_FAILED); }
    [[nodiscard]] int exception() const {
        return fail({exception_.characters, module_, lines_.exception}, 0, CCS_FAILED);
    }

private:
    const wchar_t* module_;
    Lines lines_;
    JoinedText source_;
    JoinedText destination_;
    JoinedText table_;
    JoinedText exception_;
};

}  // namespace zolcs
