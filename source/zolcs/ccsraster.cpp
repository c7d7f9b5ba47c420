#include "zolcs/ccsraster.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

#include "zolcs/ccsimageutils.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsoverlay.h"
#include "zolcs/drawing/gdiscope.h"
#include "zolcs/pixels/pixelsize.h"
#include "zolcs/support/conversion.h"
#include "zolcs/support/report.h"

namespace zolcs {

/// How drawing into a bitmap reports its failures.
struct DibReports {
    ReportSite memory;
    ReportSite section;
    ReportSite deviceContext;
};

}  // namespace zolcs

namespace {

constexpr const wchar_t* module = L"source\\zolcs\\ccsraster";
constexpr zolcs::ReportSite copyType{L"Unknown raster type", module, 221};
constexpr zolcs::ReportSite sizeType{L"Unknown raster type", module, 394};
constexpr zolcs::ReportSite sizeInvalid{L"Constructor is invalid", module, 401};

// How a type's lines are padded, and which line of this module reports that its memory is exhausted.
struct TypeRule {
    int type;
    int pitchMultiple;
    zolcs::ReportSite memory;
};

constexpr const wchar_t* memoryFailed = L"Memory allocation failed";
constexpr TypeRule typeRules[] = {
    {CCS_INDEX8, 8, {memoryFailed, module, 298}}, {CCS_GREY12, 4, {memoryFailed, module, 315}},
    {CCS_GREY16, 4, {memoryFailed, module, 331}}, {CCS_GREY8, 8, {memoryFailed, module, 344}},
    {CCS_RGB12, 1, {memoryFailed, module, 357}},  {CCS_RGB8, 2, {memoryFailed, module, 372}},
    {CCS_RGB24, 1, {memoryFailed, module, 388}},
};

constexpr zolcs::DibReports greyDib{{memoryFailed, module, 496},
                                    {L"CreateDIBSection failed", module, 515},
                                    {L"CreateCompatibleDC failed", module, 521}};
constexpr zolcs::DibReports colourDib{{memoryFailed, module, 577},
                                      {L"CreateDIBSection failed", module, 596},
                                      {L"CreateCompatibleDC failed", module, 602}};

// The colour that grey maps take for ink when they merge graphics.
constexpr unsigned long greyInk = 0xFFFF;

using Bytes = std::unique_ptr<unsigned char[]>;

BITMAPINFOHEADER dibHeader(int width, int height) {
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = zolcs::saturated(-std::int64_t{height});  // top line first
    header.biPlanes = 1;
    header.biBitCount = 32;
    header.biCompression = BI_RGB;
    header.biXPelsPerMeter = 3000;
    header.biYPelsPerMeter = 3000;
    return header;
}

const TypeRule* ruleOf(int type) {
    const auto* const rule = std::find_if(std::begin(typeRules), std::end(typeRules),
                                          [type](const TypeRule& candidate) { return candidate.type == type; });
    return rule != std::end(typeRules) ? rule : nullptr;
}

constexpr std::int64_t mostBytes = std::numeric_limits<std::uint32_t>::max();

// `pixels` in bytes; one more than mostBytes where they are negative or do not fit 32 bits.
std::int64_t bytesOf(std::int64_t pixels, int pixelSize) {
    const bool fits = pixels >= 0 && (pixelSize == 0 || pixels <= mostBytes / pixelSize);
    return fits ? pixels * pixelSize : mostBytes + 1;
}

ZolMemMappedBuffer* allocate(std::int64_t total, std::int64_t guard, bool mapped) {
    if (total > mostBytes || guard > mostBytes) return nullptr;
    return ZolMemMappedManager::getIntance()->allocateMapMemory(static_cast<unsigned int>(total),
                                                                static_cast<unsigned long>(guard), mapped, false);
}

}  // namespace

