#pragma once

#include "zolcs/ccsexport.h"
#include "zolcs/ccsgeometry.h"

#include <cstdint>

class CCs2dTrafo;
class CCsGroup;

/// How a text's font is derived from the overlay's own font.
namespace CCsImageTextFont {
enum CCsImageTextFontType : int { Plain = 0, Large = 1, LargerBold = 2, Bold = 3 };
}

/// Base of every annotation. An overlay is in at most one group, which then owns it.
///
/// Overlays report nothing and do nothing on invalid input. Painting thread only.
class ZOLWEBCS_API CCsOverlay {
public:
    CCsOverlay() = default;
    /// The copy is in no group and has its reserved field 0.
    CCsOverlay(const CCsOverlay& other);
    /// Deliberately copies the chain links too; whoever assigns must relink.
    CCsOverlay& operator=(const CCsOverlay& other);

    /// Leaves the group.
    virtual ~CCsOverlay();
    virtual CCsOverlay* NewInstance();
    virtual CCsOverlay* pick(int x, int y);
    virtual void select(RECT& rect);
    virtual int unselect(RECT& rect);
    virtual CCsOverlay* isSelected();
    virtual void move(CCs2dTrafo* trafo, int x0, int y0, int x1, int y1, CCsRegion* region);
    virtual void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc,
                        CCsImageTextFont::CCsImageTextFontType fontType, int mode, int width, int height, int offsetX,
                        int offsetY);
    virtual void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode,
                        int width, int height, int offsetX, int offsetY) = 0;
    virtual void dspToImg(CCs2dTrafo* trafo) = 0;
    virtual void getSize(RECT& rect) = 0;
    virtual void size(unsigned int what, int dx, int dy, CCs2dTrafo* trafo);
    virtual int isTransformable();
    virtual void updateTrafo(CCs2dTrafo* trafo, bool flag);
    virtual void setDicomPrintFlag(bool on) = 0;
    virtual const wchar_t* getClassName();
    virtual void renderEllipse(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode,
                               int width, int height, int offsetX, int offsetY, bool flag1, bool flag2);

    void unchain();
    [[nodiscard]] bool isRenderable() const { return renderable; }
    void setRenderFlag(bool on) { renderable = on; }
    void setOverlayID(int id) { overlayId = id; }
    [[nodiscard]] bool isExternal() const { return external; }
    void setExternalStatus_(bool on);
    void setMoveStatus_(bool on) { movable = on; }
    void setBurntToImage_(bool on) { burntToImage = on; }
    void setTransformable_(int on) { transformable = on; }
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
