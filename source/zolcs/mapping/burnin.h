// Burning rendered bitmaps into stored values.
#pragma once

#include "zolcs/ccsraster.h"
#include "zolcs/ccsresults.h"
#include "zolcs/pixels/imagelock.h"
#include "zolcs/support/report.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace zolcs::mapping {

/// What the burning in reports.
struct BurnInReports {
    ReportSite typeRefused;
    ReportSite withoutBitmap;
    ReportSite withoutMemory;
};

constexpr BurnInReports burnInReports(const wchar_t* typeRefused, const wchar_t* module, int line) {
    return {.typeRefused = {typeRefused, module, line},
            .withoutBitmap = {L"No bitmap to merge", module, line + 5},
            .withoutMemory = {L"Raster to merge into has no memory", module, line + 10}};
}

/// The colour that a rendered bitmap marks blanked pixels with.
inline constexpr std::uint32_t blankMark = 0x00010101;

/// Replaces each stored value by burn(bitmap pixel, stored value). The bitmap's pixels follow its 40-byte header
/// without gaps, and its header tells how long its rows are; what of the raster lies beyond it stays. CCS_DONE, or
/// CCS_FAILED with a report for a raster whose type is not accepted, a null bitmap and a raster without memory.
template <typename Stored, typename Burn>
int burnIn(CCsRaster& raster, const BITMAPINFO* dib, bool typeAccepted, const BurnInReports& reports, Burn burn) {
    if (!typeAccepted) return fail(reports.typeRefused, raster.getType(), CCS_FAILED);
    if (dib == nullptr) return fail(reports.withoutBitmap, 0, CCS_FAILED);
    const ImageLock lock(raster);
    if (lock.origin() == nullptr) return fail(reports.withoutMemory, 0, CCS_FAILED);

    const BITMAPINFOHEADER& header = dib->bmiHeader;
    const std::int64_t rowLength = std::max<std::int64_t>(header.biWidth, 0);
    const std::int64_t columns = std::clamp<std::int64_t>(raster.getWidth(), 0, rowLength);
    const std::int64_t rows = std::min<std::int64_t>(raster.getHeight(), std::abs(std::int64_t{header.biHeight}));
    const auto* marks = reinterpret_cast<const std::uint32_t*>(&header + 1);
    auto* stored = reinterpret_cast<Stored*>(lock.origin());
    for (std::int64_t y = 0; y < rows; ++y, marks += rowLength, stored += raster.getPitch()) {
        std::transform(marks, marks + columns, stored, stored, burn);
    }
    return CCS_DONE;
}

}  // namespace zolcs::mapping
