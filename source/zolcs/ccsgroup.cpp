#include "zolcs/ccsgroup.h"

#include "zolcs/drawing/gdiscope.h"
#include "zolcs/support/conversion.h"

#include <cassert>
#include <new>

CCsGroup::CCsGroup() { groupPickFlag = 0; }

CCsGroup::CCsGroup(const CCsGroup& other) : CCsGroup() {
    external = other.external;
    appendClones(other, true);
}

CCsGroup& CCsGroup::operator=(const CCsGroup& other) = default;

CCsGroup::~CCsGroup() {
    // A member that goes unchains itself, which moves the head on; the analyzer does not see that.
    while (head != nullptr) delete head;  // NOLINT(clang-analyzer-cplusplus.NewDelete)
    tail = nullptr;
}

/// Calls action for every direct member, first to last. The action must not change the chain.
template <typename Action>
void CCsGroup::forEach(Action action) const {
    for (CCsOverlay* member = head; member != nullptr; member = member->next) action(*member);
}

/// Appends a clone of every member that source has at this moment, which may be this group itself.
void CCsGroup::appendClones(const CCsGroup& source, bool withLast) {
    const auto appendClone = [this](CCsOverlay& member) {
        CCsOverlay* clone = member.NewInstance();
        assert(clone != nullptr);
        link(*clone);
    };
    CCsOverlay* const last = source.tail;
    for (CCsOverlay* member = source.head; member != last; member = member->next) appendClone(*member);
    if (withLast && last != nullptr) appendClone(*last);
}

CCsOverlay* CCsGroup::NewInstance() { return new (std::nothrow) CCsGroup(*this); }

CCsOverlay* CCsGroup::pick(int x, int y) {
    for (CCsOverlay* member = head; member != nullptr; member = member->next) {
        if (CCsOverlay* hit = member->pick(x, y)) return groupPickFlag != 0 ? this : hit;
    }
    return nullptr;
}

int CCsGroup::unselect(RECT& rect) {
    CCsOverlay* member = isSelected();
    if (member == nullptr) return 0;
    member->unselect(rect);
    return 1;
}

CCsOverlay* CCsGroup::isSelected() {
    CCsOverlay* member = head;
    while (member != nullptr && member->isSelected() == nullptr) member = member->next;
    return member;
}

void CCsGroup::move(CCs2dTrafo* trafo, int dx, int dy, int x, int y, CCsRegion* region) {
    if (!movable) return;
    forEach([&](CCsOverlay& member) { member.move(trafo, dx, dy, x, y, region); });
}

void CCsGroup::render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                      int height, int offsetX, int offsetY) {
    forEach([&](CCsOverlay& member) {
        member.render(imageTrafo, outputTrafo, color, dc, mode, width, height, offsetX, offsetY);
    });
}

void CCsGroup::dspToImg(CCs2dTrafo* trafo) {
    forEach([&](CCsOverlay& member) { member.dspToImg(trafo); });
}

void CCsGroup::getSize(RECT& rect) {
    forEach([&](CCsOverlay& member) { member.getSize(rect); });
}

void CCsGroup::size(unsigned int what, int dx, int dy, CCs2dTrafo* trafo) {
    forEach([&](CCsOverlay& member) { member.size(what, dx, dy, trafo); });
}

void CCsGroup::updateTrafo(CCs2dTrafo* trafo, bool flag) {
    forEach([&](CCsOverlay& member) { member.updateTrafo(trafo, flag); });
}

void CCsGroup::setDicomPrintFlag(bool on) {
    forEach([&](CCsOverlay& member) { member.setDicomPrintFlag(on); });
}

void CCsGroup::append(CCsOverlay& overlay) {
    // An assigned copy names its source's group without being a member: it may be appended.
    assert(overlay.group == nullptr || !overlay.group->contains(overlay));
    link(overlay);
}

bool CCsGroup::contains(const CCsOverlay& overlay) const {
    const CCsOverlay* member = head;
    while (member != nullptr && member != &overlay) member = member->next;
    return member != nullptr;
}

void CCsGroup::link(CCsOverlay& overlay) {
    overlay.previous = tail;
    overlay.next = nullptr;
    overlay.group = this;
    (tail != nullptr ? tail->next : head) = &overlay;
    tail = &overlay;
}

void CCsGroup::appendAllExceptLast(CCsGroup& source) {
    assert(source.head != nullptr);
    appendClones(source, false);
}

void CCsGroup::copyGroup(CCsGroup& source) {
    resetAll();
    groupPickFlag = source.groupPickFlag;
    external = source.external;
    appendClones(source, true);
}

CCsOverlay* CCsGroup::Find(int n) const {
    if (n < 1) return nullptr;
    CCsOverlay* member = head;
    while (member != nullptr && --n > 0) member = member->next;
    return member;
}

int CCsGroup::getGroupSize() const {
    int count = 0;
    forEach([&](CCsOverlay&) { ++count; });
    return count;
}

void CCsGroup::resetAll() {
    // Deleting unchains, so that the members that are kept end up linked to one another.
    CCsOverlay* kept = nullptr;
    for (CCsOverlay *member = head, *next = nullptr; member != nullptr; member = next) {
        next = member->next;
        if (!member->burntToImage && !member->external) {
            delete member;
        } else if (kept == nullptr) {
            kept = member;
        }
    }
    groupPickFlag = 0;
    head = nullptr;
    tail = nullptr;
    for (CCsOverlay* next = nullptr; kept != nullptr; kept = next) {
        next = kept->next;  // NOLINT(clang-analyzer-cplusplus.NewDelete): likewise, it was unlinked from the deleted
        link(*kept);
    }
}

void CCsGroup::renderLast(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode,
                          int width, int height, int offsetX, int offsetY) {
    if (tail == nullptr) return;
    tail->render(imageTrafo, outputTrafo, color, dc, mode, width, height, offsetX, offsetY);
}

bool CCsGroup::isAnyOverlayNotBurnt() const {
    const CCsOverlay* member = head;
    while (member != nullptr && member->burntToImage) member = member->next;
    return member != nullptr;
}

bool CCsGroup::isAnyOverlayPresent() const { return head != nullptr; }

int CCsGroup::isTransformableOverlAdded() const {
    CCsOverlay* member = head;
    while (member != nullptr && member->isTransformable() == 0) member = member->next;
    return member != nullptr ? 1 : 0;
}

void CCsGroup::setBurntToImage(bool on) {
    forEach([&](CCsOverlay& member) { member.burntToImage = on; });
}

void CCsGroup::setTransformable(int on) {
    forEach([&](CCsOverlay& member) { member.transformable = on; });
}

namespace {

std::int32_t offset(int value, int by) { return zolcs::saturated(std::int64_t{value} + by); }

int nearCentre(int centre, int value) {
    const std::int64_t distance = std::int64_t{value} - centre;
    return distance >= -7 && distance < 7 ? 1 : 0;
}

}  // namespace

int CCsBox::pick(int cx, int cy, int x, int y) { return nearCentre(cx, x) & nearCentre(cy, y); }

void CCsBox::render(int x, int y, HDC dc) {
    const zolcs::Region square(CreateRectRgn(offset(x, -3), offset(y, -3), offset(x, 2), offset(y, 2)));
    PaintRgn(dc, square.get());
}