CCsRaster::CCsRaster(int width, int height, int type, double ratioYx, bool mapMemory, bool deferAllocation)
    : mapMemory(mapMemory), deferAllocation(deferAllocation) {
    const int result = setSize(width, height, type, ratioYx, mapMemory);
    if (result != CCS_DONE) {
        valid = 0;
        throw int(result);
    }
}

CCsRaster::CCsRaster(ZolMemMappedBuffer* buffer, int width, int height, int type, double ratioYx) : externalBuffer(1) {
    mMemBuffer = buffer;
    this->width = width;
    this->height = height;
    pitch = width;
    if (type != -1) this->type = type;
    setAspectRatio(ratioYx);
}

CCsRaster::CCsRaster(const CCsRaster& other)
    : CCsImage(other),  // which copies nothing
      valid(other.valid),
      externalBuffer(other.externalBuffer),
      mapMemory(other.mapMemory),
      deferAllocation(other.deferAllocation),
      bitmapShutter(other.bitmapShutter),
      rectShutter(other.rectShutter),
      circShutter(other.circShutter),
      polygonalShutter(other.polygonalShutter),
      rectShutterRect(other.rectShutterRect),
      circShutterRect(other.circShutterRect),
      polygonVertices(other.polygonVertices),
      bitmapShutterInfo(other.bitmapShutterInfo),
      presentationShutterValue(other.presentationShutterValue),
      overlayGroup(other.overlayGroup),
      embeddedOverlay(other.embeddedOverlay) {
    width = other.width;
    height = other.height;
    type = other.type;
    pitch = other.pitch;
    ratioYx = other.ratioYx;
    const int result = allocateLike(other);
    if (result != CCS_DONE) {
        valid = 0;
        throw int(result);
    }
    copyPixels(other);
}

CCsRaster& CCsRaster::operator=(const CCsRaster& other) = default;

CCsRaster* CCsRaster::NewInstance() { return new CCsRaster(*this); }

CCsRaster::~CCsRaster() = default;

int CCsRaster::allocateLike(const CCsRaster& other) {
    if (other.externalBuffer != 1 || other.mMemBuffer == nullptr) {
        return setSize(width, height, type, ratioYx, mapMemory);
    }
    // The host's layout is kept (its lines need not be padded), with room for a line and a pixel beyond the image.
    const std::int64_t guard = bytesOf(static_cast<std::int64_t>(pitch) + 1, zolcs::pixelSize(type));
    mMemBuffer = allocate(guard + static_cast<std::int64_t>(other.mMemBuffer->getSize()), guard, false);
    if (mMemBuffer == nullptr) return CCS_MISSING;
    if (type == CCS_INDEX8) origin = mMemBuffer->lock();
    return CCS_DONE;
}

void CCsRaster::copyPixels(const CCsRaster& other) {
    if (mMemBuffer == nullptr || other.mMemBuffer == nullptr) return;
    const int size = zolcs::pixelSize(type);
    if (size == 0) {
        zolcs::fail(copyType, type, CCS_FAILED);
        return;
    }
    const std::int64_t lines = type == CCS_RGB24 ? height : static_cast<std::int64_t>(height) + 1;
    const std::int64_t pixels = lines * pitch + (type == CCS_RGB24 ? 0 : 1);
    // What does not fit is more than any buffer holds; the copy ends with the shorter buffer.
    mMemBuffer->Memcpy(0, other.mMemBuffer, static_cast<unsigned long>(std::min(bytesOf(pixels, size), mostBytes)));
}

unsigned char* CCsRaster::getOrigin() {
    if (mMemBuffer == nullptr) {
        deferAllocation = false;
        setSize(width, height, type, ratioYx, mapMemory);
    }
    return CCsImage::getOrigin();
}

int CCsRaster::setSize(int newWidth, int newHeight, int newType, double newRatioYx, bool newMapMemory) {
    if (valid != 1) return zolcs::fail(sizeInvalid, 0, CCS_FAILED);
    width = newWidth;
    height = newHeight;
    if (newType != -1) type = newType;
    setAspectRatio(newRatioYx);
    mapMemory = newMapMemory;
    const int result = replaceBuffer();
    sized = result == CCS_DONE;
    return result;
}

