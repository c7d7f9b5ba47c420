#pragma once

#include "zolcs/ccsoverlay.h"

/// An ordered list of overlays that it owns; groups nest. Most operations are forwarded to the direct members, first to
/// last, so that later members lie on top while earlier ones are picked first.
///
/// The chain's links live in the members. Every member must be able to clone itself (NewInstance not null) when its
/// group is copied; that is not tested.
class ZOLWEBCS_API CCsGroup : public CCsOverlay {
public:
    /// Empty, with a group pick flag of 0.
    CCsGroup();
    /// Deep: clones every member. Takes over the external flag and otherwise starts like a new group.
    CCsGroup(const CCsGroup& other);
    /// Deliberately shallow, the links of the group itself included: afterwards both groups name the same members,
    /// which both would delete, and the former members of this group belong to nobody. Hold such a copy where its
    /// destructor does not run.
    CCsGroup& operator=(const CCsGroup& other);
    /// Deletes every member and leaves the group's own group.
    ~CCsGroup() override;

    /// A deep copy on the heap, or null when memory is exhausted.
    CCsOverlay* NewInstance() override;

    /// The result of the first member that is hit: that member, or for a nested group one of its members. This group
    /// instead when the group pick flag is not 0. Null when nothing is hit.
    CCsOverlay* pick(int x, int y) override;

    /// Ends the selection of the first selected member and returns 1; 0 when no member is selected. The group's own
    /// selection stays.
    int unselect(RECT& rect) override;

    /// The first direct member that is selected or has a selected member, else null.
    CCsOverlay* isSelected() override;

    /// Moves the members, as long as the group itself is movable.
    void move(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region) override;

    using CCsOverlay::render;
    /// Draws the members, first to last, whatever the group's own render flag is.
    void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                int height, int offsetX, int offsetY) override;
    void dspToImg(CCs2dTrafo* trafo) override;
    /// One rectangle goes through all members, each of which changes it in its own way.
    void getSize(RECT& rect) override;
    void size(unsigned int what, int dx, int dy, CCs2dTrafo* trafo) override;
    void updateTrafo(CCs2dTrafo* trafo, bool flag) override;
    /// Of the members; the group itself keeps none.
    void setDicomPrintFlag(bool on) override;

    /// Links the overlay itself, not a copy, behind the last member. It must be free, which is not tested; the group
    /// owns it from now on.
    void append(CCsOverlay& overlay);

    /// Appends clones of all members of `source` but the last. It must have a member, which is not tested.
    void appendAllExceptLast(CCsGroup& source);

    /// resetAll, then the group pick flag, the external flag and clones of all members of `source`.
    void copyGroup(CCsGroup& source);

    /// The n-th member, counted from 1; null outside 1 to getGroupSize().
    [[nodiscard]] CCsOverlay* Find(int n) const;

    /// Number of direct members; a nested group counts as one.
    [[nodiscard]] int getGroupSize() const;

    /// Deletes every member that is neither burnt nor external; the others stay in their order. The group pick flag
    /// becomes 0.
    void resetAll();

    /// As render, for the last member alone.
    void renderLast(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                    int height, int offsetX, int offsetY);

    /// Whether a direct member is not burnt to the image.
    [[nodiscard]] bool isAnyOverlayNotBurnt() const;

    /// Whether the group has members.
    [[nodiscard]] bool isAnyOverlayPresent() const;

    /// 1 when a direct member is transformable, else 0.
    [[nodiscard]] int isTransformableOverlAdded() const;

    /// Marks the direct members, not those of nested groups, as burnt to the image or not.
    void setBurntToImage(bool on);

    /// Sets the result of isTransformable for the direct members, not for those of nested groups.
    void setTransformable(int on);

protected:
    friend class CCsOverlay;

    CCsOverlay* head = nullptr;
    CCsOverlay* tail = nullptr;

private:
    template <typename Action>
    void forEach(Action action) const;
    [[nodiscard]] bool contains(const CCsOverlay& overlay) const;
    void link(CCsOverlay& overlay);
    void appendClones(const CCsGroup& source, bool withLast);
};

/// The small square handles of a selected figure.
class ZOLWEBCS_API CCsBox {
public:
    CCsBox() = delete;
    /// 1 when (x, y) lies in the 14 by 14 square around (cx, cy), half-open on the right and bottom, else 0.
    static int pick(int cx, int cy, int x, int y);
    /// Paints a 5 by 5 square centred on (x, y) with the brush selected into dc.
    static void render(int x, int y, HDC dc);
};
