#include "zolcs/ccsgroup.h"

#include "support/gdi_canvas.h"
#include "support/overlay_double.h"
#include "support/test_data.h"

#include "zolcs/ccs2dtrafo.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <limits>
#include <list>
#include <memory>
#include <new>

namespace {

using zoltest::CallLog;
using zoltest::OverlayDouble;
using zoltest::RenderCall;

static_assert(sizeof(CCsGroup) == sizeof(CCsOverlay) + 2 * sizeof(void*));

/// A group that shows its fields.
class OpenGroup : public CCsGroup {
public:
    using CCsGroup::burntToImage;
    using CCsGroup::CCsGroup;
    using CCsGroup::dicomPrintFlag;
    using CCsGroup::group;
    using CCsGroup::groupPickFlag;
    using CCsGroup::head;
    using CCsGroup::movable;
    using CCsGroup::next;
    using CCsGroup::overlayId;
    using CCsGroup::previous;
    using CCsGroup::renderable;
    using CCsGroup::reserved;
    using CCsGroup::selected;
    using CCsGroup::shadow;
    using CCsGroup::stateFlag;
    using CCsGroup::tail;
    using CCsGroup::transformable;
};

OverlayDouble& add(CCsGroup& group, const std::string& name, CallLog* log = nullptr) {
    auto* const member = new OverlayDouble(name, log);
    group.append(*member);
    return *member;
}

std::string names(const CCsGroup& group) {
    std::string all;
    for (int n = 1; n <= group.getGroupSize(); ++n) {
        const auto* const member = dynamic_cast<OverlayDouble*>(group.Find(n));
        all += member != nullptr ? member->name : "?";
    }
    return all;
}

/// Living doubles after a test must be none, whatever happened.
class CCsGroupTest : public ::testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(OverlayDouble::living, 0); }

    CallLog log;
};

class CCsGroupModelTest : public CCsGroupTest {};

}  // namespace

TEST_F(CCsGroupTest, StartsEmptyWithItsDefaults) {
    const OpenGroup group;
    EXPECT_EQ(group.head, nullptr);
    EXPECT_EQ(group.tail, nullptr);
    EXPECT_EQ(group.group, nullptr);
    EXPECT_EQ(group.shadow, 1);
    EXPECT_EQ(group.groupPickFlag, 0);
    EXPECT_EQ(group.selected, 0);
    EXPECT_FALSE(group.burntToImage);
    EXPECT_EQ(group.transformable, 1);
    EXPECT_FALSE(group.dicomPrintFlag);
    EXPECT_TRUE(group.stateFlag);
    EXPECT_TRUE(group.movable);
    EXPECT_FALSE(group.isExternal());
    EXPECT_TRUE(group.renderable);
    EXPECT_EQ(group.reserved, 0);
    EXPECT_EQ(group.getGroupSize(), 0);
    EXPECT_FALSE(group.isAnyOverlayPresent());
    EXPECT_FALSE(group.isAnyOverlayNotBurnt());
    EXPECT_EQ(group.isTransformableOverlAdded(), 0);
    EXPECT_EQ(group.Find(1), nullptr);
}

TEST_F(CCsGroupTest, EmptyGroupTakesEveryCall) {
    CCsGroup group;
    RECT rect{1, 2, 3, 4};
    EXPECT_EQ(group.pick(1, 2), nullptr);
    EXPECT_EQ(group.isSelected(), nullptr);
    EXPECT_EQ(group.unselect(rect), 0);
    group.move(nullptr, 1, 2, 3, 4, nullptr);
    group.render(nullptr, nullptr, 0, nullptr, 1, 2, 3, 4, 5);
    group.renderLast(nullptr, nullptr, 0, nullptr, 1, 2, 3, 4, 5);
    group.dspToImg(nullptr);
    group.getSize(rect);
    group.size(1, 2, 3, nullptr);
    group.updateTrafo(nullptr, true);
    group.setDicomPrintFlag(true);
    group.setBurntToImage(true);
    group.setTransformable(0);
    group.resetAll();
    EXPECT_EQ(rect.left, 1);
    EXPECT_EQ(rect.bottom, 4);
    EXPECT_STREQ(group.getClassName(), L"CCsOverlay");
}

