#include "zolcs/mapping/greymap.h"

#include "zolcs/ccsimageutils.h"
#include "zolcs/ccsmemorymanager.h"
#include "zolcs/ccsraster.h"
#include "zolcs/ccsresults.h"
#include "zolcs/mapping/rastermapping.h"
#include "zolcs/pixels/imagelock.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace zolcs::mapping {

namespace {

/// Entries of a chunk; every 16-bit value has one.
constexpr std::size_t chunkEntries = CCsMemoryManager::chunkSize / sizeof(std::uint32_t);

/// Forbids the accelerated way through mapRaster.
constexpr int noAccelerationFlag = 0x2;

}  // namespace

GreyMap::GreyMap(const GreyMap& other)
    : IGreyMap(other),
      kind_(other.kind_),
      planeColors_(other.planeColors_),
      groupColors_(other.groupColors_),
      lutValid_(other.lutValid_),
      window_(other.window_),
      enabled_(other.enabled_),
      nonLinearSet_(other.nonLinearSet_),
      windowedValid_(other.windowedValid_),
      windowedStart_(other.windowedStart_),
      windowedCount_(other.windowedCount_),
      presentationSet_(other.presentationSet_),
      remapSet_(other.remapSet_),
      remap_(other.remap_),
      sigmoid_(other.sigmoid_),
      sigmoidBits_(other.sigmoidBits_),
      exactNonLinearWindow_(other.exactNonLinearWindow_),
      nonLinearShift_(other.nonLinearShift_),
      mapFlags_(other.mapFlags_) {
    if (!nonLinear_.copy(other.nonLinear_) || !presentation_.copy(other.presentation_)) throw std::bad_alloc();
    if (other.windowed_ != nullptr) {
        windowed_ = allocateTable<std::uint16_t>(windowedCount_);
        if (windowed_ == nullptr) throw std::bad_alloc();
        std::copy_n(other.windowed_.get(), windowedCount_, windowed_.get());
    }
}

GreyMap::~GreyMap() { GreyMap::releaseLut(); }

void GreyMap::setColorMapIndex(CCsColorMapT* colorMap) {
    colorMapIndex_ = colorMap;
    lutValid_ = false;
}

int GreyMap::setWindow(unsigned int centre, int width) {
    // Hosts hand a negative centre over as its 32-bit pattern.
    window_ = {static_cast<std::int32_t>(centre), width};
    lutValid_ = false;
    windowedValid_ = false;
    return CCS_DONE;
}

int GreyMap::allocateLut() {
    CSingleLock lock(&lutLock_, TRUE);
    if (lut_ != nullptr) return CCS_DONE;
    void* chunk = memorySources().allocateChunk();
    if (chunk == nullptr) {
        MorvaLog(L"zolcs - E", L"Exception: Out of memory");
        return CCS_MISSING;
    }
    // Chunks come with whatever they held before, and copies of the table reach beyond the entries that are built.
    std::memset(chunk, 0, CCsMemoryManager::chunkSize);
    lut_ = static_cast<std::uint32_t*>(chunk);
    lutValid_ = false;
    return CCS_DONE;
}

void GreyMap::releaseLut() {
    CSingleLock lock(&lutLock_, TRUE);
    if (lut_ != nullptr) CCsMemoryManager::releaseChunk(lut_);
    lut_ = nullptr;
    lutValid_ = false;
}

int GreyMap::setNonLinearLut(const unsigned short* values, unsigned int firstMapped, int count, bool exact) {
    if (values == nullptr && count > 0) return fail(kind_.reports.nonLinearValuesMissing, 0, CCS_FAILED);
    nonLinearSet_ = false;
    lutValid_ = false;
    windowedValid_ = false;
    if (!nonLinear_.assign(values, firstMapped, count)) return fail(kind_.reports.nonLinearOutOfMemory, 0, CCS_MISSING);
    exactNonLinearWindow_ = exact;
    nonLinearSet_ = true;
    return CCS_DONE;
}

void GreyMap::clearNonLinearLut() { nonLinearSet_ = false; }

void GreyMap::setIndexRemap(const unsigned char* table) {
    if (table == nullptr) return;
    std::copy_n(table, remap_.size(), remap_.begin());
    remapSet_ = true;
    lutValid_ = false;
}

int GreyMap::setPresentationLut(const unsigned short* values, unsigned int firstMapped, int count) {
    if (values == nullptr && count > 0) return fail(kind_.reports.presentationValuesMissing, 0, CCS_FAILED);
    presentationSet_ = false;
    if (!presentation_.assign(values, firstMapped, count)) {
        return fail(kind_.reports.presentationOutOfMemory, 0, CCS_MISSING);
    }
    presentationSet_ = true;
    return CCS_DONE;
}

bool GreyMap::hasPresentationLut() { return presentationSet_; }

