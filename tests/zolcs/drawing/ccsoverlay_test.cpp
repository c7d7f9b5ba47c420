#include "zolcs/ccsoverlay.h"

#include "support/overlay_double.h"
#include "support/vtable_slots.h"

#include "zolcs/ccsgroup.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>

namespace {

using zoltest::OverlayDouble;

static_assert(std::has_virtual_destructor_v<CCsOverlay> && std::is_abstract_v<CCsOverlay>);

/// A concrete overlay that adds nothing and shows its fields.
class PlainOverlay : public CCsOverlay {
public:
    using CCsOverlay::render;
    void render(CCs2dTrafo*, CCs2dTrafo*, unsigned long, HDC, int, int, int, int, int) override {}
    void dspToImg(CCs2dTrafo*) override {}
    void getSize(RECT&) override {}
    void setDicomPrintFlag(bool) override {}

    using CCsOverlay::burntToImage;
    using CCsOverlay::dicomPrintFlag;
    using CCsOverlay::external;
    using CCsOverlay::group;
    using CCsOverlay::groupPickFlag;
    using CCsOverlay::movable;
    using CCsOverlay::next;
    using CCsOverlay::overlayId;
    using CCsOverlay::previous;
    using CCsOverlay::renderable;
    using CCsOverlay::reserved;
    using CCsOverlay::selected;
    using CCsOverlay::shadow;
    using CCsOverlay::stateFlag;
    using CCsOverlay::transformable;
};

void fillOddly(PlainOverlay& overlay) {
    overlay.setOverlayID(42);
    overlay.shadow = 0;
    overlay.groupPickFlag = 5;
    overlay.selected = 6;
    overlay.burntToImage = true;
    overlay.transformable = 7;
    overlay.dicomPrintFlag = true;
    overlay.stateFlag = false;
    overlay.movable = false;
    overlay.external = true;
    overlay.renderable = false;
    overlay.reserved = 8;
}

void expectOddFields(const PlainOverlay& overlay) {
    EXPECT_EQ(overlay.overlayId, 42);
    EXPECT_EQ(overlay.shadow, 0);
    EXPECT_EQ(overlay.groupPickFlag, 5);
    EXPECT_EQ(overlay.selected, 6);
    EXPECT_TRUE(overlay.burntToImage);
    EXPECT_EQ(overlay.transformable, 7);
    EXPECT_TRUE(overlay.dicomPrintFlag);
    EXPECT_FALSE(overlay.stateFlag);
    EXPECT_FALSE(overlay.movable);
    EXPECT_TRUE(overlay.external);
    EXPECT_FALSE(overlay.renderable);
}

template <typename Field>
std::size_t offsetIn(const PlainOverlay& overlay, const Field& field) {
    return static_cast<std::size_t>(reinterpret_cast<const char*>(&field) - reinterpret_cast<const char*>(&overlay));
}

}  // namespace

TEST(CCsOverlayTest, StartsFreeWithItsDefaults) {
    const PlainOverlay overlay;
    EXPECT_EQ(overlay.previous, nullptr);
    EXPECT_EQ(overlay.next, nullptr);
    EXPECT_EQ(overlay.group, nullptr);
    EXPECT_EQ(overlay.overlayId, 0);
    EXPECT_EQ(overlay.shadow, 1);
    EXPECT_EQ(overlay.groupPickFlag, 1);
    EXPECT_EQ(overlay.selected, 0);
    EXPECT_FALSE(overlay.burntToImage);
    EXPECT_EQ(overlay.transformable, 1);
    EXPECT_FALSE(overlay.dicomPrintFlag);
    EXPECT_TRUE(overlay.stateFlag);
    EXPECT_TRUE(overlay.movable);
    EXPECT_FALSE(overlay.external);
    EXPECT_TRUE(overlay.renderable);
    EXPECT_EQ(overlay.reserved, 0);
}