TEST_F(CCsGroupTest, AppendsBehindTheTail) {
    OpenGroup group;
    OverlayDouble& a = add(group, "a");
    EXPECT_EQ(group.head, &a);
    EXPECT_EQ(group.tail, &a);
    EXPECT_EQ(a.owner(), &group);
    OverlayDouble& b = add(group, "b");
    EXPECT_EQ(group.head, &a);
    EXPECT_EQ(group.tail, &b);
    EXPECT_EQ(a.nextLink(), &b);
    EXPECT_EQ(b.previousLink(), &a);
    EXPECT_EQ(b.nextLink(), nullptr);
    EXPECT_TRUE(group.isAnyOverlayPresent());
}

TEST_F(CCsGroupTest, FindCountsFromOne) {
    CCsGroup group;
    OverlayDouble& a = add(group, "a");
    EXPECT_EQ(group.Find(1), &a);
    EXPECT_EQ(group.Find(0), nullptr);
    EXPECT_EQ(group.Find(2), nullptr);
    EXPECT_EQ(group.Find(-1), nullptr);
    EXPECT_EQ(group.Find(std::numeric_limits<int>::min()), nullptr);
    EXPECT_EQ(group.Find(std::numeric_limits<int>::max()), nullptr);
    OverlayDouble& b = add(group, "b");
    b.setOverlayID(1);  // the position counts, not the tag
    EXPECT_EQ(group.Find(1), &a);
    EXPECT_EQ(group.Find(2), &b);
}

TEST_F(CCsGroupTest, DestructionDeletesMembersNestedOnesTooAndLeavesTheParent) {
    OpenGroup parent;
    auto* const group = new CCsGroup;
    parent.append(*group);
    add(parent, "z");
    add(*group, "a");
    add(*group, "b");
    EXPECT_EQ(OverlayDouble::living, 3);
    EXPECT_EQ(parent.getGroupSize(), 2);  // a nested group counts as one
    delete group;
    EXPECT_EQ(OverlayDouble::living, 1);
    EXPECT_EQ(names(parent), "z");
}

TEST_F(CCsGroupTest, CopyIsDeepAndTakesTheExternalFlagOnly) {
    OpenGroup source;
    add(source, "a");
    auto* const nested = new CCsGroup;
    source.append(*nested);
    add(*nested, "b");
    source.setOverlayID(5);
    source.setExternalStatus_(true);
    source.groupPickFlag = 3;
    source.selected = 1;
    source.burntToImage = true;
    source.transformable = 0;
    source.shadow = 0;
    source.stateFlag = false;
    source.renderable = false;
    source.reserved = 4;

    const std::unique_ptr<CCsOverlay> clone(source.NewInstance());
    const OpenGroup copy(source);
    EXPECT_EQ(OverlayDouble::living, 6);
    EXPECT_TRUE(copy.isExternal());
    EXPECT_TRUE(clone->isExternal());
    EXPECT_EQ(copy.overlayId, 0);
    EXPECT_EQ(copy.groupPickFlag, 0);
    EXPECT_EQ(copy.selected, 0);
    EXPECT_FALSE(copy.burntToImage);
    EXPECT_EQ(copy.transformable, 1);
    EXPECT_EQ(copy.shadow, 1);
    EXPECT_TRUE(copy.stateFlag);
    EXPECT_TRUE(copy.movable);
    EXPECT_TRUE(copy.renderable);
    EXPECT_EQ(copy.reserved, 0);
    EXPECT_EQ(copy.getGroupSize(), 2);
    EXPECT_NE(copy.Find(1), source.Find(1));
    EXPECT_EQ(names(copy), "a?");
    const auto* const copiedNested = dynamic_cast<CCsGroup*>(copy.Find(2));
    ASSERT_NE(copiedNested, nullptr);
    EXPECT_NE(copiedNested, nested);
    EXPECT_EQ(names(*copiedNested), "b");
    EXPECT_EQ(dynamic_cast<CCsGroup&>(*clone).getGroupSize(), 2);
}

