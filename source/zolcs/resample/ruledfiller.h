// What lies above an image's values: shutters, padding and overlay planes; embedded overlay bits.
#pragma once

#include "zolcs/pixels/embeddedoverlay.h"
#include "zolcs/resample/nearest/nearestkernel.h"
#include "zolcs/resample/spanfiller.h"
#include "zolcs/rules/pixelrules.h"

#include <cstdint>
#include <utility>

namespace zolcs {

/// Shows the embedded overlay bits of the pixel on which a position falls above what another filler shows.
class EmbeddedFiller final : public FillerLayer<std::uint32_t> {
public:
    /// `raw` gives stored values by position.
    EmbeddedFiller(SpanFillerPtr<std::uint32_t> below, const EmbeddedOverlay& overlay, NearestKernel<std::uint16_t> raw)
        : FillerLayer(std::move(below)), overlay_(overlay), raw_(raw) {}

    bool fill(const DisplayRow& row, ColumnRange columns, std::uint32_t* out) override;

private:
    EmbeddedOverlay overlay_;
    NearestKernel<std::uint16_t> raw_;
};

/// Lays overlay planes, shutters and padding over another filler; pixels that shutters or padding hide are not fetched.
class RuledFiller final : public FillerLayer<std::uint32_t> {
public:
    /// `rules` must outlive the filler. `raw` gives stored values by position, for embedded overlay bits above shutters
    /// and padding.
    RuledFiller(SpanFillerPtr<std::uint32_t> below, const PixelRules& rules, NearestKernel<std::uint16_t> raw)
        : FillerLayer(std::move(below)), rules_(rules), raw_(raw) {}

    bool fill(const DisplayRow& row, ColumnRange columns, std::uint32_t* out) override;

private:
    void paint(const DisplayRow& row, const PixelRun& run, std::uint32_t* out) const;

    const PixelRules& rules_;
    NearestKernel<std::uint16_t> raw_;
    PixelRuns runs_;
};

}  // namespace zolcs