PresentationLevel GreyMap::presentationLevel(std::uint32_t shift) const {
    return {presentationSet_ ? &presentation_ : nullptr, shift};
}

unsigned int GreyMap::applyPresentationLut(unsigned int value, unsigned int shift) {
    const PresentationLevel level = presentationLevel(shift);
    if (level.tableMissing()) fail(kind_.presentationMissing, 0, CCS_MISSING);
    return level(value);
}

int GreyMap::getWindowedNonLinearLut(unsigned short** values, unsigned int* first, unsigned int* count,
                                     bool unwindowed) {
    if (buildWindowed() != CCS_DONE) return CCS_FAILED;
    const bool whole = exactNonLinearWindow_ || unwindowed;
    if (values != nullptr) *values = whole ? nonLinear_.data() : windowed_.get();
    if (first != nullptr) *first = whole ? nonLinear_.firstMapped() : windowedStart_;
    if (count != nullptr) *count = whole ? nonLinear_.count() : windowedCount_;
    return CCS_DONE;
}

void GreyMap::setEnabled(bool on) {
    enabled_ = on;
    if (!on) lutValid_ = false;
}

bool GreyMap::isEnabled() { return enabled_; }

void GreyMap::enableSigmoid() { sigmoid_ = true; }

void GreyMap::setSigmoidBits(int bits) { sigmoidBits_ = bits; }

void GreyMap::setExactNonLinearWindow(bool on) { exactNonLinearWindow_ = on; }

unsigned short GreyMap::getNonLinearShift() { return nonLinearShift_; }

void GreyMap::setOverlayColors(unsigned int* planeColors, unsigned int* groupColors) {
    planeColors_ = planeColors;
    groupColors_ = groupColors;
}

std::pair<unsigned int*, unsigned int*> GreyMap::getOverlayColors() { return {planeColors_, groupColors_}; }

void GreyMap::setMapFlags(int flags) { mapFlags_ = flags; }

int GreyMap::getMapFlags() { return mapFlags_; }

void* GreyMap::getLut() {
    if (!lutValid_) {
        if (allocateLut() != CCS_DONE || build() != CCS_DONE) return nullptr;
        lutValid_ = true;
    }
    return lut_;
}

void GreyMap::copyLut(unsigned int** dst) {
    if (dst == nullptr || *dst == nullptr) return;
    const void* lut = getLut();
    if (lut == nullptr) {
        std::memset(*dst, 0, CCsMemoryManager::chunkSize);
        return;
    }
    std::memcpy(*dst, lut, CCsMemoryManager::chunkSize);
    // Deliberate: a quarter of each of the following sixteenths, and no more.
    for (std::size_t k = 1; k < 16; ++k) {
        std::memcpy(reinterpret_cast<std::byte*>(*dst) + 0x4000 * k, lut, 0x1000);
    }
}

ShownLevels GreyMap::shown() const { return shownLevels(colorMapIndex_->entries, remapSet_ ? remap_.data() : nullptr); }

int GreyMap::build() { return nonLinearSet_ ? buildFromNonLinear() : buildFromWindow(); }

int GreyMap::buildFromWindow() {
    if (window_.width < 1) return fail(kind_.reports.widthRefused, window_.width, CCS_FAILED);
    if (!hasPalette()) return fail(kind_.reports.colourMapMissing, 0, CCS_MISSING);
    if (sigmoid_ && (remapSet_ || !presentationSet_)) {
        fillSigmoid(entries().first(kind_.sigmoidEntries), window_, sigmoidBits_, remapSet_, shown());
    } else if (presentationSet_ && !remapSet_) {
        const auto fill = kind_.presentsStoredValues ? fillPresentedStored : fillPresented;
        fill(entries(), window_, presentation_, shown());
    } else {
        fillShownLevels(entries(), window_.low(), window_.width, shown());
    }
    return CCS_DONE;
}

int GreyMap::buildFromNonLinear() {
    const int built = buildWindowed();
    if (built == CCS_MISSING && kind_.windowedMissing.message != nullptr) {
        return fail(kind_.windowedMissing, 0, CCS_MISSING);
    }
    if (built != CCS_DONE) return CCS_FAILED;
    if (!hasPalette()) return fail(kind_.reports.colourMapMissing, 0, CCS_MISSING);
    const std::span<const std::uint16_t> windowed(windowed_.get(), windowedCount_);
    nonLinearShift_ = CCsImageUtils::calculateBitShiftValueForGreyConversion(
        kind_.presentsStoredValues ? *std::max_element(windowed.begin(), windowed.end()) : nonLinear_.maximum());
    if (exactNonLinearWindow_) {
        fillShownLevels(entries(), windowedStart_, windowedCount_, shown());
    } else if (kind_.presentsStoredValues) {
        const auto level = [&](std::uint16_t value) { return static_cast<unsigned int>(value) >> nonLinearShift_; };
        fillNonLinear(entries(), windowedStart_, windowed, level, shown());
    } else {
        fillNonLinear(entries(), windowedStart_, windowed, presentationLevel(nonLinearShift_), shown());
    }
    return CCS_DONE;
}