int CCsRaster::replaceBuffer() {
    delete mMemBuffer;
    mMemBuffer = nullptr;
    origin = nullptr;
    externalBuffer = 0;
    const TypeRule* const rule = ruleOf(type);
    if (rule == nullptr) return zolcs::fail(sizeType, type, CCS_FAILED);
    pitch = padding(width, rule->pitchMultiple);
    if (deferAllocation) return CCS_DONE;
    const int size = zolcs::pixelSize(type);
    // A negative size, or a width so large that its padded pitch does not fit, is memory that nobody has.
    const bool possible = width >= 0 && height >= 0 && pitch % rule->pitchMultiple == 0;
    if (possible && type == CCS_RGB24) {
        mMemBuffer = allocate(bytesOf(static_cast<std::int64_t>(width) * height, size), 0, mapMemory);
    } else if (possible) {
        const std::int64_t line = pitch;
        mMemBuffer = allocate(bytesOf((std::int64_t{height} + 1) * line + 1, size), bytesOf(line + 1, size), mapMemory);
    }
    if (mMemBuffer == nullptr) return zolcs::fail(rule->memory, 0, CCS_MISSING);
    origin = mMemBuffer->lock();
    return CCS_DONE;
}

void CCsRaster::setAspectRatio(double newRatioYx) {
    if (newRatioYx != 0.0) ratioYx = newRatioYx;
}

bool CCsRaster::isValid() const { return valid == 1 && sized; }

void CCsRaster::setRectShutter(RECT rect) {
    rectShutterRect = rect;
    rectShutter = 1;
}

void CCsRaster::setCircShutter(RECT box) {
    circShutterRect = box;
    circShutter = 1;
}

void CCsRaster::setPolygonalShutter(const std::vector<CPoint>& vertices) {
    polygonVertices = vertices;
    polygonalShutter = 1;
}

RECT CCsRaster::getRectShutterRect() const { return rectShutterRect; }
RECT CCsRaster::getCircShutterRect() const { return circShutterRect; }
std::vector<CPoint> CCsRaster::getPolygonalShutterCoordinates() const { return polygonVertices; }
CCsBitmapShutterInfo& CCsRaster::getBitmapShutterInfo() { return bitmapShutterInfo; }
const CCsBitmapShutterInfo& CCsRaster::getBitmapShutterInfo() const { return bitmapShutterInfo; }
bool CCsRaster::isRectShutter() const { return rectShutter == 1; }
bool CCsRaster::isCircShutter() const { return circShutter == 1; }
bool CCsRaster::isPolygonalShutter() const { return polygonalShutter == 1; }
bool CCsRaster::isBitmapShutter() const { return bitmapShutter == 1; }
bool CCsRaster::isDisplayShutter() const { return isCircShutter() || isRectShutter() || isPolygonalShutter(); }
bool CCsRaster::isShutter() const { return isDisplayShutter() || isBitmapShutter(); }

bool CCsRaster::setBitmapShutterInfo(const CCsBitmapShutterInfo& info) {
    if (info.tag == 0 && info.data == nullptr) return true;
    bitmapShutterInfo.tag = info.tag;
    bitmapShutterInfo.rows = info.rows;
    bitmapShutterInfo.columns = info.columns;
    bitmapShutterInfo.originX = info.originX;
    bitmapShutterInfo.originY = info.originY;
    bitmapShutterInfo.data = info.data;
    bitmapShutterInfo.reserved16 = info.reserved16;
    bitmapShutterInfo.presentationValue = info.presentationValue;
    bitmapShutter = 1;
    return true;
}

void CCsRaster::switchShuttersOff() {
    bitmapShutter = 0;
    rectShutter = 0;
    circShutter = 0;
    polygonalShutter = 0;
}

