// Everything that the resamplers report, in the very words: what hosts see is told here once, whole texts and lines,
// and every test that provokes a failure takes its expectation from here.
#pragma once

#include "support/report_capture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zoltest {

inline constexpr const wchar_t* nearestModule = L"source\\zolcs\\ccsnearest";
inline constexpr const wchar_t* bilinearModule = L"source\\zolcs\\ccsbilinear";
inline constexpr const wchar_t* bicubicModule = L"source\\zolcs\\ccsbicubic";

/// What can be wrong with a call.
enum class Problem { Type, Table, Source, Destination, Region, NullPointer, Status, Exception };

struct StatedReport {
    std::wstring module;
    std::wstring member;
    Problem problem;
    int line;
    std::wstring message;
};

inline const std::vector<StatedReport>& resamplerReports() {
    using enum Problem;
    static const std::vector<StatedReport> reports{
        {nearestModule, L"nearestGrey12Grey12", Type, 212, L"Image type not supported"},
        {nearestModule, L"nearestGrey12Grey12", Source, 241,
         L"get origin for source raster returned NULL in method nearestGrey12Grey12"},
        {nearestModule, L"nearestGrey12Grey12", Destination, 244,
         L"get origin for dst raster returned NULL in method nearestGrey12Grey12"},
        {nearestModule, L"nearestGrey12Grey12", Exception, 305, L"Exception in function nearestGrey12Grey12"},
        {nearestModule, L"nearestGrey8Grey8", Type, 331, L"Image type not supported"},
        {nearestModule, L"nearestGrey8Grey8", Source, 352,
         L"get origin for source raster returned NULL in method nearestGrey8Grey8"},
        {nearestModule, L"nearestGrey8Grey8", Destination, 355,
         L"get origin for dst raster returned NULL in method nearestGrey8Grey8"},
        {nearestModule, L"nearestGrey8Grey8", Exception, 398, L"Exception in function nearestGrey8Grey8"},
        {nearestModule, L"nearestGrey8IndexMap", Type, 421, L"Image type not supported"},
        {nearestModule, L"nearestGrey8IndexMap", Table, 430, L"look-up table is NULL in method nearestGrey8IndexMap"},
        {nearestModule, L"nearestGrey8IndexMap", Source, 443,
         L"get origin for source raster returned NULL in method nearestGrey8IndexMap"},
        {nearestModule, L"nearestGrey8IndexMap", Destination, 446,
         L"get origin for dst raster returned NULL in method nearestGrey8IndexMap"},
        {nearestModule, L"nearestGrey8IndexMap", Exception, 492, L"Exception in function nearestGrey8IndexMap"},
        {nearestModule, L"nearestIndexIndex", Type, 515, L"Image type not supported"},
        {nearestModule, L"nearestIndexIndex", Source, 536,
         L"get origin for source raster returned NULL in method nearestIndexIndex"},
        {nearestModule, L"nearestIndexIndex", Destination, 539,
         L"get origin for dst raster returned NULL in method nearestIndexIndex"},
        {nearestModule, L"nearestIndexIndex", Exception, 581, L"Exception in function nearestIndexIndex"},
        {nearestModule, L"nearestRgb12Rgb12", Type, 604, L"Image type not supported"},
        {nearestModule, L"nearestRgb12Rgb12", Source, 625,
         L"get origin for source raster returned NULL in method nearestRgb12Rgb12"},
        {nearestModule, L"nearestRgb12Rgb12", Destination, 628,
         L"get origin for dst raster returned NULL in method nearestRgb12Rgb12"},
        {nearestModule, L"nearestRgb12Rgb12", Exception, 668, L"Exception in function nearestRgb12Rgb12"},
        {nearestModule, L"nearestRgb12Rgb8Map", Type, 691, L"Image type not supported"},
        {nearestModule, L"nearestRgb12Rgb8Map", Table, 700, L"look-up table is NULL in method nearestRgb12Rgb8Map"},
        {nearestModule, L"nearestRgb12Rgb8Map", Source, 713,
         L"get origin for source raster returned NULL in method nearestRgb12Rgb8Map"},
        {nearestModule, L"nearestRgb12Rgb8Map", Destination, 716,
         L"get origin for dst raster returned NULL in method nearestRgb12Rgb8Map"},
        {nearestModule, L"nearestRgb12Rgb8Map", Exception, 764, L"Exception in function nearestRgb12Rgb8Map"},
        {nearestModule, L"nearestRgb8Rgb24Save", Type, 787, L"Image type not supported"},
        {nearestModule, L"nearestRgb8Rgb24Save", Source, 808,
         L"get origin for source raster returned NULL in method nearestRgb8Rgb24Save"},
        {nearestModule, L"nearestRgb8Rgb24Save", Destination, 811,
         L"get origin for dst raster returned NULL in method nearestRgb8Rgb24Save"},
        {nearestModule, L"nearestRgb8Rgb24Save", Exception, 859, L"Exception in function nearestRgb8Rgb24Save"},
        {nearestModule, L"nearestGrey12IndexMap", Type, 937, L"Image type not supported"},
        {nearestModule, L"nearestGrey12IndexMap", Source, 1058,
         L"get origin for source raster returned NULL in method nearestGrey12IndexMap"},
        {nearestModule, L"nearestGrey12IndexMap", Destination, 1061,
         L"get origin for dst raster returned NULL in method nearestGrey12IndexMap"},
        {nearestModule, L"nearestGrey12IndexMap", Exception, 1290, L"Exception in function nearestGrey12IndexMap"},
        {nearestModule, L"nearestRgb8Rgb8", Type, 1313, L"Image type not supported"},
        {nearestModule, L"nearestRgb8Rgb8", Source, 1334,
         L"get origin for source raster returned NULL in method nearestRgb8Rgb8"},
        {nearestModule, L"nearestRgb8Rgb8", Destination, 1337,
         L"get origin for dst raster returned NULL in method nearestRgb8Rgb8"},
        {nearestModule, L"nearestRgb8Rgb8", Exception, 1379, L"Exception in function nearestRgb8Rgb8"},
        {nearestModule, L"nearestRgb8Rgb8Map", Type, 1402, L"Image type not supported"},
        {nearestModule, L"nearestRgb8Rgb8Map", Table, 1411, L"look-up table is NULL in method nearestRgb8Rgb8Map"},
        {nearestModule, L"nearestRgb8Rgb8Map", Source, 1424,
         L"get origin for source raster returned NULL in method nearestRgb8Rgb8Map"},
        {nearestModule, L"nearestRgb8Rgb8Map", Destination, 1427,
         L"get origin for dst raster returned NULL in method nearestRgb8Rgb8Map"},
        {nearestModule, L"nearestRgb8Rgb8Map", Exception, 1475, L"Exception in function nearestRgb8Rgb8Map"},
        {nearestModule, L"nearestRgb8Rgb8MapSeperate", Type, 1498, L"Image type not supported"},
        {nearestModule, L"nearestRgb8Rgb8MapSeperate", Table, 1507,
         L"look-up table is NULL in method nearestRgb8Rgb8MapSeperate"},
        {nearestModule, L"nearestRgb8Rgb8MapSeperate", Source, 1521,
         L"get origin for source raster returned NULL in method nearestRgb8Rgb8MapSeperate"},
        {nearestModule, L"nearestRgb8Rgb8MapSeperate", Destination, 1524,
         L"get origin for dst raster returned NULL in method nearestRgb8Rgb8MapSeperate"},
        {nearestModule, L"nearestRgb8Rgb8MapSeperate", Exception, 1580,
         L"Exception in function nearestRgb8Rgb8MapSeperate"},
        {nearestModule, L"nearestIPPGrey12Grey12", Type, 1603, L"Image type not supported"},
        {nearestModule, L"nearestIPPGrey12Grey12", Region, 1621, L"There is no common shutter region"},
        {nearestModule, L"nearestIPPGrey12Grey12", NullPointer, 1702,
         L"NULL pointer of src/dst passed and IPP method failed in nearestIPPGrey12Grey12 method with error ID :"},
        {nearestModule, L"nearestIPPGrey12Grey12", Status, 1706,
         L"IPP method failed in nearestIPPGrey12Grey12 method with error ID :"},
        {nearestModule, L"nearestIPPGrey12Grey12", Exception, 1718, L"Exception in function nearestIPPGrey12Grey12"},
        {nearestModule, L"nearestIPPRgb8Rgb8", Type, 1741, L"Image type not supported"},
        {nearestModule, L"nearestIPPRgb8Rgb8", Region, 1759, L"There is no common shutter region"},
        {nearestModule, L"nearestIPPRgb8Rgb8", NullPointer, 1840,
         L"NULL pointer of src/dst passed and IPP method failed in nearestIPPRgb8Rgb8 method with error ID :"},
        {nearestModule, L"nearestIPPRgb8Rgb8", Status, 1844,
         L"IPP method failed in nearestIPPRgb8Rgb8 method with error ID :"},
        {nearestModule, L"nearestIPPRgb8Rgb8", Exception, 1856, L"Exception in function nearestIPPRgb8Rgb8"},
        {bilinearModule, L"bilinearGrey12Grey12", Type, 208, L"Image type not supported"},
        {bilinearModule, L"bilinearGrey12Grey12", Source, 237,
         L"get origin for source raster returned NULL in method bilinearGrey12Grey12"},
        {bilinearModule, L"bilinearGrey12Grey12", Destination, 240,
         L"get origin for dst raster returned NULL in method bilinearGrey12Grey12"},
        {bilinearModule, L"bilinearGrey12Grey12", Exception, 394, L"Exception in function bilinearGrey12Grey12"},
        {bilinearModule, L"bilinearGrey12IndexMap", Type, 431, L"Image type not supported"},
        {bilinearModule, L"bilinearGrey12IndexMap", Source, 512,
         L"get origin for source raster returned NULL in method bilinearGrey12IndexMap"},
        {bilinearModule, L"bilinearGrey12IndexMap", Destination, 515,
         L"get origin for dst raster returned NULL in method bilinearGrey12IndexMap"},
        {bilinearModule, L"bilinearGrey12IndexMap", Exception, 688, L"Exception in function bilinearGrey12IndexMap"},
        {bilinearModule, L"bilinearRgb8Rgb8", Type, 711, L"Image type not supported"},
        {bilinearModule, L"bilinearRgb8Rgb8", Source, 735,
         L"get origin for source raster returned NULL in method bilinearRgb8Rgb8"},
        {bilinearModule, L"bilinearRgb8Rgb8", Destination, 738,
         L"get origin for dst raster returned NULL in method bilinearRgb8Rgb8"},
        {bilinearModule, L"bilinearRgb8Rgb8", Exception, 826, L"Exception in function bilinearRgb8Rgb8"},
        {bilinearModule, L"bilinearRgb8Rgb8Map", Type, 849, L"Image type not supported"},
        {bilinearModule, L"bilinearRgb8Rgb8Map", Table, 858, L"look-up table is NULL in method bilinearRgb8Rgb8Map"},
        {bilinearModule, L"bilinearRgb8Rgb8Map", Source, 875,
         L"get origin for source raster returned NULL in method bilinearRgb8Rgb8Map"},
        {bilinearModule, L"bilinearRgb8Rgb8Map", Destination, 878,
         L"get origin for dst raster returned NULL in method bilinearRgb8Rgb8Map"},
        {bilinearModule, L"bilinearRgb8Rgb8Map", Exception, 967, L"Exception in function bilinearRgb8Rgb8Map"},
        {bilinearModule, L"bilinearRgb8Rgb8_ForMagicGlass", Type, 990, L"Image type not supported"},
        {bilinearModule, L"bilinearRgb8Rgb8_ForMagicGlass", Source, 1014,
         L"get origin for source raster returned NULL in method bilinearRgb8Rgb8_ForMagicGlass"},
        {bilinearModule, L"bilinearRgb8Rgb8_ForMagicGlass", Destination, 1017,
         L"get origin for dst raster returned NULL in method bilinearRgb8Rgb8_ForMagicGlass"},
        {bilinearModule, L"bilinearRgb8Rgb8_ForMagicGlass", Exception, 1105,
         L"Exception in function bilinearRgb8Rgb8_ForMagicGlass"},
        {bilinearModule, L"bilinearIPPGrey12Grey12", Type, 1128, L"Image type not supported"},
        {bilinearModule, L"bilinearIPPGrey12Grey12", Region, 1146, L"There is no common shutter region"},
        {bilinearModule, L"bilinearIPPGrey12Grey12", NullPointer, 1227,
         L"NULL pointer of src/dst passed and IPP method failed in bilinearIPPGrey12Grey12 method with error ID :"},
        {bilinearModule, L"bilinearIPPGrey12Grey12", Status, 1231,
         L"IPP method failed in bilinearIPPGrey12Grey12 method with error ID :"},
        {bilinearModule, L"bilinearIPPGrey12Grey12", Exception, 1243, L"Exception in function bilinearIPPGrey12Grey12"},
        {bilinearModule, L"bilinearIPPRgb8Rgb8", Type, 1266, L"Image type not supported"},
        {bilinearModule, L"bilinearIPPRgb8Rgb8", Region, 1284, L"There is no common shutter region"},
        {bilinearModule, L"bilinearIPPRgb8Rgb8", NullPointer, 1365,
         L"NULL pointer of src/dst passed and IPP method failed in bilinearIPPRgb8Rgb8 method with error ID :"},
        {bilinearModule, L"bilinearIPPRgb8Rgb8", Status, 1369,
         L"IPP method failed in bilinearIPPRgb8Rgb8 method with error ID :"},
        {bilinearModule, L"bilinearIPPRgb8Rgb8", Exception, 1381, L"Exception in function bilinearIPPRgb8Rgb8"},
        {bicubicModule, L"bicubicGrey12Grey12", Type, 273, L"Image type not supported"},
        {bicubicModule, L"bicubicGrey12Grey12", Source, 324,
         L"get origin for source raster returned NULL in method bicubicGrey12Grey12"},
        {bicubicModule, L"bicubicGrey12Grey12", Destination, 327,
         L"get origin for dst raster returned NULL in method bicubicGrey12Grey12"},
        {bicubicModule, L"bicubicGrey12Grey12", Exception, 462, L"Exception in function bicubicGrey12Grey12"},
        {bicubicModule, L"bicubicGrey12Grey12_ForMagicGlass", Type, 485, L"Image type not supported"},
        {bicubicModule, L"bicubicGrey12Grey12_ForMagicGlass", Source, 520,
         L"get origin for source raster returned NULL in method bicubicGrey12Grey12_ForMagicGlass"},
        {bicubicModule, L"bicubicGrey12Grey12_ForMagicGlass", Destination, 523,
         L"get origin for dst raster returned NULL in method bicubicGrey12Grey12_ForMagicGlass"},
        {bicubicModule, L"bicubicGrey12Grey12_ForMagicGlass", Exception, 641,
         L"Exception in function bicubicGrey12Grey12_ForMagicGlass"},
        {bicubicModule, L"bicubicGrey12IndexMap", Type, 668, L"Image type not supported"},
        {bicubicModule, L"bicubicGrey12IndexMap", Source, 761,
         L"get origin for source raster returned NULL in method bicubicGrey12IndexMap"},
        {bicubicModule, L"bicubicGrey12IndexMap", Destination, 764,
         L"get origin for dst raster returned NULL in method bicubicGrey12IndexMap"},
        {bicubicModule, L"bicubicGrey12IndexMap", Exception, 1002, L"Exception in function bicubicGrey12IndexMap"},
        {bicubicModule, L"bicubicRgb8Rgb8", Type, 1025, L"Image type not supported"},
        {bicubicModule, L"bicubicRgb8Rgb8", Source, 1061,
         L"get origin for source raster returned NULL in method bicubicRgb8Rgb8"},
        {bicubicModule, L"bicubicRgb8Rgb8", Destination, 1064,
         L"get origin for dst raster returned NULL in method bicubicRgb8Rgb8"},
        {bicubicModule, L"bicubicRgb8Rgb8", Exception, 1189, L"Exception in function bicubicRgb8Rgb8"},
        {bicubicModule, L"bicubicRgb8Rgb8Map", Type, 1212, L"Image type not supported"},
        {bicubicModule, L"bicubicRgb8Rgb8Map", Table, 1221, L"look-up table is NULL in method bicubicRgb8Rgb8Map"},
        {bicubicModule, L"bicubicRgb8Rgb8Map", Source, 1250,
         L"get origin for source raster returned NULL in method bicubicRgb8Rgb8Map"},
        {bicubicModule, L"bicubicRgb8Rgb8Map", Destination, 1253,
         L"get origin for dst raster returned NULL in method bicubicRgb8Rgb8Map"},
        {bicubicModule, L"bicubicRgb8Rgb8Map", Exception, 1384, L"Exception in function bicubicRgb8Rgb8Map"},
        {bicubicModule, L"bicubicIPPGrey12Grey12", Type, 1603, L"Image type not supported"},
        {bicubicModule, L"bicubicIPPGrey12Grey12", Region, 1621, L"There is no common shutter region"},
        {bicubicModule, L"bicubicIPPGrey12Grey12", NullPointer, 1702,
         L"NULL pointer of src/dst passed and IPP method failed in bicubicIPPGrey12Grey12 method with error ID :"},
        {bicubicModule, L"bicubicIPPGrey12Grey12", Status, 1706,
         L"IPP method failed in bicubicIPPGrey12Grey12 method with error ID :"},
        {bicubicModule, L"bicubicIPPGrey12Grey12", Exception, 1718, L"Exception in function bicubicIPPGrey12Grey12"},
        {bicubicModule, L"bicubicIPPRgb8Rgb8", Type, 1741, L"Image type not supported"},
        {bicubicModule, L"bicubicIPPRgb8Rgb8", Region, 1759, L"There is no common shutter region"},
        {bicubicModule, L"bicubicIPPRgb8Rgb8", NullPointer, 1840,
         L"NULL pointer of src/dst passed and IPP method failed in bicubicIPPRgb8Rgb8 method with error ID :"},
        {bicubicModule, L"bicubicIPPRgb8Rgb8", Status, 1844,
         L"IPP method failed in bicubicIPPRgb8Rgb8 method with error ID :"},
        {bicubicModule, L"bicubicIPPRgb8Rgb8", Exception, 1856, L"Exception in function bicubicIPPRgb8Rgb8"},
    };
    return reports;
}

/// The report that a member makes of a problem; all but those of a primitive's status have the number 0.
inline Report statedReport(const std::wstring& member, Problem problem, long number = 0) {
    for (const StatedReport& stated : resamplerReports()) {
        if (stated.member == member && stated.problem == problem) {
            return errorReport(stated.message, number, stated.module, stated.line);
        }
    }
    ADD_FAILURE() << narrow(member) << " has no such report";
    return {};
}

/// Takes the reports of one module; others report about the same calls, too.
inline std::vector<Report> reportsOf(const std::wstring& module) {
    std::vector<Report> all = ReportCapture::take();
    std::erase_if(all, [&](const Report& report) { return report.file != module; });
    return all;
}

}  // namespace zoltest