TEST_F(CCsGroupTest, AssignmentIsDeliberatelyShallow) {
    OpenGroup parent;
    auto* const source = new OpenGroup;
    parent.append(*source);
    OverlayDouble& a = add(*source, "a");
    OverlayDouble& b = add(*source, "b");
    source->reserved = 6;
    source->groupPickFlag = 2;
    alignas(OpenGroup) unsigned char storage[sizeof(OpenGroup)];
    auto& copy = *new (storage) OpenGroup;  // its destructor never runs: the members are the source's
    copy = *source;
    EXPECT_EQ(copy.head, &a);
    EXPECT_EQ(copy.tail, &b);
    EXPECT_EQ(copy.group, &parent);
    EXPECT_EQ(copy.reserved, 6);
    EXPECT_EQ(copy.groupPickFlag, 2);
    EXPECT_EQ(a.owner(), source);
    EXPECT_EQ(OverlayDouble::living, 2);
}

TEST_F(CCsGroupTest, AppendAllExceptLastClonesInOrder) {
    CCsGroup source;
    for (const char* name : {"a", "b", "c"}) add(source, name);
    CCsGroup group;
    add(group, "x");
    group.appendAllExceptLast(source);
    EXPECT_EQ(names(group), "xab");
    EXPECT_EQ(names(source), "abc");
    EXPECT_NE(group.Find(2), source.Find(1));

    CCsGroup single;
    add(single, "s");
    group.appendAllExceptLast(single);
    EXPECT_EQ(names(group), "xab");

    group.appendAllExceptLast(group);  // of what was there before
    EXPECT_EQ(names(group), "xabxa");
}

TEST_F(CCsGroupTest, CopyGroupReplacesWhatIsNotKept) {
    OpenGroup source;
    add(source, "a");
    add(source, "b");
    source.groupPickFlag = 7;
    source.setExternalStatus_(true);
    source.groupPickFlag = 7;
    OpenGroup group;
    add(group, "x");
    add(group, "k").setBurntToImage_(true);
    group.copyGroup(source);
    EXPECT_EQ(names(group), "kab");
    EXPECT_EQ(group.groupPickFlag, 7);
    EXPECT_TRUE(group.isExternal());
    EXPECT_TRUE(group.movable);  // only those two flags are taken over
    EXPECT_EQ(names(source), "ab");
}

TEST_F(CCsGroupTest, CopyGroupOfItselfEnds) {
    CCsGroup group;
    add(group, "x");
    add(group, "k").setBurntToImage_(true);
    group.copyGroup(group);
    EXPECT_EQ(names(group), "kk");
}

TEST_F(CCsGroupTest, ResetAllKeepsBurntAndExternalMembers) {
    OpenGroup group;
    OverlayDouble& a = add(group, "A");
    add(group, "B");
    OverlayDouble& c = add(group, "C");
    add(group, "D");
    a.setBurntToImage_(true);
    c.setExternalStatus_(true);
    group.groupPickFlag = 1;
    group.resetAll();
    EXPECT_EQ(names(group), "AC");
    EXPECT_EQ(OverlayDouble::living, 2);
    EXPECT_EQ(group.groupPickFlag, 0);
    EXPECT_EQ(group.head, &a);
    EXPECT_EQ(group.tail, &c);
    EXPECT_EQ(a.previousLink(), nullptr);
    EXPECT_EQ(a.nextLink(), &c);
    EXPECT_EQ(c.previousLink(), &a);
    EXPECT_EQ(c.nextLink(), nullptr);
    EXPECT_EQ(c.owner(), &group);
    a.setBurntToImage_(false);
    c.setExternalStatus_(false);
    group.resetAll();
    EXPECT_EQ(group.head, nullptr);
    EXPECT_EQ(group.tail, nullptr);
}

TEST_F(CCsGroupTest, ResetAllOfAnAssignedGroupTakesTheKeptMembers) {
    alignas(OpenGroup) unsigned char storage[sizeof(OpenGroup)];
    auto& source = *new (storage) OpenGroup;  // gives its members up and is never destroyed
    add(source, "a");
    add(source, "k").setBurntToImage_(true);
    add(source, "b");
    OpenGroup copy;
    copy = source;
    copy.resetAll();
    EXPECT_EQ(names(copy), "k");
    EXPECT_EQ(dynamic_cast<OverlayDouble*>(copy.head)->owner(), &copy);
}