TEST(CCsOverlayTest, FieldsLieWhereTheyAlwaysDid) {
    const PlainOverlay overlay;
    constexpr std::size_t pointer = sizeof(void*);
    EXPECT_EQ(offsetIn(overlay, overlay.previous), pointer);
    EXPECT_EQ(offsetIn(overlay, overlay.next), 2 * pointer);
    EXPECT_EQ(offsetIn(overlay, overlay.group), 3 * pointer);
    EXPECT_EQ(offsetIn(overlay, overlay.overlayId), 4 * pointer);
    EXPECT_EQ(offsetIn(overlay, overlay.shadow), 4 * pointer + 4);
    EXPECT_EQ(offsetIn(overlay, overlay.groupPickFlag), 4 * pointer + 8);
    EXPECT_EQ(offsetIn(overlay, overlay.selected), 4 * pointer + 12);
    EXPECT_EQ(offsetIn(overlay, overlay.burntToImage), 4 * pointer + 16);
    EXPECT_EQ(offsetIn(overlay, overlay.transformable), 4 * pointer + 20);
    EXPECT_EQ(offsetIn(overlay, overlay.dicomPrintFlag), 4 * pointer + 24);
    EXPECT_EQ(offsetIn(overlay, overlay.stateFlag), 4 * pointer + 25);
    EXPECT_EQ(offsetIn(overlay, overlay.movable), 4 * pointer + 26);
    EXPECT_EQ(offsetIn(overlay, overlay.external), 4 * pointer + 27);
    EXPECT_EQ(offsetIn(overlay, overlay.renderable), 4 * pointer + 28);
    EXPECT_EQ(offsetIn(overlay, overlay.reserved), 4 * pointer + 32);
    EXPECT_EQ(sizeof(CCsOverlay), pointer == 8 ? 72U : 52U);
}

TEST(CCsOverlayTest, VirtualOperationsStandInTheirOrder) {
    using zoltest::tableEntry;
    using Overlay = CCsOverlay;
    using PlainRender = void (Overlay::*)(CCs2dTrafo*, CCs2dTrafo*, unsigned long, HDC, int, int, int, int, int);
    using FontRender = void (Overlay::*)(CCs2dTrafo*, CCs2dTrafo*, unsigned long, HDC,
                                         CCsImageTextFont::CCsImageTextFontType, int, int, int, int, int);
    EXPECT_EQ(tableEntry(&Overlay::NewInstance), 2U);  // behind the destructor's two
    EXPECT_EQ(tableEntry(&Overlay::pick), 3U);
    EXPECT_EQ(tableEntry(&Overlay::select), 4U);
    EXPECT_EQ(tableEntry(&Overlay::unselect), 5U);
    EXPECT_EQ(tableEntry(&Overlay::isSelected), 6U);
    EXPECT_EQ(tableEntry(&Overlay::move), 7U);
    EXPECT_EQ(tableEntry(static_cast<FontRender>(&Overlay::render)), 8U);
    EXPECT_EQ(tableEntry(static_cast<PlainRender>(&Overlay::render)), 9U);
    EXPECT_EQ(tableEntry(&Overlay::dspToImg), 10U);
    EXPECT_EQ(tableEntry(&Overlay::getSize), 11U);
    EXPECT_EQ(tableEntry(&Overlay::size), 12U);
    EXPECT_EQ(tableEntry(&Overlay::isTransformable), 13U);
    EXPECT_EQ(tableEntry(&Overlay::updateTrafo), 14U);
    EXPECT_EQ(tableEntry(&Overlay::setDicomPrintFlag), 15U);
    EXPECT_EQ(tableEntry(&Overlay::getClassName), 16U);
    EXPECT_EQ(tableEntry(&Overlay::renderEllipse), 17U);
}

