#pragma once

#include "zolcs/ccsoverlay.h"

/// An ordered list of overlays that it owns; groups nest. Most operations are forwarded to the members in order.
class ZOLWEBCS_API CCsGroup : public CCsOverlay {
public:
    CCsGroup();
    /// Deep: clones every member.
    CCsGroup(const CCsGroup& other);
    /// Deliberately shallow: afterwards both groups name the same members.
    CCsGroup& operator=(const CCsGroup& other);
    ~CCsGroup() override;

    CCsOverlay* NewInstance() override;
    CCsOverlay* pick(int x, int y) override;
    int unselect(RECT& rect) override;
    CCsOverlay* isSelected() override;
    void move(CCs2dTrafo* trafo, int x0, int y0, int x1, int y1, CCsRegion* region) override;
    using CCsOverlay::render;
    void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                int height, int offsetX, int offsetY) override;
    void dspToImg(CCs2dTrafo* trafo) override;
    void getSize(RECT& rect) override;
    void size(unsigned int what, int dx, int dy, CCs2dTrafo* trafo) override;
    void updateTrafo(CCs2dTrafo* trafo, bool flag) override;
    void setDicomPrintFlag(bool on) override;

    void append(CCsOverlay& overlay);
    void appendAllExceptLast(CCsGroup& source);
    void copyGroup(CCsGroup& source);
    [[nodiscard]] CCsOverlay* Find(int n) const;
    [[nodiscard]] int getGroupSize() const;
    void resetAll();
    void renderLast(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                    int height, int offsetX, int offsetY);
    [[nodiscard]] bool isAnyOverlayNotBurnt() const;
    [[nodiscard]] bool isAnyOverlayPresent() const;
    [[nodiscard]] int isTransformableOverlAdded() const;
    void setBurntToImage(bool on);
    void setTransformable(int on);

protected:
    friend class CCsOverlay;

    CCsOverlay* head = nullptr;
    CCsOverlay* tail = nullptr;
};

/// The small square handles of a selected figure.
class ZOLWEBCS_API CCsBox {
public:
    CCsBox() = delete;
    /// 1 when (x, y) lies in the 14 by 14 square around (cx, cy), half-open on the right and bottom.
    static int pick(int cx, int cy, int x, int y);
    /// Paints a 5 by 5 square centred on (x, y) with the brush selected into dc.
    static void render(int x, int y, HDC dc);
};