TEST_F(CCsGroupTest, PicksTheMemberNearestTheHead) {
    CCsGroup group;
    OverlayDouble& a = add(group, "a", &log);
    OverlayDouble& b = add(group, "b", &log);
    OverlayDouble& c = add(group, "c", &log);
    EXPECT_EQ(group.pick(3, -4), nullptr);
    EXPECT_EQ(log, (CallLog{"a.pick 3 -4", "b.pick 3 -4", "c.pick 3 -4"}));
    b.hit = c.hit = true;
    log.clear();
    EXPECT_EQ(group.pick(1, 2), &b);
    EXPECT_EQ(log, (CallLog{"a.pick 1 2", "b.pick 1 2"}));
    a.hit = true;
    EXPECT_EQ(group.pick(1, 2), &a);
    group.setGroupPickFlag(1);
    EXPECT_EQ(group.pick(1, 2), &group);
    a.hit = b.hit = c.hit = false;
    EXPECT_EQ(group.pick(1, 2), nullptr);
}

TEST_F(CCsGroupTest, PickGivesWhatANestedGroupGives) {
    CCsGroup outer;
    auto* const inner = new CCsGroup;
    outer.append(*inner);
    OverlayDouble& member = add(*inner, "m");
    member.hit = true;
    EXPECT_EQ(outer.pick(0, 0), &member);
    inner->setGroupPickFlag(-1);
    EXPECT_EQ(outer.pick(0, 0), inner);
    outer.setGroupPickFlag(2);
    EXPECT_EQ(outer.pick(0, 0), &outer);
}

TEST_F(CCsGroupTest, SelectionIsOfTheFirstSelectedMember) {
    OpenGroup group;
    add(group, "a", &log);
    OverlayDouble& b = add(group, "b", &log);
    OverlayDouble& c = add(group, "c", &log);
    RECT rect{1, 2, 3, 4};
    EXPECT_EQ(group.isSelected(), nullptr);
    group.select(rect);  // the group's own field, which isSelected does not look at
    EXPECT_EQ(group.selected, 1);
    EXPECT_EQ(group.isSelected(), nullptr);
    EXPECT_EQ(group.unselect(rect), 0);
    EXPECT_EQ(group.selected, 1);
    EXPECT_EQ(rect.left, 1);

    b.select(rect);
    c.select(rect);
    EXPECT_EQ(group.isSelected(), &b);
    EXPECT_EQ(group.unselect(rect), 1);  // one member a call
    EXPECT_EQ(rect.left, 77);
    EXPECT_EQ(group.isSelected(), &c);
    EXPECT_EQ(group.unselect(rect), 1);
    EXPECT_EQ(group.unselect(rect), 0);
    EXPECT_EQ(log, (CallLog{"b.unselect", "c.unselect"}));
}

TEST_F(CCsGroupTest, SelectedGivesTheNestedGroupNotItsMember) {
    CCsGroup outer;
    auto* const inner = new CCsGroup;
    outer.append(*inner);
    RECT rect{};
    OverlayDouble& member = add(*inner, "m");
    member.select(rect);
    EXPECT_EQ(outer.isSelected(), inner);
    EXPECT_EQ(outer.unselect(rect), 1);
    EXPECT_EQ(outer.isSelected(), nullptr);
    EXPECT_EQ(member.isSelected(), nullptr);
}

