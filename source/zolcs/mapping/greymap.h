// What the grey value maps share. Their sample depth, type and reports are data; there is one implementation.
#pragma once

#include "zolcs/ccsmap.h"
#include "zolcs/mapping/storedtable.h"
#include "zolcs/mapping/windowlut.h"
#include "zolcs/pixels/embeddedoverlay.h"
#include "zolcs/pixels/imagepair.h"
#include "zolcs/support/report.h"

#include <array>
#include <cstdint>
#include <span>
#include <utility>

namespace zolcs::mapping {

/// What all grey maps report in the same words, each under its own module.
struct GreyMapReports {
    ReportSite widthRefused;
    ReportSite colourMapMissing;
    ReportSite nonLinearOutOfMemory;
    ReportSite nonLinearValuesMissing;
    ReportSite presentationOutOfMemory;
    ReportSite presentationValuesMissing;
    ReportSite windowedOutOfMemory;
    ReportSite mappingOutOfMemory;
};

constexpr GreyMapReports greyMapReports(const wchar_t* module) {
    return {
        .widthRefused = {L"Window width = negativ or zero", module, 301},
        .colourMapMissing = {L"Memory not allocated for colorMapIndex_", module, 306},
        .nonLinearOutOfMemory = {L"Memory allocation failed", module, 342},
        .nonLinearValuesMissing = {L"No values for the non-linear LUT", module, 337},
        .presentationOutOfMemory = {L"Memory allocation failed for Presentation LUT", module, 388},
        .presentationValuesMissing = {L"No values for the presentation LUT", module, 383},
        .windowedOutOfMemory = {L"Memory allocation failed", module, 455},
        .mappingOutOfMemory = {L"Memory allocation failed in method mapRaster", module, 631},
    };
}

/// In what one grey map differs from another.
struct GreyMapKind {
    std::size_t entries;         ///< entries of the table that getLut builds; larger stored values take the last
    std::size_t sigmoidEntries;  ///< entries that the sigmoid fills; those behind them stay as they are

    /// The presentation table is indexed by the stored value, and values of a non-linear table do not go through it:
    /// their shift follows from what the window shows of them, and there is no auto window. Otherwise the window and
    /// the non-linear table spread over the whole presentation table, and the shift follows from the whole non-linear
    /// table.
    bool presentsStoredValues;

    ReportSite presentationMissing;
    ReportSite nonLinearMissing;
    ReportSite windowedMissing;  ///< follows the report of what kept a table from being built; no message for none
    ImagePairRules images;       ///< those of mapRaster
    GreyMapReports reports;
};

/// A map of grey values. The operations are documented at IMap and IGreyMap.
class GreyMap : public IGreyMap {
public:
    GreyMap& operator=(const GreyMap&) = delete;
    ~GreyMap() override;

    void setColorMapIndex(CCsColorMapT* colorMap) override;
    int mapRaster(CCsRaster& src, CCsImage& dst, RECT segment, bool wholeImageAllowed, unsigned char* pixelPadding,
                  CCs2dTrafo* trafo) override;
    void* getLut() override;
    int setWindow(unsigned int centre, int width) override;

    int allocateLut() override;
    int setNonLinearLut(const unsigned short* values, unsigned int firstMapped, int count, bool exact) override;
    void setIndexRemap(const unsigned char* table) override;
    int setPresentationLut(const unsigned short* values, unsigned int firstMapped, int count) override;
    int getWindowedNonLinearLut(unsigned short** values, unsigned int* first, unsigned int* count,
                                bool unwindowed) override;
    void setEnabled(bool on) override;
    bool isEnabled() override;
    void clearNonLinearLut() override;
    void copyLut(unsigned int** dst) override;
    void enableSigmoid() override;
    void setSigmoidBits(int bits) override;
    void setExactNonLinearWindow(bool on) override;
    unsigned short getNonLinearShift() override;
    unsigned int applyPresentationLut(unsigned int value, unsigned int shift) override;
    bool hasPresentationLut() override;
    void setOverlayColors(unsigned int* planeColors, unsigned int* groupColors) override;
    std::pair<unsigned int*, unsigned int*> getOverlayColors() override;
    void releaseLut() override;
    void setMapFlags(int flags) override;
    int getMapFlags() override;

protected:
    /// `kind` must outlive the map.
    explicit GreyMap(const GreyMapKind& kind) : kind_(kind) {}

    /// A deep copy that starts without colour map, table and auto window but takes over whether the table is valid.
    /// Throws std::bad_alloc when memory is exhausted.
    GreyMap(const GreyMap& other);

private:
    [[nodiscard]] std::span<std::uint32_t> entries() const { return {lut_, kind_.entries}; }
    [[nodiscard]] bool hasPalette() const { return colorMapIndex_ != nullptr && colorMapIndex_->entries != nullptr; }
    [[nodiscard]] ShownLevels shown() const;
    [[nodiscard]] PresentationLevel presentationLevel(std::uint32_t shift) const;
    int build();
    int buildFromWindow();
    int buildFromNonLinear();
    int buildWindowed();
    int mapLocked(CCsRaster& src, CCsImage& dst, const RECT& segment, bool wholeImageAllowed,
                  unsigned char* pixelPadding, CCs2dTrafo* trafo);
    /// The window that the table shows if it is linear.
    [[nodiscard]] Window shownWindow() const;
    [[nodiscard]] bool mayAccelerate(const CCsRaster& src, bool wholeImageAllowed,
                                     const unsigned char* pixelPadding) const;
    /// A table with an entry for every 16-bit value; null when memory is exhausted. `extended` keeps what it needs.
    const std::uint32_t* tableOfAllValues(bool accelerated, const EmbeddedOverlay& overlay,
                                          TableMemory<std::uint32_t>& extended) const;

    const GreyMapKind& kind_;
    CCsColorMapT* colorMapIndex_ = nullptr;
    unsigned int* planeColors_ = nullptr;
    unsigned int* groupColors_ = nullptr;
    bool lutValid_ = false;
    std::uint32_t* lut_ = nullptr;  // a chunk of the pool
    Window window_;
    AutoWindow nonLinearAuto_;
    bool enabled_ = true;
    bool nonLinearSet_ = false;
    StoredTable nonLinear_;
    bool windowedValid_ = false;
    TableMemory<std::uint16_t> windowed_;
    std::uint32_t windowedStart_ = 0;
    std::uint32_t windowedCount_ = 0;
    bool presentationSet_ = false;
    StoredTable presentation_;
    bool remapSet_ = false;
    std::array<unsigned char, 256> remap_{};
    CCriticalSection rasterLock_;
    CCriticalSection lutLock_;
    bool sigmoid_ = false;
    int sigmoidBits_ = 12;
    bool exactNonLinearWindow_ = false;
    unsigned short nonLinearShift_ = 0;
    int mapFlags_ = 0;
};

}  // namespace zolcs::mapping

/// The map of 12-bit grey values.
class CCsGrey12Map final : public zolcs::mapping::GreyMap {
public:
    CCsGrey12Map();
    CCsGrey12Map(const CCsGrey12Map& other) = default;
    CCsGrey12Map& operator=(const CCsGrey12Map&) = delete;
    ~CCsGrey12Map() override = default;
    IMap* clone() override;
};

/// The map of 16-bit grey values.
class CCsGrey16Map final : public zolcs::mapping::GreyMap {
public:
    CCsGrey16Map();
    CCsGrey16Map(const CCsGrey16Map& other) = default;
    CCsGrey16Map& operator=(const CCsGrey16Map&) = delete;
    ~CCsGrey16Map() override = default;
    IMap* clone() override;
};
