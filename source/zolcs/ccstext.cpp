#include "zolcs/ccstext.h"

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsimageutils.h"
#include "zolcs/drawing/gdiscope.h"
#include "zolcs/drawing/modes.h"
#include "zolcs/drawing/placement.h"
#include "zolcs/support/clone.h"
#include "zolcs/support/conversion.h"

#include <array>
#include <cmath>
#include <cwchar>
#include <string>

const wchar_t* myCSFontName = nullptr;
int* myCSFontWidth = nullptr;

using zolcs::OutputPoint;
using zolcs::saturated;
using zolcs::truncated;

namespace {

constexpr int centred = 2;
constexpr int ending = 1;

/// Where the halo's copies of the text lie around it, in the order of drawing: the ring two pixels away, then the one
/// beside the text.
constexpr std::array<POINT, 24> haloPositions{
    {{2, -2},  {2, -1}, {2, 0}, {2, 1},  {2, 2},  {-2, 2}, {-2, 1},  {-2, 0}, {-2, -1}, {-2, -2}, {1, -2}, {1, 2},
     {-1, -2}, {-1, 2}, {0, 2}, {0, -2}, {1, -1}, {-1, 1}, {-1, -1}, {1, 1},  {0, -1},  {0, 1},   {-1, 0}, {1, 0}}};
constexpr std::size_t innerRing = 8;

/// A font like the given one in another size or weight; null for types that take it as it is.
HFONT derivedFont(HFONT font, CCsImageTextFont::CCsImageTextFontType type) {
    LOGFONTW description{};
    if (GetObjectW(font, sizeof(description), &description) == 0) return nullptr;
    switch (type) {
        case CCsImageTextFont::Large:
            description.lfHeight = truncated(static_cast<float>(description.lfHeight) * 1.5F);
            break;
        case CCsImageTextFont::LargerBold:
            description.lfHeight = saturated(std::int64_t{description.lfHeight} + 2);
            description.lfWeight = FW_BOLD;
            break;
        case CCsImageTextFont::Bold:
            description.lfWeight = FW_BOLD;
            break;
        default:
            return nullptr;
    }
    return CreateFontIndirectW(&description);
}

}  // namespace

CCsText::CCsText(CCs2dTrafo* trafo, double x, double y, const wchar_t* text, int alignment, bool normalised)
    : text(text), alignment(alignment), normalised(normalised) {
    setAnchor_(trafo, x, y);
}

CCsText::CCsText(const CCsText& other)
    : CCsOverlay(other),
      displayX(other.displayX),
      displayY(other.displayY),
      normalisedX(other.normalisedX),
      normalisedY(other.normalisedY),
      imageX(other.imageX),
      imageY(other.imageY),
      text(other.text),
      alignment(other.alignment),
      displayAuthoritative(other.displayAuthoritative),
      normalised(other.normalised) {}

CCsText::~CCsText() = default;

CCsOverlay* CCsText::NewInstance() { return zolcs::cloneOf(*this); }

void CCsText::setAnchor_(CCs2dTrafo* trafo, double x, double y) {
    displayX = truncated(x);
    displayY = truncated(y);
    if (normalised) {
        normalisedX = x;
        normalisedY = y;
    }
    displayAuthoritative = 0;
    if (trafo != nullptr) {
        CCsText::dspToImg(trafo);
    } else {
        transformable = 0;
    }
}

void CCsText::move(CCs2dTrafo* trafo, int dx, int dy, int /*x*/, int /*y*/, CCsRegion* region) {
    CCsText::move(trafo, saturated(std::int64_t{displayX} + dx), saturated(std::int64_t{displayY} + dy), region);
}

void CCsText::move(CCs2dTrafo* /*trafo*/, int x, int y, CCsRegion* /*region*/) {
    if (!movable) return;
    displayX = x;
    displayY = y;
    displayAuthoritative = 1;
}

void CCsText::dspToImg(CCs2dTrafo* trafo) {
    if (trafo == nullptr) return;
    const CCsPointDouble image = CCsImageUtils::dspToImgD(*trafo, {displayX + 0.5, displayY + 0.5});
    imageX = image.x;
    imageY = image.y;
    displayAuthoritative = 0;
}

void CCsText::imgToDsp(CCs2dTrafo* trafo) {
    if (trafo == nullptr) return;
    const OutputPoint display = zolcs::mapped(*trafo, {imageX, imageY});
    displayX = truncated(display.x);
    displayY = truncated(display.y);
}

void CCsText::getSize(RECT& rect) { rect = {displayX, displayY, 0, 0}; }

