#pragma once

#include "zolcs/ccsexport.h"

#include <cstdint>

class CCsOverlay;

/// Follows one drag of the mouse over an overlay or a group: where it began, what was hit there, and where it is now.
/// The host moves what was picked by the distance that the drag has covered. Positions are display pixels. Owns no
/// overlay.
class ZOLWEBCS_API CCsTrack {
public:
    CCsTrack() = default;
    /// Tracks over this overlay, which stays the caller's; null means none.
    explicit CCsTrack(CCsOverlay* overlay);
    /// Clones both overlays (null where there is none and when memory is exhausted). The caller owns the clones and
    /// gets them from getOverlay and getPicked.
    CCsTrack(const CCsTrack& other);
    /// Deliberately shallow: afterwards both tracks refer to the same overlays.
    CCsTrack& operator=(const CCsTrack& other);
    /// Deletes no overlay.
    virtual ~CCsTrack();

    /// The button goes down: the drag begins here, and the overlay's pick at this point becomes the picked overlay
    /// (null for nothing). Without an overlay the picked one stays.
    void downEvent(int newX, int newY);
    void motionEvent(int newX, int newY);
    /// The button goes up here: nothing is picked any more.
    void upEvent(int newX, int newY);

    /// The distance from where the drag began, or from where resetDxy was last called.
    [[nodiscard]] int getDx() const;
    [[nodiscard]] int getDy() const;
    [[nodiscard]] int getX() const { return x; }
    [[nodiscard]] int getY() const { return y; }
    [[nodiscard]] CCsOverlay* getOverlay() const { return overlay; }
    /// The overlay under the pointer when the button went down; null after it went up, or when there was none.
    [[nodiscard]] CCsOverlay* getPicked() const { return picked; }

    /// Measures the distance from here on, for dragging step by step.
    void resetDxy();

protected:
    CCsOverlay* overlay = nullptr;
    std::int32_t startX = 0;
    std::int32_t startY = 0;
    CCsOverlay* picked = nullptr;
    std::int32_t x = 0;
    std::int32_t y = 0;
};
