#include "zolcs/ccstrack.h"

#include "support/gdi_canvas.h"
#include "support/open_line.h"
#include "support/overlay_double.h"
#include "support/overlay_views.h"
#include "support/vtable_slots.h"

#include "zolcs/ccsellipse.h"
#include "zolcs/ccsgroup.h"
#include "zolcs/ccsline.h"
#include "zolcs/ccstext.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <type_traits>

namespace {

using zoltest::displayOf;
using zoltest::identityView;
using zoltest::mirroredView;
using zoltest::Numbers;
using zoltest::OverlayDouble;
using zoltest::quarterTurnedView;
using zoltest::zoomedView;

constexpr int solid = 0;

/// A track that shows its fields.
class OpenTrack : public CCsTrack {
public:
    using CCsTrack::CCsTrack;
    using CCsTrack::overlay;
    using CCsTrack::picked;
    using CCsTrack::startX;
    using CCsTrack::startY;
    using CCsTrack::x;
    using CCsTrack::y;
};

// ---------------------------------------------------------------------------------------------------- the track itself

TEST(CCsTrackInterface, FieldsHaveTheirDeclaredOrder) {
    static_assert(std::has_virtual_destructor_v<CCsTrack>);
    const OpenTrack track;
    const auto* const begin = reinterpret_cast<const char*>(&track);
    const auto offset = [&](const auto& field) { return reinterpret_cast<const char*>(&field) - begin; };
    constexpr std::ptrdiff_t pointer = sizeof(void*);
    EXPECT_EQ(offset(track.overlay), pointer);
    EXPECT_EQ(offset(track.startX), 2 * pointer);
    EXPECT_EQ(offset(track.startY), 2 * pointer + 4);
    EXPECT_EQ(offset(track.picked), 2 * pointer + 8);
    EXPECT_EQ(offset(track.x), 3 * pointer + 8);
    EXPECT_EQ(offset(track.y), 3 * pointer + 12);
    static_assert(sizeof(CCsTrack) == 3 * sizeof(void*) + 16);
}

TEST(CCsTrack, StartsWithNothing) {
    const OpenTrack none;
    EXPECT_EQ(none.overlay, nullptr);
    EXPECT_EQ(none.picked, nullptr);
    EXPECT_EQ((std::vector<int>{none.startX, none.startY, none.x, none.y}), (std::vector<int>{0, 0, 0, 0}));
    OverlayDouble overlay;
    const OpenTrack track(&overlay);
    EXPECT_EQ(track.getOverlay(), &overlay);
    EXPECT_EQ(track.getPicked(), nullptr);
    EXPECT_EQ((std::vector<int>{track.startX, track.startY, track.x, track.y}), (std::vector<int>{0, 0, 0, 0}));
}

TEST(CCsTrack, TheWayCountsFromThePressAndFromTheLastReset) {
    CCsTrack track;
    track.downEvent(3, 4);
    EXPECT_EQ(track.getDx(), 0);
    EXPECT_EQ(track.getDy(), 0);
    EXPECT_EQ(track.getX(), 3);
    EXPECT_EQ(track.getY(), 4);
    track.motionEvent(10, 1);
    EXPECT_EQ(track.getDx(), 7);
    EXPECT_EQ(track.getDy(), -3);
    EXPECT_EQ(track.getX(), 10);
    EXPECT_EQ(track.getY(), 1);
    track.resetDxy();
    EXPECT_EQ(track.getDx(), 0);
    EXPECT_EQ(track.getDy(), 0);
    EXPECT_EQ(track.getX(), 10);
    track.upEvent(11, -1);
    EXPECT_EQ(track.getDx(), 1);
    EXPECT_EQ(track.getDy(), -2);
}

TEST(CCsTrack, ThePressPicksAndTheReleaseLetsGo) {
    zoltest::CallLog log;
    OverlayDouble overlay("o", &log);
    CCsTrack track(&overlay);
    overlay.hit = true;
    track.downEvent(3, 4);
    EXPECT_EQ(track.getPicked(), &overlay);
    EXPECT_EQ(log, (zoltest::CallLog{"o.pick 3 4"}));
    track.motionEvent(10, 1);
    EXPECT_EQ(track.getPicked(), &overlay);
    track.upEvent(1000, 1000);
    EXPECT_EQ(track.getPicked(), nullptr);
    EXPECT_EQ(track.getX(), 1000);
    EXPECT_EQ(log.size(), 1U);
    track.downEvent(3, 4);
    overlay.hit = false;
    track.downEvent(5, 6);
    EXPECT_EQ(track.getPicked(), nullptr);
}

TEST(CCsTrack, WithoutAnOverlayThePressKeepsWhatIsPicked) {
    OverlayDouble other;
    OpenTrack track;
    track.picked = &other;
    track.downEvent(3, 4);
    EXPECT_EQ(track.getPicked(), &other);
    EXPECT_EQ(track.getX(), 3);
    track.upEvent(3, 4);
    EXPECT_EQ(track.getPicked(), nullptr);
    track.downEvent(3, 4);
    EXPECT_EQ(track.getPicked(), nullptr);
}

TEST(CCsTrack, WaysBeyondTheIntegersSaturate) {
    CCsTrack track;
    track.downEvent(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    track.motionEvent(std::numeric_limits<int>::max(), std::numeric_limits<int>::min());
    EXPECT_EQ(track.getDx(), std::numeric_limits<int>::max());
    EXPECT_EQ(track.getDy(), std::numeric_limits<int>::min());
}

TEST(CCsTrack, CopiesHaveClonesAndAssignmentsShare) {
    const int before = OverlayDouble::living;
    {
        OverlayDouble overlay("o");
        overlay.hit = true;
        CCsTrack track(&overlay);
        track.downEvent(3, 4);
        track.motionEvent(10, 1);

        const OpenTrack empty;
        const OpenTrack emptyCopy(empty);
        EXPECT_EQ(emptyCopy.overlay, nullptr);
        EXPECT_EQ(emptyCopy.picked, nullptr);

        const CCsTrack copy(track);
        const std::unique_ptr<CCsOverlay> first(copy.getOverlay());
        const std::unique_ptr<CCsOverlay> second(copy.getPicked());
        ASSERT_NE(first, nullptr);
        ASSERT_NE(second, nullptr);
        EXPECT_NE(first.get(), &overlay);
        EXPECT_NE(second.get(), &overlay);
        EXPECT_NE(first, second);
        EXPECT_EQ(dynamic_cast<OverlayDouble&>(*first).name, "o");
        EXPECT_EQ(copy.getDx(), 7);
        EXPECT_EQ(copy.getDy(), -3);
        EXPECT_EQ(copy.getX(), 10);

        CCsTrack assigned;
        assigned = track;
        EXPECT_EQ(assigned.getOverlay(), &overlay);
        EXPECT_EQ(assigned.getPicked(), &overlay);
        EXPECT_EQ(assigned.getDx(), 7);
        EXPECT_EQ(assigned.getY(), 1);
        EXPECT_EQ(OverlayDouble::living, before + 3);
    }
    EXPECT_EQ(OverlayDouble::living, before);
}

TEST(CCsTrack, CopyingWithAPickedMemberClonesTheMemberAlone) {
    CCs2dTrafo view = identityView();
    CCsGroup group;
    group.append(*new CCsLine(&view, 10, 10, 50, 10, solid));
    group.append(*new CCsLine(&view, 10, 40, 50, 40, solid));
    CCsTrack track(&group);
    track.downEvent(30, 40);
    ASSERT_EQ(track.getPicked(), group.Find(2));
    const CCsTrack copy(track);
    const std::unique_ptr<CCsOverlay> groupClone(copy.getOverlay());
    const std::unique_ptr<CCsOverlay> lineClone(copy.getPicked());
    EXPECT_EQ(dynamic_cast<CCsGroup&>(*groupClone).getGroupSize(), 2);
    EXPECT_NE(dynamic_cast<CCsLine*>(lineClone.get()), nullptr);
    EXPECT_EQ(group.getGroupSize(), 2);
}

// ---------------------------------------------------------------------------------------------------- drags

using Reshape = void (CCsLine::*)(CCs2dTrafo*, int, int, int, int, CCsRegion*);

/// A host with a view and a group of annotations: it paints before and after each drag, moves what the press has hit
/// step by step, and ends the drag with dspToImg.
class Host {
public:
    explicit Host(const CCs2dTrafo& itsView) : view(itsView) {}

    CCsLine& addLine(int x1, int y1, int x2, int y2) { return add(new CCsLine(&view, x1, y1, x2, y2, solid)); }
    CCsLine& addRectangle(int left, int top, int right, int bottom) {
        return add(new CCsLine(&view, left, top, right, top, right, bottom, left, bottom, solid));
    }
    CCsEllipse& addEllipse(int left, int top, int right, int bottom) {
        return add(new CCsEllipse(&view, CCsPoint(left, top), CCsPoint(right, bottom)));
    }
    CCsText& addText(int x, int y) { return add(new CCsText(&view, x, y, L"note", 0, false)); }

    void paint() { group.render(&view, nullptr, 0xFF, canvas_.dc(), 1, 64, 64, 0, 0); }

    /// Presses at the first point, goes over the others and releases at the last. Returns what was hit. `reshape` takes
    /// the place of move for lines.
    CCsOverlay* drag(const std::vector<CPoint>& path, Reshape reshape = nullptr) {
        paint();
        CCsTrack track(&group);
        track.downEvent(path.front().x, path.front().y);
        CCsOverlay* const hit = track.getPicked();
        for (std::size_t i = 1; hit != nullptr && i < path.size(); ++i) {
            track.motionEvent(path[i].x, path[i].y);
            auto* const line = dynamic_cast<CCsLine*>(hit);
            if (reshape != nullptr && line != nullptr) {
                (line->*reshape)(&view, track.getDx(), track.getDy(), track.getX(), track.getY(), &region);
            } else {
                hit->move(&view, track.getDx(), track.getDy(), track.getX(), track.getY(), &region);
            }
            track.resetDxy();
            paint();
        }
        track.upEvent(path.back().x, path.back().y);
        EXPECT_EQ(track.getPicked(), nullptr);
        if (hit != nullptr) hit->dspToImg(&view);
        paint();
        return hit;
    }

    CCs2dTrafo view;
    CCsGroup group;
    CCsRegion region;

private:
    template <typename Overlay>
    Overlay& add(Overlay* overlay) {
        group.append(*overlay);
        return *overlay;
    }

    zoltest::Canvas canvas_{64, 64};
};

Numbers imageOf(const CCsLine& line) {
    std::vector<CPoint> points;
    line.getEndPts(points);
    Numbers out(2 * points.size());
    if (points.size() == 2) line.getImagePts(out[0], out[1], out[2], out[3]);
    if (points.size() == 3) line.getImagePts(out[0], out[1], out[2], out[3], out[4], out[5]);
    if (points.size() == 4) {
        line.getImagePts(out[0], out[1], out[2], out[3], out[4], out[5], out[6], out[7]);
    }
    return out;
}

Numbers imageOf(const CCsEllipse& ellipse) {
    CCsPointDouble first;
    CCsPointDouble second;
    ellipse.getImagePts(first, second);
    return {first.x, first.y, second.x, second.y};
}

Numbers imageOf(const CCsText& text) {
    Numbers out(2);
    text.getImagePts(out[0], out[1]);
    return out;
}

TEST(Drag, AWholeLine) {
    Host host(identityView());
    CCsLine& line = host.addLine(100, 100, 200, 100);
    EXPECT_EQ(host.drag({{150, 102}, {160, 110}, {155, 130}}), &line);
    EXPECT_EQ(displayOf(line), (Numbers{105, 128, 205, 128}));
    EXPECT_EQ(imageOf(line), (Numbers{105, 128, 205, 128}));
    EXPECT_EQ(host.drag({{150, 102}, {160, 110}}), nullptr);
    EXPECT_EQ(imageOf(line), (Numbers{105, 128, 205, 128}));
}

TEST(Drag, AVertexOfASelectedLine) {
    Host host(zoomedView(1.0));  // image = display / 2
    CCsLine& line = host.addLine(100, 100, 200, 100);
    line.select();
    EXPECT_EQ(host.drag({{203, 101}, {223, 121}, {243, 91}}), &line);
    EXPECT_EQ(displayOf(line), (Numbers{100, 100, 240, 90}));
    EXPECT_EQ(imageOf(line), (Numbers{50, 50, 120, 45}));
    // The next drag takes the line elsewhere and so moves all of it.
    EXPECT_EQ(host.drag({{170, 95}, {172, 95}}), &line);
    EXPECT_EQ(imageOf(line), (Numbers{51, 50, 121, 45}));
}

TEST(Drag, UnderZoomTurnAndMirror) {
    // The same way on the display, (+20, -10), in the image of each view.
    const struct {
        CCs2dTrafo view;
        Numbers image;
    } cases[] = {{identityView(), {120, 190, 220, 190}},
                 {zoomedView(1.0), {60, 95, 110, 95}},
                 {zoomedView(4.0),
                  {128 + (120 - 256) / 8.0, 128 + (190 - 256) / 8.0, 128 + (220 - 256) / 8.0, 128 + (190 - 256) / 8.0}},
                 {quarterTurnedView(), {190, 512 - 120, 190, 512 - 220}},
                 {mirroredView(), {512 - 120, 190, 512 - 220, 190}}};
    for (const auto& [view, image] : cases) {
        Host host(view);
        CCsLine& line = host.addLine(100, 200, 200, 200);
        EXPECT_EQ(host.drag({{150, 200}, {155, 198}, {170, 190}}), &line);
        EXPECT_EQ(displayOf(line), (Numbers{120, 190, 220, 190}));
        EXPECT_EQ(imageOf(line), image);
    }
}

TEST(Drag, TheViewMayChangeBetweenDrags) {
    Host host(identityView());
    CCsLine& line = host.addLine(100, 200, 200, 200);
    host.drag({{150, 200}, {160, 210}});
    EXPECT_EQ(imageOf(line), (Numbers{110, 210, 210, 210}));
    host.view.scale(2.0);  // x' = 2 x - 256
    host.paint();
    EXPECT_EQ(displayOf(line), (Numbers{-36, 164, 164, 164}));
    EXPECT_EQ(host.drag({{0, 164}, {10, 170}}), &line);
    EXPECT_EQ(imageOf(line), (Numbers{115, 213, 215, 213}));
    host.view = mirroredView();
    host.paint();
    EXPECT_EQ(displayOf(line), (Numbers{397, 213, 297, 213}));
    EXPECT_EQ(host.drag({{350, 213}, {360, 213}}), &line);
    EXPECT_EQ(imageOf(line), (Numbers{105, 213, 205, 213}));
}

TEST(Drag, AnObliqueViewThereAndBack) {
    CCs2dTrafo view = zoomedView(1.3);
    view.rotate(33.0);
    view.mirror(CCS_VERTICAL);
    Host host(view);
    CCsLine& line = host.addLine(100, 200, 200, 240);
    const Numbers before = imageOf(line);
    EXPECT_EQ(host.drag({{150, 220}, {190, 150}, {161, 233}}), &line);
    EXPECT_EQ(displayOf(line), (Numbers{111, 213, 211, 253}));
    EXPECT_EQ(host.drag({{161, 233}, {150, 220}}), &line);
    EXPECT_EQ(displayOf(line), (Numbers{100, 200, 200, 240}));
    const Numbers after = imageOf(line);
    for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(after[i], before[i], 1e-9);
}

TEST(Drag, CornersOfRectanglesSquaresAndCircles) {
    {
        Host host(zoomedView(1.0));
        CCsLine& line = host.addRectangle(100, 100, 200, 180);
        line.close();
        line.select();
        EXPECT_EQ(host.drag({{100, 100}, {90, 96}, {80, 110}}, &CCsLine::moveRectangle), &line);
        EXPECT_EQ(displayOf(line), (Numbers{80, 110, 200, 110, 200, 180, 80, 180}));
        EXPECT_EQ(imageOf(line), (Numbers{40, 55, 100, 55, 100, 90, 40, 90}));
    }
    {
        Host host(mirroredView());
        CCsLine& line = host.addRectangle(100, 100, 200, 200);
        line.close();
        line.select();
        EXPECT_EQ(host.drag({{200, 200}, {230, 200}, {260, 210}}, &CCsLine::moveSquare), &line);
        EXPECT_EQ(displayOf(line), (Numbers{100, 100, 260, 100, 260, 260, 100, 260}));
        EXPECT_EQ(imageOf(line), (Numbers{412, 100, 252, 100, 252, 260, 412, 260}));
    }
    {
        Host host(quarterTurnedView());
        CCsLine& line = host.addRectangle(100, 100, 200, 200);
        line.close();
        line.select();
        EXPECT_EQ(host.drag({{200, 200}, {210, 205}, {220, 215}}, &CCsLine::moveCircle), &line);
        EXPECT_EQ(displayOf(line), (Numbers{80, 80, 220, 80, 220, 220, 80, 220}));
        EXPECT_EQ(imageOf(line), (Numbers{80, 432, 80, 292, 220, 292, 220, 432}));
        EXPECT_EQ(host.drag({{150, 80}, {155, 85}}, &CCsLine::moveCircle), &line);
        EXPECT_EQ(displayOf(line), (Numbers{85, 85, 225, 85, 225, 225, 85, 225}));
    }
}

TEST(Drag, ARectangleInATurnedViewKeepsItsRightAngles) {
    CCs2dTrafo view = identityView();
    Host host(view);
    CCsLine& line = host.addRectangle(200, 200, 300, 260);
    line.close();
    line.select();
    host.view.rotate(30.0);
    host.paint();
    const Numbers shown = displayOf(line);
    const CPoint corner(static_cast<int>(shown[4]), static_cast<int>(shown[5]));
    EXPECT_EQ(host.drag({corner, {corner.x + 25, corner.y + 40}}, &CCsLine::moveRectangle), &line);
    const Numbers image = imageOf(line);
    // Upright in the image, and the corner that was not dragged where it was.
    EXPECT_NEAR(image[0], 200, 1e-9);
    EXPECT_NEAR(image[1], 200, 1e-9);
    EXPECT_NEAR(image[3], 200, 1e-9);
    EXPECT_NEAR(image[6], 200, 1e-9);
    EXPECT_NEAR(image[2], image[4], 1e-9);
    EXPECT_NEAR(image[5], image[7], 1e-9);
    EXPECT_GT(image[4], 310);
    EXPECT_GT(image[5], 270);
}

TEST(Drag, AnEllipseByItsOutlineAndItsHandles) {
    Host host(zoomedView(1.0));
    CCsEllipse& ellipse = host.addEllipse(100, 100, 300, 200);
    EXPECT_EQ(host.drag({{270, 186}, {280, 190}, {276, 196}}), &ellipse);  // 0.49 + 0.5184 from the centre
    EXPECT_EQ(imageOf(ellipse), (Numbers{53, 55, 153, 105}));
    EXPECT_EQ(host.drag({{306, 160}, {326, 150}, {346, 170}}), &ellipse);
    EXPECT_EQ(imageOf(ellipse), (Numbers{53, 55, 173, 105}));
    // The left edge through the right one.
    EXPECT_EQ(host.drag({{106, 160}, {250, 160}, {360, 160}, {366, 160}}), &ellipse);
    EXPECT_EQ(imageOf(ellipse), (Numbers{173, 55, 183, 105}));
}

TEST(Drag, AGroupThatIsPickedAsAWholeTakesAllAlong) {
    Host host(zoomedView(1.0));
    host.group.setGroupPickFlag(1);
    CCsLine& line = host.addLine(100, 100, 200, 100);
    CCsEllipse& ellipse = host.addEllipse(100, 120, 200, 180);
    CCsText& text = host.addText(210, 100);
    EXPECT_EQ(host.drag({{150, 100}, {154, 103}, {160, 110}}), &host.group);
    EXPECT_EQ(imageOf(line), (Numbers{55, 55, 105, 55}));
    EXPECT_EQ(imageOf(ellipse), (Numbers{55, 65, 105, 95}));
    EXPECT_EQ(imageOf(text), (Numbers{110.25, 55.25}));
    host.group.setMoveStatus_(false);
    host.drag({{160, 110}, {260, 210}});
    EXPECT_EQ(imageOf(line), (Numbers{55, 55, 105, 55}));
    host.group.setMoveStatus_(true);
    line.setExternalStatus_(true);
    EXPECT_EQ(host.drag({{160, 110}, {260, 210}}), nullptr);  // an external line is not picked
    EXPECT_EQ(host.drag({{110, 160}, {120, 170}}), &host.group);
    EXPECT_EQ(imageOf(line), (Numbers{55, 55, 105, 55}));  // nor moved
    EXPECT_EQ(imageOf(text), (Numbers{115.25, 60.25}));
}

TEST(Drag, GroupsInGroups) {
    Host host(identityView());
    auto* const inner = new CCsGroup;
    auto* const line = new CCsLine(&host.view, 100, 100, 200, 100, solid);
    auto* const other = new CCsLine(&host.view, 100, 150, 200, 150, solid);
    inner->append(*line);
    inner->append(*other);
    host.group.append(*inner);
    EXPECT_EQ(host.drag({{150, 100}, {150, 105}}), line);
    EXPECT_EQ(displayOf(*line), (Numbers{100, 105, 200, 105}));
    inner->setGroupPickFlag(1);
    EXPECT_EQ(host.drag({{150, 150}, {160, 150}}), inner);
    EXPECT_EQ(imageOf(*line), (Numbers{110, 105, 210, 105}));
    EXPECT_EQ(imageOf(*other), (Numbers{110, 150, 210, 150}));
    host.group.setGroupPickFlag(1);
    EXPECT_EQ(host.drag({{150, 150}, {150, 160}}), &host.group);
    EXPECT_EQ(imageOf(*other), (Numbers{110, 160, 210, 160}));
}

TEST(Drag, TheFirstOfTwoIsTaken) {
    Host host(identityView());
    CCsLine& below = host.addLine(100, 100, 200, 100);
    CCsLine& above = host.addLine(100, 103, 200, 103);
    EXPECT_EQ(host.drag({{150, 102}, {150, 110}}), &below);
    EXPECT_EQ(imageOf(above), (Numbers{100, 103, 200, 103}));
}

TEST(Drag, AMemberThatIsDestroyedDuringTheDrag) {
    Host host(identityView());
    CCsLine* const first = &host.addLine(100, 100, 200, 100);
    CCsLine& second = host.addLine(100, 150, 200, 150);
    CCsTrack track(&host.group);
    track.downEvent(150, 100);
    ASSERT_EQ(track.getPicked(), first);
    delete first;  // the host, which knows what was picked, lets go of it
    track.upEvent(150, 100);
    EXPECT_EQ(track.getPicked(), nullptr);
    EXPECT_EQ(host.group.getGroupSize(), 1);
    EXPECT_EQ(host.drag({{150, 150}, {151, 151}}), &second);
    EXPECT_EQ(imageOf(second), (Numbers{101, 151, 201, 151}));
}

TEST(Drag, ClonesStayWhereTheyWere) {
    Host host(identityView());
    CCsLine& line = host.addLine(100, 100, 200, 100);
    CCsEllipse& ellipse = host.addEllipse(100, 120, 200, 180);
    CCsGroup copy;
    copy.copyGroup(host.group);
    host.group.setGroupPickFlag(1);
    host.drag({{150, 100}, {170, 100}});
    EXPECT_EQ(imageOf(line), (Numbers{120, 100, 220, 100}));
    EXPECT_EQ(imageOf(ellipse), (Numbers{120, 120, 220, 180}));
    ASSERT_EQ(copy.getGroupSize(), 2);
    EXPECT_EQ(imageOf(dynamic_cast<CCsLine&>(*copy.Find(1))), (Numbers{100, 100, 200, 100}));
    EXPECT_EQ(imageOf(dynamic_cast<CCsEllipse&>(*copy.Find(2))), (Numbers{100, 120, 200, 180}));
    host.group.resetAll();
    EXPECT_EQ(copy.getGroupSize(), 2);
}

TEST(Drag, TheRegionHoldsAllThatMoved) {
    Host host(identityView());
    CCsLine& line = host.addLine(100, 100, 200, 100);
    line.select();
    host.drag({{150, 100}, {160, 120}, {155, 110}});
    EXPECT_EQ(host.region.left, 97);
    EXPECT_EQ(host.region.top, 97);
    EXPECT_EQ(host.region.left + host.region.width, 210 + 4);
    EXPECT_EQ(host.region.top + host.region.height, 120 + 4);
}

}  // namespace
