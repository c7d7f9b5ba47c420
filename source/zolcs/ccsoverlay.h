#pragma once

#include "zolcs/ccsexport.h"
#include "zolcs/ccsgeometry.h"
#include "zolcs/ccsrendermodes.h"

#include <cstdint>

class CCs2dTrafo;
class CCsGroup;

/// How a text's font is derived from the overlay's own font.
namespace CCsImageTextFont {
enum CCsImageTextFontType : int { Plain = 0, Large = 1, LargerBold = 2, Bold = 3 };
}

/// Base of every annotation drawn over an image.
///
/// An overlay is free, or in exactly one group, which then owns it. Its members report nothing and do nothing on
/// invalid input. Painting thread only. Positions in picking and moving are display pixels; the concrete classes keep
/// their geometry in image coordinates too.
///
/// A render mode, one of the constants of ccsrendermodes.h, says what an overlay is drawn for.
class ZOLWEBCS_API CCsOverlay {
public:
    CCsOverlay() = default;
    /// The copy is in no group and has its reserved field 0.
    CCsOverlay(const CCsOverlay& other);
    /// Deliberately copies the chain links too, without the group knowing of the copy: append it somewhere before it is
    /// used in a chain or destroyed.
    CCsOverlay& operator=(const CCsOverlay& other);

    /// Leaves the group.
    virtual ~CCsOverlay();

    /// A clone on the heap that belongs to the caller; null when memory is exhausted, and in this base, which has
    /// nothing to clone.
    virtual CCsOverlay* NewInstance();

    /// The overlay under the point: this one, or for a group one of its members or itself; null when there is none.
    virtual CCsOverlay* pick(int x, int y);

    /// Marks as selected; `rect` stays as it is.
    virtual void select(RECT& rect);

    /// Ends the selection; 0, and 1 from a group that had a selected member. `rect` stays as it is.
    virtual int unselect(RECT& rect);

    /// This overlay while it is selected, else null.
    virtual CCsOverlay* isSelected();

    /// A drag by (dx, dy) that has arrived at (x, y); `region`, where it is not null, takes up the area to repaint.
    virtual void move(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region);

    /// Draws with a font derived as `fontType` says; only texts draw anything.
    virtual void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc,
                        CCsImageTextFont::CCsImageTextFontType fontType, int mode, int width, int height, int offsetX,
                        int offsetY);

    /// Draws into an area of width by height pixels of `dc`. `imageTrafo` maps image to display coordinates,
    /// `outputTrafo` display to output coordinates; `color` is 0x00BBGGRR.
    virtual void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode,
                        int width, int height, int offsetX, int offsetY) = 0;

    /// Takes the image coordinates from the display coordinates.
    virtual void dspToImg(CCs2dTrafo* trafo) = 0;

    /// Stores or adds the display rectangle in `rect`, in each class's own way.
    virtual void getSize(RECT& rect) = 0;

    /// For hosts: forwarded by groups, without effect here.
    virtual void size(unsigned int what, int dx, int dy, CCs2dTrafo* trafo);

    /// Not 0 while the annotation follows zoom and pan of the image.
    virtual int isTransformable();

    /// For hosts: forwarded by groups, without effect here.
    virtual void updateTrafo(CCs2dTrafo* trafo, bool flag);

    /// Shadows in nearly black, (1, 1, 1), where pure black means something else to a printer.
    virtual void setDicomPrintFlag(bool on) = 0;

    /// "CCsOverlay" for every class, deliberately: the name does not distinguish kinds of overlays.
    virtual const wchar_t* getClassName();

    /// Draws the ellipse that the points describe; only lines draw anything.
    virtual void renderEllipse(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode,
                               int width, int height, int offsetX, int offsetY, bool flag1, bool flag2);

    /// Leaves the group, which no longer owns this overlay then. Harmless for a free overlay.
    void unchain();

    /// Whether the overlay is drawn.
    [[nodiscard]] bool isRenderable() const { return renderable; }
    /// While off, nothing is drawn. On a group it has no effect: each member has its own flag.
    void setRenderFlag(bool on) { renderable = on; }
    /// A tag for the caller; nothing here looks at it.
    void setOverlayID(int id) { overlayId = id; }
    [[nodiscard]] bool isExternal() const { return external; }
    /// External overlays survive CCsGroup::resetAll and can neither be moved nor picked. Overwrites the move status and
    /// the group pick flag, also when switched off.
    void setExternalStatus_(bool on);
    /// While off, move does nothing.
    void setMoveStatus_(bool on) { movable = on; }
    /// Burnt overlays are in the image's pixels already and survive CCsGroup::resetAll.
    void setBurntToImage_(bool on) { burntToImage = on; }
    /// Sets the result of isTransformable.
    void setTransformable_(int on) { transformable = on; }
    /// On a group: a hit on any member gives the group itself. On a line: whether it can be picked.
    void setGroupPickFlag(int on) { groupPickFlag = on; }

protected:
    friend class CCsGroup;

    CCsOverlay* previous = nullptr;
    CCsOverlay* next = nullptr;
    CCsGroup* group = nullptr;
    std::int32_t overlayId = 0;
    std::int32_t shadow = 1;
    std::int32_t groupPickFlag = 1;
    std::int32_t selected = 0;
    bool burntToImage = false;
    std::int32_t transformable = 1;
    bool dicomPrintFlag = false;
    bool stateFlag = true;
    bool movable = true;
    bool external = false;
    bool renderable = true;
    std::int32_t reserved = 0;
};