TEST_F(CCsGroupTest, ForwardsHeadToTail) {
    CCsGroup group;
    OverlayDouble& a = add(group, "a", &log);
    OverlayDouble& b = add(group, "b", &log);
    CCs2dTrafo image;
    CCs2dTrafo output;
    const std::array<int, 3> marker{};
    // Never used as a device context: only handed on.
    auto* const dc = reinterpret_cast<HDC>(const_cast<int*>(marker.data()));

    group.render(&image, &output, 0x112233, dc, 4, 5, 6, 7, 8);
    const RenderCall call{&image, &output, 0x112233, dc, 4, 5, 6, 7, 8};
    EXPECT_EQ(a.renders, (std::vector{call}));
    EXPECT_EQ(b.renders, (std::vector{call}));

    group.dspToImg(&image);
    EXPECT_EQ(a.lastTrafo, &image);
    EXPECT_EQ(b.lastTrafo, &image);
    RECT rect{};
    group.getSize(rect);
    EXPECT_EQ(rect.right, 2);
    group.size(9, -8, 7, &output);
    EXPECT_EQ(b.lastTrafo, &output);
    group.updateTrafo(&image, true);
    EXPECT_EQ(a.lastTrafo, &image);
    group.updateTrafo(&output, false);
    EXPECT_EQ(a.lastTrafo, &output);
    group.setDicomPrintFlag(true);
    EXPECT_EQ(log, (CallLog{"a.render", "b.render", "a.dspToImg", "b.dspToImg", "a.getSize", "b.getSize",
                            "a.size 9 -8 7", "b.size 9 -8 7", "a.updateTrafo 1", "b.updateTrafo 1", "a.updateTrafo 0",
                            "b.updateTrafo 0", "a.print flag 1", "b.print flag 1"}));
}

TEST_F(CCsGroupTest, ItsOwnFlagsDoNotCountForItsMembers) {
    OpenGroup group;
    OverlayDouble& a = add(group, "a", &log);
    group.setRenderFlag(false);
    group.setTransformable_(0);
    group.render(nullptr, nullptr, 0, nullptr, 1, 2, 3, 4, 5);
    group.renderLast(nullptr, nullptr, 0, nullptr, 1, 2, 3, 4, 5);
    EXPECT_EQ(a.renders.size(), 2U);
    EXPECT_EQ(group.isTransformableOverlAdded(), 1);
    group.setDicomPrintFlag(true);
    EXPECT_FALSE(group.dicomPrintFlag);
    EXPECT_EQ(log, (CallLog{"a.render", "a.render", "a.isTransformable", "a.print flag 1"}));
}

TEST_F(CCsGroupTest, MovesMembersOnlyWhileItIsMovable) {
    CCsGroup group;
    OverlayDouble& a = add(group, "a", &log);
    a.setMoveStatus_(false);  // the member itself decides about its own flag
    CCs2dTrafo trafo;
    CCsRegion region;
    group.move(&trafo, 1, 2, 30, 40, &region);
    EXPECT_EQ(log, (CallLog{"a.move 1 2 30 40"}));
    EXPECT_EQ(a.lastTrafo, &trafo);
    EXPECT_EQ(region.left, 30);
    group.setMoveStatus_(false);
    group.move(&trafo, 5, 6, 7, 8, &region);
    EXPECT_EQ(log.size(), 1U);
}

TEST_F(CCsGroupTest, RenderLastDrawsTheTailAlone) {
    CCsGroup group;
    add(group, "a", &log);
    OverlayDouble& b = add(group, "b", &log);
    CCs2dTrafo image;
    CCs2dTrafo output;
    group.renderLast(&image, &output, 1, nullptr, 2, 3, 4, 5, 6);
    EXPECT_EQ(log, (CallLog{"b.render"}));
    EXPECT_EQ(b.renders, (std::vector{RenderCall{&image, &output, 1, nullptr, 2, 3, 4, 5, 6}}));
}

TEST_F(CCsGroupTest, FontRenderDrawsNothing) {
    CCsGroup group;
    add(group, "a", &log);
    group.render(nullptr, nullptr, 0, nullptr, CCsImageTextFont::Large, 1, 2, 3, 4, 5);
    group.renderEllipse(nullptr, nullptr, 0, nullptr, 1, 2, 3, 4, 5, true, true);
    EXPECT_TRUE(log.empty());
}