void CCsRaster::clearShutterValues() {
    bitmapShutterInfo.shutterValueAux = 0;
    bitmapShutterInfo.presentationValue = 0;
}

bool CCsRaster::setDisplayShutterInfo(const CCsDisplayShutterInfo& info) {
    const bool rectangle = info.rectangular.present != 0;
    const bool circle = info.circular.present != 0;
    const bool polygon = info.polygonPresent != 0;
    if (!rectangle && !circle && !polygon) return true;
    switchShuttersOff();
    clearShutterValues();
    if (rectangle) setRectShutter(info.rectangular.rect);
    if (circle) setCircShutter(info.circular.bounds);
    if (polygon) setPolygonalShutter(info.polygon);
    return true;
}

CCsDisplayShutterInfo CCsRaster::getDisplayShutterInfo() const {
    CCsDisplayShutterInfo info;
    info.rectangular.present = rectShutter;
    info.rectangular.rect = rectShutterRect;
    CCsImageUtils::findCircShutterInfo(info.circular, *this);
    info.polygonPresent = polygonalShutter;
    info.polygon = polygonVertices;
    info.presentationValue = getPresentationShutterValue();
    return info;
}

void CCsRaster::setPresentationShutterValue(unsigned short value) { presentationShutterValue = value; }

unsigned short CCsRaster::getPresentationShutterValue() const {
    return isBitmapShutter() ? bitmapShutterInfo.presentationValue : presentationShutterValue;
}

void CCsRaster::resetImage(int kind) {
    switch (kind) {
        case 1:
            circShutter = 0;
            break;
        case 2:
            rectShutter = 0;
            break;
        case 3:
            polygonalShutter = 0;
            polygonVertices.clear();
            break;
        case 4:
            bitmapShutter = 0;
            break;
        default:
            switchShuttersOff();
            break;
    }
    bitmapShutterInfo.shutterValueAux = 0;
    if (kind == -1) bitmapShutterInfo.presentationValue = 0;
}

void CCsRaster::setShutterInfo(CCsRaster& source, CCs2dTrafo* trafo) {
    if (source.isNonEmbeddedOverlayPresent()) overlayGroup = source.overlayGroup;
    embeddedOverlay = source.embeddedOverlay;
    switchShuttersOff();
    clearShutterValues();
    if (!source.isShutter()) return;
    presentationShutterValue = source.getPresentationShutterValue();
    if (source.isBitmapShutter()) {
        if (source.bitmapShutterInfo.tag != 0) setBitmapShutterInfo(source.bitmapShutterInfo);
        return;
    }
    const auto shown = [trafo](const RECT& rect) -> RECT {
        if (trafo == nullptr) return rect;
        return CCsImageUtils::imgToDsp(*trafo, rect);
    };
    if (source.isCircShutter()) setCircShutter(shown(source.circShutterRect));
    if (source.isRectShutter()) setRectShutter(shown(source.rectShutterRect));
    if (source.isPolygonalShutter()) {
        std::vector<CPoint> vertices = source.polygonVertices;
        for (CPoint& vertex : vertices) {
            if (trafo == nullptr) break;
            const CCsPoint point = CCsImageUtils::imgToDsp(*trafo, CCsPoint(vertex.x, vertex.y));
            vertex = CPoint(point.x, point.y);
        }
        setPolygonalShutter(vertices);
    }
}

void CCsRaster::add60XXOverlayInfo(const CCs60XXOverlay& plane) { overlayGroup.planes.push_back(plane); }
CCs60XXOverlayInfo& CCsRaster::get60XXOverlayGroup() { return overlayGroup; }
void CCsRaster::set60XXOverlayGroup(const CCs60XXOverlayInfo& group) { overlayGroup = group; }
void CCsRaster::reset60XXOverlayGroup() { overlayGroup.planes.clear(); }
bool CCsRaster::isNonEmbeddedOverlayPresent() const { return !overlayGroup.planes.empty(); }
void CCsRaster::setEmbeddedOverlayStatus(bool present) { embeddedOverlay = present; }
bool CCsRaster::isEmbeddedOverlayPresent() const { return embeddedOverlay; }

