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
/// An overlay is free, or it is in exactly one group, which then owns it. Its member functions report nothing and do
/// nothing on invalid input. Only the painting thread uses overlays. Positions for picking and moving are display
/// pixels; the concrete classes keep their geometry in image coordinates, too.
///
/// A render mode, one of the constants of ccsrendermodes.h, says what an overlay is drawn for.
class ZOLWEBCS_API CCsOverlay {
public:
    CCsOverlay() = default;
    /// The copy is in no group, and its reserved field is 0.
    CCsOverlay(const CCsOverlay& other);
    /// Deliberately copies the chain links, too, although the group does not know the copy: append it to a group before
    /// it is used in a chain or destroyed.
    CCsOverlay& operator=(const CCsOverlay& other);

    /// Leaves the group.
    virtual ~CCsOverlay();

    /// Returns a clone on the heap, which the caller owns; null when memory is exhausted. This base class has nothing
    /// to clone and returns null.
    virtual CCsOverlay* NewInstance();

    /// The overlay under the point: this one, or for a group one of its members or itself; null when there is none.
    virtual CCsOverlay* pick(int x, int y);

    /// Marks the overlay as selected. `rect` stays unchanged.
    virtual void select(RECT& rect);

    /// Ends the selection and returns 0; a group that had a selected member returns 1. `rect` stays unchanged.
    virtual int unselect(RECT& rect);

    /// Returns this overlay while it is selected, else null.
    virtual CCsOverlay* isSelected();

    /// Moves the overlay by (dx, dy) for a drag whose pointer is now at (x, y). `region`, if not null, grows by the
    /// area to repaint.
    virtual void move(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region);

    /// Draws with a font derived according to `fontType`; only texts draw anything.
    virtual void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc,
                        CCsImageTextFont::CCsImageTextFontType fontType, int mode, int width, int height, int offsetX,
                        int offsetY);

    /// Draws into an area of width by height pixels of `dc`. `imageTrafo` maps image to display coordinates,
    /// `outputTrafo` display to output coordinates; `color` is 0x00BBGGRR.
    virtual void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode,
                        int width, int height, int offsetX, int offsetY) = 0;

    /// Computes the image coordinates from the display coordinates.
    virtual void dspToImg(CCs2dTrafo* trafo) = 0;

    /// Stores or adds the display rectangle in `rect`, in each class's own way.
    virtual void getSize(RECT& rect) = 0;

    /// For hosts: groups forward it; it has no effect here.
    virtual void size(unsigned int what, int dx, int dy, CCs2dTrafo* trafo);

    /// Not 0 while the annotation follows zoom and pan of the image.
    virtual int isTransformable();

    /// For hosts: groups forward it; it has no effect here.
    virtual void updateTrafo(CCs2dTrafo* trafo, bool flag);

    /// Sets whether burnt-in shadows are nearly black, (1, 1, 1), for printers to which pure black means "nothing
    /// here".
    virtual void setDicomPrintFlag(bool on) = 0;

    /// "CCsOverlay" for every class, deliberately: the name does not distinguish kinds of overlays.
    virtual const wchar_t* getClassName();

    /// Draws the ellipse that the vertices describe; only lines draw anything.
    virtual void renderEllipse(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode,
                               int width, int height, int offsetX, int offsetY, bool flag1, bool flag2);

    /// Leaves the group, which then no longer owns this overlay. Does nothing for a free overlay.
    void unchain();

    /// Whether the overlay is drawn.
    [[nodiscard]] bool isRenderable() const { return renderable; }
    /// While off, nothing is drawn. On a group it has no effect: each member has its own flag.
    void setRenderFlag(bool on) { renderable = on; }
    /// Stores a tag for the caller; the library does not use it.
    void setOverlayID(int id) { overlayId = id; }
    [[nodiscard]] bool isExternal() const { return external; }
    /// An external overlay survives CCsGroup::resetAll and can be neither moved nor picked. The call overwrites the
    /// move status and the group pick flag, also when `on` is false.
    void setExternalStatus_(bool on);
    /// Sets whether `move` has an effect.
    void setMoveStatus_(bool on) { movable = on; }
    /// A burnt overlay is already in the image's pixels and survives CCsGroup::resetAll.
    void setBurntToImage_(bool on) { burntToImage = on; }
    /// Sets the result of isTransformable.
    void setTransformable_(int on) { transformable = on; }
    /// For a group: not 0 means that a hit on any member picks the group itself. For a line: 0 means that it cannot be
    /// picked.
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