TEST_F(CCsGroupTest, FlagsOfDirectMembersOnly) {
    CCsGroup group;
    OverlayDouble& a = add(group, "a", &log);
    auto* const nested = new OpenGroup;
    group.append(*nested);
    OverlayDouble& inner = add(*nested, "i", &log);

    EXPECT_TRUE(group.isAnyOverlayNotBurnt());
    group.setBurntToImage(true);
    EXPECT_TRUE(a.isBurnt());
    EXPECT_TRUE(nested->burntToImage);
    EXPECT_FALSE(inner.isBurnt());
    EXPECT_FALSE(group.isAnyOverlayNotBurnt());
    EXPECT_TRUE(nested->isAnyOverlayNotBurnt());
    a.setBurntToImage_(false);
    EXPECT_TRUE(group.isAnyOverlayNotBurnt());

    EXPECT_EQ(group.isTransformableOverlAdded(), 1);
    group.setTransformable(0);
    EXPECT_EQ(a.isTransformable(), 0);
    EXPECT_EQ(nested->transformable, 0);
    EXPECT_EQ(inner.isTransformable(), 1);
    EXPECT_EQ(group.isTransformableOverlAdded(), 0);
    nested->setTransformable_(-2);
    EXPECT_EQ(group.isTransformableOverlAdded(), 1);
    group.setTransformable(12);
    EXPECT_EQ(a.isTransformable(), 12);
}

TEST_F(CCsGroupModelTest, RandomOperationsAgreeWithAPlainList) {
    zoltest::Random random(51);
    for (int run = 0; run < 60; ++run) {
        std::array<OpenGroup, 2> groups;
        std::array<std::list<OverlayDouble*>, 2> models;
        std::list<std::unique_ptr<OverlayDouble>> free;
        int made = 0;
        // Names survive cloning, so that they tell who is a copy of whom.
        const auto cloned = [&](std::list<OverlayDouble*>& model, const OpenGroup& group,
                                std::list<std::string> added) {
            int n = static_cast<int>(model.size());
            for (const std::string& name : added) {
                auto* const member = dynamic_cast<OverlayDouble*>(group.Find(++n));
                ASSERT_NE(member, nullptr);
                ASSERT_EQ(member->name, name);
                model.push_back(member);
            }
        };
        const auto namesOf = [](const std::list<OverlayDouble*>& model) {
            std::list<std::string> all;
            for (const OverlayDouble* member : model) all.push_back(member->name);
            return all;
        };
        const auto keep = [](std::list<OverlayDouble*>& model) {
            model.remove_if([](const OverlayDouble* member) { return !member->isBurnt() && !member->isExternal(); });
        };
        for (int step = 0; step < 120; ++step) {
            const auto which = static_cast<std::size_t>(random.integer(0, 1));
            OpenGroup& group = groups.at(which);
            OpenGroup& other = groups.at(1 - which);
            std::list<OverlayDouble*>& model = models.at(which);
            std::list<OverlayDouble*>& otherModel = models.at(1 - which);
            const auto any = [&] {
                return std::next(model.begin(), random.integer(0, static_cast<int>(model.size()) - 1));
            };
            switch (random.integer(0, 9)) {
                case 0:
                case 1:
                case 2: {
                    auto member = std::make_unique<OverlayDouble>(std::to_string(made++) + ' ');
                    member->setBurntToImage_(random.chance(0.3));
                    member->setExternalStatus_(random.chance(0.2));
                    group.append(*member);
                    model.push_back(member.release());
                    break;
                }
                case 3:
                    if (!model.empty()) {
                        const auto it = any();
                        delete *it;
                        model.erase(it);
                    }
                    break;
                case 4:
                    if (!model.empty()) {
                        const auto it = any();
                        (*it)->unchain();
                        free.emplace_back(*it);
                        model.erase(it);
                    }
                    break;
                case 5:
                    if (!free.empty()) {
                        model.push_back(free.front().release());
                        free.pop_front();
                        group.append(*model.back());
                    }
                    break;
                case 6:
                    keep(model);  // before its members are deleted
                    group.resetAll();
                    break;
                case 7:
                    if (model.size() + otherModel.size() < 40) {
                        keep(model);
                        group.copyGroup(other);
                        cloned(model, group, namesOf(otherModel));
                    }
                    break;
                case 8:
                    if (!otherModel.empty() && model.size() + otherModel.size() < 40) {
                        group.appendAllExceptLast(other);
                        std::list<std::string> added = namesOf(otherModel);
                        added.pop_back();
                        cloned(model, group, added);
                    }
                    break;
                default: {
                    const CCsGroup copy(group);
                    ASSERT_EQ(names(copy), names(group));
                    break;
                }
            }
            std::size_t total = free.size();
            for (std::size_t g = 0; g < groups.size(); ++g) {
                ASSERT_EQ(groups.at(g).getGroupSize(), static_cast<int>(models.at(g).size()));
                int n = 0;
                CCsOverlay* before = nullptr;
                for (OverlayDouble* member : models.at(g)) {
                    ASSERT_EQ(groups.at(g).Find(++n), member);
                    ASSERT_EQ(member->previousLink(), before);
                    ASSERT_EQ(member->owner(), &groups.at(g));
                    before = member;
                }
                ASSERT_EQ(groups.at(g).tail, before);
                ASSERT_EQ(groups.at(g).Find(n + 1), nullptr);
                total += models.at(g).size();
                const bool anyNotBurnt = std::any_of(models.at(g).begin(), models.at(g).end(),
                                                     [](const OverlayDouble* member) { return !member->isBurnt(); });
                ASSERT_EQ(groups.at(g).isAnyOverlayNotBurnt(), anyNotBurnt);
            }
            ASSERT_EQ(OverlayDouble::living, static_cast<int>(total));
        }
    }
}