int CCsRaster::MakeDIBGrey12_(BITMAPINFO*& result, CCsOverlay* overlay, CCs2dTrafo* trafo, HFONT font) {
    return makeDib(result, overlay, trafo, font, greyInk, greyDib);
}

int CCsRaster::MakeDIBRgb8_(BITMAPINFO*& result, CCsOverlay* overlay, CCs2dTrafo* trafo, HFONT font,
                            unsigned long color) {
    return makeDib(result, overlay, trafo, font, color, colourDib);
}

int CCsRaster::makeDib(BITMAPINFO*& result, CCsOverlay* overlay, CCs2dTrafo* trafo, HFONT font, unsigned long color,
                       const zolcs::DibReports& reports) {
    result = nullptr;
    const BITMAPINFOHEADER header = dibHeader(pitch, height);
    const std::int64_t pixels = static_cast<std::int64_t>(pitch) * height;
    const std::int64_t bytes = bytesOf(pixels, zolcs::pixelSize(CCS_RGB8)) + std::int64_t{sizeof header};
    if (bytes > mostBytes) return zolcs::fail(reports.memory, 0, CCS_MISSING);
    Bytes block(new (std::nothrow) unsigned char[static_cast<std::size_t>(bytes)]);
    if (block == nullptr) return zolcs::fail(reports.memory, 0, CCS_MISSING);
    std::memcpy(block.get(), &header, sizeof header);
    auto* const info = reinterpret_cast<BITMAPINFO*>(block.get());

    void* bits = nullptr;
    const zolcs::Bitmap section(CreateDIBSection(nullptr, info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!section || bits == nullptr) return zolcs::fail(reports.section, 0, CCS_FAILED);
    const zolcs::MemoryDC dc(nullptr);
    const zolcs::SelectGuard selectedSection(dc.get(), section.get());
    if (!selectedSection) return zolcs::fail(reports.deviceContext, 0, CCS_FAILED);
    const zolcs::SelectGuard selectedFont(dc.get(), font);
    print_(dc.get(), overlay, color, trafo);
    GdiFlush();
    std::memcpy(block.get() + sizeof header, bits, static_cast<std::size_t>(bytes) - sizeof header);
    block.release();
    result = info;
    return CCS_DONE;
}

int CCsRaster::burnInOverlay(IMap& map, CCsOverlay* overlay, unsigned int planeMask, CCs2dTrafo* trafo, HFONT font,
                             int mergeMode, bool mergeFlag) {
    BITMAPINFO* bitmap = nullptr;
    const int result = MakeDIBGrey12_(bitmap, overlay, trafo, font);
    if (result != CCS_DONE) return result;
    const Bytes owner(reinterpret_cast<unsigned char*>(bitmap));
    map.mergeDIBtoData(*this, bitmap, planeMask, mergeMode, mergeFlag);
    return CCS_DONE;
}

int CCsRaster::burnInOverlay(IMap& map, CCsOverlay* overlay, CCs2dTrafo* trafo, HFONT font, unsigned long color) {
    BITMAPINFO* bitmap = nullptr;
    const int result = MakeDIBRgb8_(bitmap, overlay, trafo, font, color);
    if (result != CCS_DONE) return result;
    const Bytes owner(reinterpret_cast<unsigned char*>(bitmap));
    map.mergeDIBtoData(*this, bitmap, 0, 0, false);
    return CCS_DONE;
}

int CCsRaster::print_(HDC dc, CCsOverlay* overlay, unsigned long color, CCs2dTrafo* trafo) {
    PatBlt(dc, 0, 0, pitch, height, BLACKNESS);
    if (overlay != nullptr) overlay->render(trafo, nullptr, color, dc, CCS_MODE_BURN_IN, 0, 0, 0, 0);
    return CCS_DONE;
}