int GreyMap::buildWindowed() {
    if (windowedValid_) return CCS_DONE;
    if (window_.width < 1) return fail(kind_.reports.widthRefused, window_.width, CCS_FAILED);
    const WindowedExtent extent = windowedExtent(window_, nonLinear_.count(), static_cast<std::int64_t>(kind_.entries));
    TableMemory<std::uint16_t> windowed = allocateTable<std::uint16_t>(extent.count);
    if (windowed == nullptr) return fail(kind_.reports.windowedOutOfMemory, 0, CCS_MISSING);
    if (nonLinear_.missing()) return fail(kind_.nonLinearMissing, 0, CCS_MISSING);
    const std::span<std::uint16_t> filled(windowed.get(), extent.count);
    fillWindowed(filled, extent, nonLinear_);
    if (!kind_.presentsStoredValues) nonLinearAuto_ = autoWindow(filled);
    windowed_ = std::move(windowed);
    windowedStart_ = extent.start;
    windowedCount_ = extent.count;
    windowedValid_ = true;
    return CCS_DONE;
}

int GreyMap::mapRaster(CCsRaster& src, CCsImage& dst, RECT segment, bool wholeImageAllowed, unsigned char* pixelPadding,
                       CCs2dTrafo* trafo) {
    CSingleLock lock(&rasterLock_, TRUE);
    try {
        return mapLocked(src, dst, segment, wholeImageAllowed, pixelPadding, trafo);
    } catch (const std::bad_alloc&) {
        return fail(kind_.reports.mappingOutOfMemory, 0, CCS_INVALID);
    }
}

int GreyMap::mapLocked(CCsRaster& src, CCsImage& dst, const RECT& segment, bool wholeImageAllowed,
                       unsigned char* pixelPadding, CCs2dTrafo* trafo) {
    if (!acceptImages(src, dst, kind_.images)) return CCS_INVALID;

    const auto* lut = static_cast<const std::uint32_t*>(getLut());
    if (lut == nullptr) {
        // What could not be built has been reported; a clone without a colour map has nothing that could be.
        return lutValid_ ? fail(kind_.reports.colourMapMissing, 0, CCS_INVALID) : CCS_INVALID;
    }
    const ImagePairLock images(src, dst);
    if (!acceptMemory(images, kind_.images)) return CCS_INVALID;

    const PixelRules rules = PixelRules::forWholeRaster(src, this, pixelPadding);
    TableMemory<std::uint32_t> extended;
    lut = tableOfAllValues(mayAccelerate(src, wholeImageAllowed, pixelPadding), rules.embedded(), extended);
    if (lut == nullptr) return fail(kind_.reports.mappingOutOfMemory, 0, CCS_INVALID);
    RasterMapping mapping(rules, lut, src, images.source(), dst, images.destination());
    const RECT area = mapping.clipped(segment);
    if (!mapping.coversDestination(area)) {
        CCsImageUtils::fillDisplayedRasterWithShutterPresentationValue(src, dst, images.destination(), trafo, segment);
    }
    mapping.run(area, shownWindow(), kind_.entries);
    return CCS_DONE;
}

Window GreyMap::shownWindow() const {
    if (!nonLinearSet_ || !exactNonLinearWindow_) return window_;
    // The even steps of an exact window begin and end with what the depth leaves of it.
    const auto width = static_cast<std::int32_t>(windowedCount_);
    return {static_cast<std::int32_t>(windowedStart_) + width / 2, width};
}

bool GreyMap::mayAccelerate(const CCsRaster& src, bool wholeImageAllowed, const unsigned char* pixelPadding) const {
    return wholeImageAllowed && (mapFlags_ & noAccelerationFlag) == 0 && pixelPadding == nullptr &&
           !src.isEmbeddedOverlayPresent() && !src.isShutter() && !src.isNonEmbeddedOverlayPresent();
}

const std::uint32_t* GreyMap::tableOfAllValues(bool accelerated, const EmbeddedOverlay& overlay,
                                               TableMemory<std::uint32_t>& extended) const {
    if (kind_.entries == chunkEntries) return lut_;
    if (!accelerated) {
        extended = extendedTable(entries(), overlay);
        return extended.get();
    }
    // Deliberate: the very last entry stays as it is.
    std::fill(lut_ + kind_.entries, lut_ + chunkEntries - 1, lut_[kind_.entries - 1]);
    return lut_;
}

}  // namespace zolcs::mapping