void CCsText::setDicomPrintFlag(bool on) { dicomPrintFlag = on; }

void CCsText::setTransformable(int on) { transformable = on; }

void CCsText::select() { selected = 1; }

int CCsText::unselect() {
    selected = 0;
    return 0;
}

void CCsText::setText(CCs2dTrafo* trafo, double x, double y, const wchar_t* newText, int newAlignment) {
    text = newText;
    alignment = newAlignment;
    setAnchor_(trafo, x, y);
}

void CCsText::setText(const wchar_t* newText) { text = newText; }

void CCsText::getImagePts(double& x, double& y) const {
    x = imageX;
    y = imageY;
}

void CCsText::getNormEndPts(double& x, double& y) const {
    x = normalisedX;
    y = normalisedY;
}

std::optional<OutputPoint> CCsText::place_(const zolcs::Placement& placement) {
    if (normalised) return zolcs::placeNormalised(placement, {normalisedX, normalisedY});
    const bool displayCounts = transformable == 0 || displayAuthoritative != 0;
    return zolcs::place(placement, displayCounts, zolcs::Anchor{displayX, displayY, {imageX, imageY}});
}

bool CCsText::transformToOutput(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, double& x, double& y, int mode) {
    const auto position = place_({imageTrafo, outputTrafo, mode});
    if (!position) return false;
    x = position->x;
    y = position->y;
    return true;
}

/// Makes the overlay's font anew; null where the device context's font is to be used.
HFONT CCsText::makeFont_() {
    if (transformable != 0 || myCSFontName == nullptr || myCSFontWidth == nullptr) return nullptr;
    const std::wstring face(myCSFontName);
    const bool made = charsetSupport.CreateFontForStr(text, font, ZOL_CHARSET_UNDEFINED, face.c_str(), *myCSFontWidth);
    return made ? static_cast<HFONT>(font) : nullptr;
}

/// Writes halo and text at a position with the font that is selected.
void CCsText::write_(const Scene& scene, OutputPoint position) const {
    const int length = saturated(static_cast<std::int64_t>(std::wcslen(text)));
    SIZE extent{};
    if (alignment == centred || alignment == ending) GetTextExtentPoint32W(scene.dc, text, length, &extent);
    const LONG half = extent.cx / 2;
    if (alignment == centred) position.x -= half;
    if (alignment == ending) position.x -= extent.cx + 1.0;
    if (!zolcs::isDrawable(position)) return;

    const int x = truncated(position.x);
    const int y = truncated(position.y);
    SetBkMode(scene.dc, TRANSPARENT);
    if (shadow != 0) {
        const bool wide = zolcs::hasWideShadow(scene.mode, dicomPrintFlag);
        SetTextColor(scene.dc, RGB(0, 0, 0));
        if (wide) SetTextColor(scene.dc, zolcs::shadowColor(scene.mode, dicomPrintFlag));
        for (std::size_t i = wide ? 0 : haloPositions.size() - innerRing; i < haloPositions.size(); ++i) {
            TextOutW(scene.dc, x + haloPositions[i].x, y + haloPositions[i].y, text, length);
        }
    }
    SetTextColor(scene.dc, static_cast<COLORREF>(scene.color));
    TextOutW(scene.dc, x, y, text, length);
}

void CCsText::draw_(const Scene& scene, CCsImageTextFont::CCsImageTextFontType fontType, bool wantsFont) {
    if (!renderable || text == nullptr) return;
    if (transformable == 0 && !zolcs::drawsFixedTexts(scene.mode)) return;
    const auto position = place_({scene.imageTrafo, scene.outputTrafo, scene.mode});
    if (!position) return;
    {
        HFONT made = wantsFont ? makeFont_() : nullptr;
        const zolcs::Font derived(made != nullptr ? derivedFont(made, fontType) : nullptr);
        const zolcs::SelectGuard selection(scene.dc, derived ? derived.get() : made);
        write_(scene, {position->x, position->y + scene.offsetY});
    }
    font.DeleteObject();
}

void CCsText::render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc,
                     CCsImageTextFont::CCsImageTextFontType fontType, int mode, int /*width*/, int /*height*/,
                     int /*offsetX*/, int offsetY) {
    const bool empty = text == nullptr || *text == L'\0';
    draw_({imageTrafo, outputTrafo, color, dc, mode, offsetY}, fontType, !empty);
}

void CCsText::render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode,
                     int /*width*/, int /*height*/, int /*offsetX*/, int offsetY) {
    draw_({imageTrafo, outputTrafo, color, dc, mode, offsetY}, CCsImageTextFont::Plain, true);
}