TEST(CCsOverlayTest, CopyIsFreeAndResetsTheReservedField) {
    CCsGroup group;
    auto* const first = new PlainOverlay;
    auto* const overlay = new PlainOverlay;
    group.append(*first);
    group.append(*overlay);
    fillOddly(*overlay);
    const PlainOverlay copy(*overlay);
    expectOddFields(copy);
    EXPECT_EQ(copy.reserved, 0);
    EXPECT_EQ(copy.previous, nullptr);
    EXPECT_EQ(copy.next, nullptr);
    EXPECT_EQ(copy.group, nullptr);
    EXPECT_EQ(group.getGroupSize(), 2);
}

TEST(CCsOverlayTest, AssignmentDeliberatelyCopiesTheLinksToo) {
    CCsGroup group;
    auto* const first = new PlainOverlay;
    auto* const overlay = new PlainOverlay;
    auto* const last = new PlainOverlay;
    for (PlainOverlay* member : {first, overlay, last}) group.append(*member);
    fillOddly(*overlay);
    // The copy lies in storage whose destructor never runs: destroyed, it would unchain what it never was.
    alignas(PlainOverlay) unsigned char storage[sizeof(PlainOverlay)];
    auto& copy = *new (storage) PlainOverlay;
    copy = *overlay;
    expectOddFields(copy);
    EXPECT_EQ(copy.reserved, 8);
    EXPECT_EQ(copy.previous, first);
    EXPECT_EQ(copy.next, last);
    EXPECT_EQ(copy.group, &group);
    EXPECT_EQ(first->next, overlay);
    EXPECT_EQ(group.getGroupSize(), 3);
}

TEST(CCsOverlayTest, AssignedCopyCanBeRelinkedByAppending) {
    CCsGroup group;
    auto* const overlay = new PlainOverlay;
    auto* const copy = new PlainOverlay;
    group.append(*overlay);
    *copy = *overlay;
    group.append(*copy);
    EXPECT_EQ(group.getGroupSize(), 2);
    EXPECT_EQ(group.Find(2), copy);
    EXPECT_EQ(copy->previous, overlay);
    EXPECT_EQ(copy->next, nullptr);
}

TEST(CCsOverlayTest, BaseOperationsDoNothing) {
    PlainOverlay overlay;
    EXPECT_EQ(overlay.NewInstance(), nullptr);
    EXPECT_EQ(overlay.pick(0, 0), nullptr);
    CCsRegion region(1, 2, 3, 4);
    overlay.move(nullptr, 1, 2, 3, 4, &region);
    EXPECT_EQ(region.left, 1);
    EXPECT_EQ(region.width, 3);
    overlay.render(nullptr, nullptr, 0, nullptr, CCsImageTextFont::Bold, 1, 2, 3, 4, 5);
    overlay.size(1, 2, 3, nullptr);
    overlay.updateTrafo(nullptr, true);
    overlay.renderEllipse(nullptr, nullptr, 0, nullptr, 1, 2, 3, 4, 5, true, false);
    EXPECT_STREQ(overlay.getClassName(), L"CCsOverlay");
}

TEST(CCsOverlayTest, SelectionLeavesTheRectangle) {
    PlainOverlay overlay;
    RECT rect{1, 2, 3, 4};
    EXPECT_EQ(overlay.isSelected(), nullptr);
    overlay.select(rect);
    EXPECT_EQ(overlay.selected, 1);
    EXPECT_EQ(overlay.isSelected(), &overlay);
    EXPECT_EQ(overlay.unselect(rect), 0);
    EXPECT_EQ(overlay.selected, 0);
    EXPECT_EQ(overlay.isSelected(), nullptr);
    overlay.selected = -2;  // whatever is not 0
    EXPECT_EQ(overlay.isSelected(), &overlay);
    EXPECT_EQ(rect.left, 1);
    EXPECT_EQ(rect.top, 2);
    EXPECT_EQ(rect.right, 3);
    EXPECT_EQ(rect.bottom, 4);
}

