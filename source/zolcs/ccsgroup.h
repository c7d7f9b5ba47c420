#pragma once

#include "zolcs/ccsoverlay.h"

/// An ordered list of overlays, which it owns. Groups can be nested. A group forwards most operations to its direct
/// members, first to last, so later members are drawn above earlier ones while earlier ones are picked first.
///
/// The links of the list are in the members. When a group is copied, every member must be able to clone itself
/// (NewInstance not null); this is not checked.
class ZOLWEBCS_API CCsGroup : public CCsOverlay {
public:
    /// An empty group with a group pick flag of 0.
    CCsGroup();
    /// Deep: clones every member. Takes over the external flag and otherwise starts like a new group.
    CCsGroup(const CCsGroup& other);
    /// Deliberately shallow, including the group's own links: afterwards both groups refer to the same members, which
    /// both would delete, and nobody owns this group's former members. Hold such a copy where its destructor does not
    /// run.
    CCsGroup& operator=(const CCsGroup& other);
    /// Deletes every member and leaves the group that contains this one.
    ~CCsGroup() override;

    /// Returns a deep copy on the heap, which the caller owns, or null when memory is exhausted.
    CCsOverlay* NewInstance() override;

    /// The result of the first member that is hit: that member, or for a nested group one of its members. This group
    /// instead when the group pick flag is not 0. Null when nothing is hit.
    CCsOverlay* pick(int x, int y) override;

    /// Ends the selection of the first selected member and returns 1; returns 0 when no member is selected. The group's
    /// own selection stays.
    int unselect(RECT& rect) override;

    /// Returns the first direct member that is selected or has a selected member, else null.
    CCsOverlay* isSelected() override;

    /// Moves the members if the group itself is movable.
    void move(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region) override;

    using CCsOverlay::render;
    /// Draws the members, first to last, regardless of the group's own render flag.
    void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                int height, int offsetX, int offsetY) override;
    void dspToImg(CCs2dTrafo* trafo) override;
    /// Passes one rectangle through all members, each of which changes it in its own way.
    void getSize(RECT& rect) override;
    void size(unsigned int what, int dx, int dy, CCs2dTrafo* trafo) override;
    void updateTrafo(CCs2dTrafo* trafo, bool flag) override;
    /// Sets the members' flags; the group itself has none.
    void setDicomPrintFlag(bool on) override;

    /// Appends the overlay itself, not a copy, and owns it from then on. The overlay must be free; this is not checked.
    void append(CCsOverlay& overlay);

    /// Appends clones of all members of `source` except the last. `source` must have a member; this is not checked.
    void appendAllExceptLast(CCsGroup& source);

    /// Calls resetAll, then takes over the group pick flag, the external flag and clones of all members of `source`.
    void copyGroup(CCsGroup& source);

    /// Returns the n-th member, counted from 1; null outside 1 to getGroupSize().
    [[nodiscard]] CCsOverlay* Find(int n) const;

    /// The number of direct members; a nested group counts as one.
    [[nodiscard]] int getGroupSize() const;

    /// Deletes every member that is neither burnt nor external; the others keep their order. Sets the group pick flag
    /// to 0.
    void resetAll();

    /// As `render`, for the last member alone.
    void renderLast(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                    int height, int offsetX, int offsetY);

    /// Whether a direct member is not burnt to the image.
    [[nodiscard]] bool isAnyOverlayNotBurnt() const;

    /// Whether the group has members.
    [[nodiscard]] bool isAnyOverlayPresent() const;

    /// Returns 1 when a direct member is transformable, else 0.
    [[nodiscard]] int isTransformableOverlAdded() const;

    /// Sets whether the direct members, but not those of nested groups, are burnt to the image.
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
    /// Returns 1 when (x, y) lies in the 14 by 14 square around (cx, cy), right and bottom exclusive, else 0.
    static int pick(int cx, int cy, int x, int y);
    /// Paints a 5 by 5 square centred on (x, y) with the brush that is selected in `dc`.
    static void render(int x, int y, HDC dc);
};
