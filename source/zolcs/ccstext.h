#pragma once

#include "zolcs/ccsoverlay.h"
#include "zolwebmlang/zolwebmlang.h"

#include <cstdint>
#include <optional>

namespace zolcs {
struct OutputPoint;
struct Placement;
}  // namespace zolcs

/// Face name and average character width (pixels) of the font for texts that do not follow the image. Set by the host
/// before painting, and owned by it; both null at first, which leaves such texts in the device context's font.
extern ZOLWEBCS_API const wchar_t* myCSFontName;
extern ZOLWEBCS_API int* myCSFontWidth;

/// A string at an anchor point, with a dark halo that keeps it readable on every background. A text is never picked.
///
/// A text keeps its anchor in display and in image pixels. The image anchor counts: painting the screen updates the
/// display anchor after zoom and pan. The display anchor is authoritative for texts that are not transformable, and
/// from a move until dspToImg. A normalised anchor (fractions of the output's size) stays in place on the output in
/// every view.
class ZOLWEBCS_API CCsText : public CCsOverlay {
public:
    /// (x, y) is in display pixels and truncated, or normalised. `trafo` gives the image anchor; without a
    /// transformation (null) the text is not transformable. `text` stays the caller's and must live as long as it is
    /// shown; null shows nothing. `alignment`: 2 centres the text on the anchor, 1 ends it one pixel left of the
    /// anchor, every other number starts it at the anchor.
    CCsText(CCs2dTrafo* trafo, double x, double y, const wchar_t* text, int alignment, bool normalised);

    /// The copy shares the string with the original, has no font and is in no group.
    CCsText(const CCsText& other);
    CCsText& operator=(const CCsText&) = delete;
    ~CCsText() override;

    CCsOverlay* NewInstance() override;

    using CCsOverlay::select;
    using CCsOverlay::unselect;

    /// Moves the display anchor by (dx, dy) and makes it authoritative, if the text is movable. The other arguments
    /// have no effect.
    void move(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region) override;

    /// Draws like the other `render`, in a font derived from the one made for this text (see CCsImageTextFont). Large
    /// is 1.5 times as high (truncated), LargerBold adds 2 to the font's lfHeight, both bold types have weight 700. No
    /// font is made for an empty text.
    void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc,
                CCsImageTextFont::CCsImageTextFontType fontType, int mode, int width, int height, int offsetX,
                int offsetY) override;

    /// Draws halo and text. A text that is not transformable has a font of the host's face and width where the host has
    /// set both; every other text has the font that is selected in `dc`. `offsetY` is added to the position, offsetX
    /// deliberately is not; width and height have no effect. Draws nothing while the text is not renderable, in
    /// CCS_MODE_BURN_IN while it is not transformable, for a mode that is no render mode (except for normalised texts),
    /// and where the transformation that the mode needs is null. Leaves the background mode transparent and its own
    /// text colour in `dc`.
    void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                int height, int offsetX, int offsetY) override;

    /// Computes the image anchor from the centre of the display anchor's pixel; the display anchor is then no longer
    /// authoritative. Does nothing for null.
    void dspToImg(CCs2dTrafo* trafo) override;

    /// Deliberately overwrites `rect`: left and top become the display anchor, right and bottom 0.
    void getSize(RECT& rect) override;

    /// Stores the flag. With the flag set, a burnt-in halo is two pixels wide and nearly black.
    void setDicomPrintFlag(bool on) override;

    virtual void setTransformable(int on);

    /// Puts the display anchor at (x, y) and makes it authoritative, if the text is movable. The other arguments have
    /// no effect.
    virtual void move(CCs2dTrafo* trafo, int x, int y, CCsRegion* region);

    virtual void select();
    /// Ends the selection. Always returns 0.
    virtual int unselect();

    /// Sets a new string at a new place; the arguments are those of the constructor.
    void setText(CCs2dTrafo* trafo, double x, double y, const wchar_t* newText, int newAlignment);
    /// Sets a new string; see the constructor.
    void setText(const wchar_t* newText);

    void getImagePts(double& x, double& y) const;
    void getNormEndPts(double& x, double& y) const;

    /// Computes the display anchor from the image anchor, truncated. Does nothing for null.
    void imgToDsp(CCs2dTrafo* trafo);

protected:
    /// Gives the output coordinates of the anchor. Returns false and leaves x and y unchanged when it has none (see
    /// `render`).
    bool transformToOutput(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, double& x, double& y, int mode);

    std::int32_t displayX = 0;
    std::int32_t displayY = 0;
    double normalisedX = 0.0;
    double normalisedY = 0.0;
    double imageX = 0.0;
    double imageY = 0.0;
    const wchar_t* text = nullptr;
    std::int32_t alignment = 0;
    std::int32_t displayAuthoritative = 0;
    CFont font;
    ZolCharsetSupport charsetSupport;
    bool normalised = false;

private:
    /// What both ways of drawing need of a render call.
    struct Scene {
        CCs2dTrafo* imageTrafo;
        CCs2dTrafo* outputTrafo;
        unsigned long color;
        HDC dc;
        int mode;
        int offsetY;
    };

    void setAnchor_(CCs2dTrafo* trafo, double x, double y);
    std::optional<zolcs::OutputPoint> place_(const zolcs::Placement& placement);
    HFONT makeFont_();
    void write_(const Scene& scene, zolcs::OutputPoint position) const;
    void draw_(const Scene& scene, CCsImageTextFont::CCsImageTextFontType fontType, bool wantsFont);
};