TEST(CCsOverlayTest, FlagsAreStoredAndRead) {
    PlainOverlay overlay;
    overlay.setRenderFlag(false);
    EXPECT_FALSE(overlay.isRenderable());
    overlay.setRenderFlag(true);
    EXPECT_TRUE(overlay.isRenderable());
    overlay.setTransformable_(-3);
    EXPECT_EQ(overlay.isTransformable(), -3);
    overlay.setMoveStatus_(false);
    EXPECT_FALSE(overlay.movable);
    overlay.setBurntToImage_(true);
    EXPECT_TRUE(overlay.burntToImage);
    overlay.setGroupPickFlag(9);
    EXPECT_EQ(overlay.groupPickFlag, 9);
    overlay.setOverlayID(-7);
    EXPECT_EQ(overlay.overlayId, -7);
}

TEST(CCsOverlayTest, ExternalStatusSetsThreeFlags) {
    PlainOverlay overlay;
    overlay.setExternalStatus_(true);
    EXPECT_TRUE(overlay.isExternal());
    EXPECT_FALSE(overlay.movable);
    EXPECT_EQ(overlay.groupPickFlag, 0);
    overlay.setExternalStatus_(false);
    EXPECT_FALSE(overlay.isExternal());
    EXPECT_TRUE(overlay.movable);
    EXPECT_EQ(overlay.groupPickFlag, 1);
}

TEST(CCsOverlayTest, DestructionRelinksTheNeighbours) {
    for (const int gone : {1, 2, 3}) {
        CCsGroup group;
        auto* const a = new OverlayDouble("a");
        auto* const b = new OverlayDouble("b");
        auto* const c = new OverlayDouble("c");
        for (OverlayDouble* member : {a, b, c}) group.append(*member);
        delete group.Find(gone);
        EXPECT_EQ(group.getGroupSize(), 2);
        auto* const first = gone == 1 ? b : a;
        auto* const last = gone == 3 ? b : c;
        EXPECT_EQ(group.Find(1), first);
        EXPECT_EQ(group.Find(2), last);
        EXPECT_EQ(first->previousLink(), nullptr);
        EXPECT_EQ(first->nextLink(), last);
        EXPECT_EQ(last->previousLink(), first);
        EXPECT_EQ(last->nextLink(), nullptr);
        delete last;
        EXPECT_EQ(group.Find(1), first);
        delete first;
        EXPECT_FALSE(group.isAnyOverlayPresent());
    }
    EXPECT_EQ(OverlayDouble::living, 0);
}

TEST(CCsOverlayTest, UnchainLeavesTheGroupAndIsHarmlessTwice) {
    CCsGroup group;
    OverlayDouble a("a");
    OverlayDouble b("b");
    group.append(a);
    group.append(b);
    EXPECT_EQ(a.owner(), &group);
    a.unchain();
    EXPECT_EQ(a.owner(), nullptr);
    EXPECT_EQ(a.previousLink(), nullptr);
    EXPECT_EQ(a.nextLink(), nullptr);
    EXPECT_EQ(group.Find(1), &b);
    EXPECT_EQ(b.previousLink(), nullptr);
    a.unchain();
    b.unchain();
    EXPECT_FALSE(group.isAnyOverlayPresent());
    group.append(a);  // free again, it can join
    EXPECT_EQ(group.Find(1), &a);
    a.unchain();
}

TEST(CCsOverlayTest, UnchainClearsLinksThatNoGroupKnowsOf) {
    PlainOverlay neighbour;
    PlainOverlay overlay;
    overlay.previous = &neighbour;
    overlay.next = &neighbour;
    overlay.unchain();
    EXPECT_EQ(overlay.previous, nullptr);
    EXPECT_EQ(overlay.next, nullptr);
    EXPECT_EQ(neighbour.previous, nullptr);
    EXPECT_EQ(neighbour.next, nullptr);
}
