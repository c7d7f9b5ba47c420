#include "zolcs/ccstrack.h"

#include "zolcs/ccsoverlay.h"
#include "zolcs/support/conversion.h"

namespace {

CCsOverlay* cloneOf(CCsOverlay* overlay) { return overlay != nullptr ? overlay->NewInstance() : nullptr; }

}  // namespace

CCsTrack::CCsTrack(CCsOverlay* overlay) : overlay(overlay) {}

CCsTrack::CCsTrack(const CCsTrack& other)
    : overlay(cloneOf(other.overlay)),
      startX(other.startX),
      startY(other.startY),
      picked(cloneOf(other.picked)),
      x(other.x),
      y(other.y) {}

CCsTrack& CCsTrack::operator=(const CCsTrack& other) = default;

CCsTrack::~CCsTrack() = default;

void CCsTrack::downEvent(int newX, int newY) {
    startX = x = newX;
    startY = y = newY;
    if (overlay != nullptr) picked = overlay->pick(newX, newY);
}

void CCsTrack::motionEvent(int newX, int newY) {
    x = newX;
    y = newY;
}

void CCsTrack::upEvent(int newX, int newY) {
    motionEvent(newX, newY);
    picked = nullptr;
}

int CCsTrack::getDx() const { return zolcs::saturated(std::int64_t{x} - startX); }

int CCsTrack::getDy() const { return zolcs::saturated(std::int64_t{y} - startY); }

void CCsTrack::resetDxy() {
    startX = x;
    startY = y;
}
