#include "zolcs/ccsoverlay.h"

#include "zolcs/ccsgroup.h"

CCsOverlay::CCsOverlay(const CCsOverlay& other)
    : overlayId(other.overlayId),
      shadow(other.shadow),
      groupPickFlag(other.groupPickFlag),
      selected(other.selected),
      burntToImage(other.burntToImage),
      transformable(other.transformable),
      dicomPrintFlag(other.dicomPrintFlag),
      stateFlag(other.stateFlag),
      movable(other.movable),
      external(other.external),
      renderable(other.renderable) {}

CCsOverlay& CCsOverlay::operator=(const CCsOverlay& other) = default;

CCsOverlay::~CCsOverlay() { unchain(); }

CCsOverlay* CCsOverlay::NewInstance() { return nullptr; }

CCsOverlay* CCsOverlay::pick(int /*x*/, int /*y*/) { return nullptr; }

void CCsOverlay::select(RECT& /*rect*/) { selected = 1; }

int CCsOverlay::unselect(RECT& /*rect*/) {
    selected = 0;
    return 0;
}

CCsOverlay* CCsOverlay::isSelected() { return selected != 0 ? this : nullptr; }

void CCsOverlay::move(CCs2dTrafo* /*trafo*/, int /*dx*/, int /*dy*/, int /*x*/, int /*y*/, CCsRegion* /*region*/) {}

void CCsOverlay::render(CCs2dTrafo* /*imageTrafo*/, CCs2dTrafo* /*outputTrafo*/, unsigned long /*color*/, HDC /*dc*/,
                        CCsImageTextFont::CCsImageTextFontType /*fontType*/, int /*mode*/, int /*width*/,
                        int /*height*/, int /*offsetX*/, int /*offsetY*/) {}

void CCsOverlay::size(unsigned int /*what*/, int /*dx*/, int /*dy*/, CCs2dTrafo* /*trafo*/) {}

int CCsOverlay::isTransformable() { return transformable; }

void CCsOverlay::updateTrafo(CCs2dTrafo* /*trafo*/, bool /*flag*/) {}

const wchar_t* CCsOverlay::getClassName() { return L"CCsOverlay"; }

void CCsOverlay::renderEllipse(CCs2dTrafo* /*imageTrafo*/, CCs2dTrafo* /*outputTrafo*/, unsigned long /*color*/,
                               HDC /*dc*/, int /*mode*/, int /*width*/, int /*height*/, int /*offsetX*/,
                               int /*offsetY*/, bool /*flag1*/, bool /*flag2*/) {}

void CCsOverlay::unchain() {
    if (group != nullptr) {
        if (group->head == this) {
            group->head = next;
        } else {
            previous->next = next;
        }
        if (group->tail == this) {
            group->tail = previous;
        } else {
            next->previous = previous;
        }
    }
    previous = nullptr;
    next = nullptr;
    group = nullptr;
}

void CCsOverlay::setExternalStatus_(bool on) {
    external = on;
    movable = !on;
    groupPickFlag = on ? 0 : 1;
}