TEST(CCsBoxTest, IsHitInAHalfOpenSquare) {
    EXPECT_EQ(CCsBox::pick(10, 10, 3, 16), 1);
    EXPECT_EQ(CCsBox::pick(10, 10, 17, 10), 0);
    EXPECT_EQ(CCsBox::pick(10, 10, 2, 10), 0);
    for (int x = -12; x <= 12; ++x) {
        for (int y = -12; y <= 12; ++y) {
            const bool inside = x >= -7 && x < 7 && y >= -7 && y < 7;
            ASSERT_EQ(CCsBox::pick(100, -50, 100 + x, -50 + y), inside ? 1 : 0) << x << ' ' << y;
        }
    }
}

TEST(CCsBoxTest, PicksAtTheEndsOfTheRange) {
    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    EXPECT_EQ(CCsBox::pick(lowest, highest, lowest, highest), 1);
    EXPECT_EQ(CCsBox::pick(lowest, highest, lowest + 6, highest - 7), 1);
    EXPECT_EQ(CCsBox::pick(lowest, lowest, highest, highest), 0);
    EXPECT_EQ(CCsBox::pick(highest, highest, lowest, lowest), 0);
}

TEST(CCsBoxTest, PaintsFiveByFivePixelsWithTheSelectedBrush) {
    const unsigned int objects = zoltest::gdiObjectCount();
    {
        zoltest::Canvas canvas(12, 12);
        HBRUSH brush = CreateSolidBrush(RGB(10, 20, 30));
        HGDIOBJ before = SelectObject(canvas.dc(), brush);
        CCsBox::render(6, 5, canvas.dc());
        CCsBox::render(0, 11, canvas.dc());
        SelectObject(canvas.dc(), before);
        DeleteObject(brush);
        for (int y = 0; y < 12; ++y) {
            for (int x = 0; x < 12; ++x) {
                const bool first = x >= 3 && x < 8 && y >= 2 && y < 7;
                const bool second = x < 2 && y >= 8;
                ASSERT_EQ(canvas.pixel(x, y), first || second ? 0x0A141EU : 0xCDCDCDCDU) << x << ' ' << y;
            }
        }
    }
    EXPECT_EQ(zoltest::gdiObjectCount(), objects);
}

TEST(CCsBoxTest, PaintsNothingFarAwayOrWithoutADeviceContext) {
    const unsigned int objects = zoltest::gdiObjectCount();
    {
        const zoltest::Canvas canvas(2, 2);
        constexpr int lowest = std::numeric_limits<int>::min();
        constexpr int highest = std::numeric_limits<int>::max();
        for (const int x : {lowest, lowest + 2, highest, highest - 1}) {
            CCsBox::render(x, 0, canvas.dc());
            CCsBox::render(0, x, canvas.dc());
        }
        CCsBox::render(0, 0, nullptr);
        EXPECT_EQ(canvas.pixel(0, 0), 0xCDCDCDCDU);
    }
    EXPECT_EQ(zoltest::gdiObjectCount(), objects);
}
