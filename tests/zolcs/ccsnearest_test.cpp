#include "zolcs/ccsnearest.h"

#include "reference/guarded_image.h"
#include "reference/nearest_reference.h"
#include "reference/random_views.h"
#include "support/display_rules.h"
#include "support/report_capture.h"
#include "support/test_data.h"
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/resample/spanoperations.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using zolcs::SpanOperations;
using zoltest::errorReport;
using zoltest::GuardedImage;
using zoltest::GuardedRaster;
using zoltest::ReportCapture;
using zoltest::RuleChoice;
using zoltest::RuledRaster;
using zoltest::TableMap;

static_assert(std::is_polymorphic_v<CCsNearest>);
static_assert(sizeof(CCsNearest) == sizeof(void*) + 12 * sizeof(std::int32_t));

constexpr const wchar_t* module = L"source\\zolcs\\ccsnearest";

/// One member with arguments: which types it takes, how it is called, and what it must draw.
struct Member {
    std::wstring name;
    int sourceType;
    int destinationType;
    bool returnsInt;
    bool eitherTypeWillDo;  ///< one of the two types is enough, as long as the pixels have the right sizes
    bool sourceMustBeRaster;
    bool hasTable;
    std::function<int(CCsNearest&, CCsRaster&, CCsImage&, CCs2dTrafo&)> call;
    std::function<int(CCsNearest&, CCsRaster&, CCsImage&, CCs2dTrafo&)> callWithoutTable;
    std::function<void(const double*, const zolref::Pixels&, const zolref::Pixels&)> draw;
    int typeLine;
    int sourceLine;
    int destinationLine;
    int exceptionLine;
    int tableLine;
};

template <std::size_t Size>
std::array<unsigned char, Size> tableOf(unsigned factor) {
    std::array<unsigned char, Size> table{};
    for (std::size_t i = 0; i < Size; ++i) table[i] = static_cast<unsigned char>(i * factor + factor);
    return table;
}

struct Tables {
    std::array<unsigned char, 256> a = tableOf<256>(7);
    std::array<unsigned char, 256> b = tableOf<256>(13);
    std::array<unsigned char, 256> c = tableOf<256>(29);
    std::array<unsigned char, 4096> deep = tableOf<4096>(11);
    TableMap map;
    std::vector<std::uint32_t> greyTable;

    Tables() : greyTable(0x10000) {
        for (std::size_t i = 0; i < greyTable.size(); ++i) greyTable[i] = map.entry(i);
    }
};

Tables& tables() {
    static Tables all;
    return all;
}

zolref::GreyView plainGreyView(bool twelveBit) {
    zolref::GreyView view;
    view.twelveBit = twelveBit;
    view.table = tables().greyTable.data();
    view.background = 0xA5;
    return view;
}

int nothing() { return 255; }

std::vector<Member> members() {
    Tables& t = tables();
    std::vector<Member> list;
    const auto copy = [](std::uint64_t background) {
        return [background](const double* m, const zolref::Pixels& src, const zolref::Pixels& dst) {
            zolref::nearestCopy(m, src, dst, background);
        };
    };
    list.push_back({L"nearestGrey12Grey12", CCS_GREY12, CCS_GREY12, true, false, true, false,
                    [](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& v) {
                        return n.nearestGrey12Grey12(s, d, v, 0xBEEF, true);
                    },
                    nullptr, copy(0xBEEF), 212, 241, 244, 305, 0});
    for (const int type : {CCS_GREY12, CCS_GREY16}) {
        list.push_back({L"nearestGrey12IndexMap", type, CCS_RGB8, false, true, true, false,
                        [&t](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& v) {
                            n.nearestGrey12IndexMap(s, d, v, &t.map, nullptr, 0xA5);
                            return nothing();
                        },
                        nullptr,
                        [type](const double* m, const zolref::Pixels& src, const zolref::Pixels& dst) {
                            zolref::nearestGrey(m, src, dst, plainGreyView(type == CCS_GREY12));
                        },
                        937, 1058, 1061, 1290, 0});
    }
    list.push_back({L"nearestGrey8Grey8", CCS_GREY8, CCS_GREY8, false, true, false, false,
                    [](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& v) {
                        n.nearestGrey8Grey8(s, d, v, 0xA5);
                        return nothing();
                    },
                    nullptr, copy(0xA5), 331, 352, 355, 398, 0});
    list.push_back({L"nearestGrey8IndexMap", CCS_GREY8, CCS_INDEX8, false, true, false, true,
                    [&t](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& v) {
                        n.nearestGrey8IndexMap(s, d, v, t.a.data(), 0xA5);
                        return nothing();
                    },
                    [](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& v) {
                        n.nearestGrey8IndexMap(s, d, v, nullptr, 0xA5);
                        return nothing();
                    },
                    [&t](const double* m, const zolref::Pixels& src, const zolref::Pixels& dst) {
                        zolref::nearestGrey8Table(m, src, dst, t.a.data(), 0xA5);
                    },
                    421, 443, 446, 492, 430});
    list.push_back({L"nearestIndexIndex", CCS_INDEX8, CCS_INDEX8, false, false, false, false,
                    [](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& v) {
                        n.nearestIndexIndex(s, d, v, 0x5A);
                        return nothing();
                    },
                    nullptr, copy(0x5A), 515, 536, 539, 581, 0});
    list.push_back({L"nearestRgb12Rgb12", CCS_RGB12, CCS_RGB12, false, true, false, false,
                    [](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& v) {
                        n.nearestRgb12Rgb12(s, d, v, 0x0123456789ABCDEFULL);
                        return nothing();
                    },
                    nullptr, copy(0x0123456789ABCDEFULL), 604, 625, 628, 668, 0});
    list.push_back({L"nearestRgb12Rgb8Map", CCS_RGB12, CCS_RGB8, false, true, false, true,
                    [&t](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& v) {
                        n.nearestRgb12Rgb8Map(s, d, v, t.deep.data(), 0x89ABCDEFUL);
                        return nothing();
                    },
                    [](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& v) {
                        n.nearestRgb12Rgb8Map(s, d, v, nullptr, 0);
                        return nothing();
                    },
                    [&t](const double* m, const zolref::Pixels& src, const zolref::Pixels& dst) {
                        zolref::nearestRgb12Table(m, src, dst, t.deep.data(), 0x89ABCDEF);
                    },
                    691, 713, 716, 764, 700});
    list.push_back({L"nearestRgb8Rgb24Save", CCS_RGB8, CCS_RGB24, false, false, false, false,
                    [](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& v) {
                        n.nearestRgb8Rgb24Save(s, d, v, 0xC3);
                        return nothing();
                    },
                    nullptr,
                    [](const double* m, const zolref::Pixels& src, const zolref::Pixels& dst) {
                        zolref::nearestRgb24Save(m, src, dst, 0xC3);
                    },
                    787, 808, 811, 859, 0});
    list.push_back({L"nearestRgb8Rgb8", CCS_RGB8, CCS_RGB8, true, false, false, false,
                    [](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& v) {
                        return n.nearestRgb8Rgb8(s, d, v, 0x89ABCDEFUL);
                    },
                    nullptr, copy(0x89ABCDEF), 1313, 1334, 1337, 1379, 0});
    list.push_back({L"nearestRgb8Rgb8Map", CCS_RGB8, CCS_RGB8, false, false, false, true,
                    [&t](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& v) {
                        n.nearestRgb8Rgb8Map(s, d, v, t.a.data(), 0x89ABCDEFUL);
                        return nothing();
                    },
                    [](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& v) {
                        n.nearestRgb8Rgb8Map(s, d, v, nullptr, 0);
                        return nothing();
                    },
                    [&t](const double* m, const zolref::Pixels& src, const zolref::Pixels& dst) {
                        zolref::nearestRgb8Tables(m, src, dst, t.a.data(), t.a.data(), t.a.data(), 0x89ABCDEF);
                    },
                    1402, 1424, 1427, 1475, 1411});
    list.push_back({L"nearestRgb8Rgb8MapSeperate", CCS_RGB8, CCS_RGB8, false, false, false, true,
                    [&t](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& v) {
                        n.nearestRgb8Rgb8MapSeperate(s, d, v, t.a.data(), t.b.data(), t.c.data(), 0x11, 0x22, 0x33);
                        return nothing();
                    },
                    [&t](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& v) {
                        n.nearestRgb8Rgb8MapSeperate(s, d, v, t.a.data(), t.b.data(), nullptr, 0x11, 0x22, 0x33);
                        return nothing();
                    },
                    [&t](const double* m, const zolref::Pixels& src, const zolref::Pixels& dst) {
                        // Blue is byte 0: its table is the third one.
                        zolref::nearestRgb8Tables(m, src, dst, t.c.data(), t.b.data(), t.a.data(), 0x112233);
                    },
                    1498, 1521, 1524, 1580, 1507});
    return list;
}

template <typename Image>
zolref::Pixels pixelsOf(Image& image) {
    return {image.memory.pixels(), image.getWidth(), image.getHeight(), image.getPitch(),
            zoltest::bytesOfType(image.getType())};
}

/// Runs a body with the plain loop, the portable operations and every variant of the processor.
template <typename Body>
void forEachVariant(Body&& body) {
    for (const std::string& variant : SpanOperations::variants()) {
        SCOPED_TRACE(variant);
        ASSERT_TRUE(SpanOperations::choose(variant));
        body();
        if (::testing::Test::HasFatalFailure()) break;
    }
    SpanOperations::choose("");
}

class CCsNearestTest : public ::testing::Test {
protected:
    ~CCsNearestTest() override { SpanOperations::choose(""); }

    /// Reports of this module; singular views make the transformation report, too.
    static std::vector<zoltest::Report> ownReports() {
        std::vector<zoltest::Report> all = ReportCapture::take();
        std::erase_if(all, [](const zoltest::Report& report) { return report.file != module; });
        return all;
    }

    ReportCapture reports_;
    CCsNearest nearest_;
};

TEST_F(CCsNearestTest, EveryFieldIsMinusOneAfterConstruction) {
    const CCsNearest fresh;
    std::array<std::int32_t, 12> fields{};
    std::memcpy(fields.data(), reinterpret_cast<const unsigned char*>(&fresh) + sizeof(void*), sizeof fields);
    for (const std::int32_t field : fields) EXPECT_EQ(field, -1);
}

std::array<std::int32_t, 12> fieldsOf(const CCsNearest& nearest) {
    std::array<std::int32_t, 12> fields{};
    std::memcpy(fields.data(), reinterpret_cast<const unsigned char*>(&nearest) + sizeof(void*), sizeof fields);
    return fields;
}

TEST_F(CCsNearestTest, TheFieldsHoldThePreparedCallAndAreCopied) {
    GuardedRaster src(10, 20, CCS_GREY12, 13, 1.0);
    GuardedImage dst(40, 40, CCS_GREY12, 47, 1.0);
    CCs2dTrafo trafo;
    trafo.setDspPanFactor(0.25, -0.5);
    EXPECT_EQ(nearest_.nearestGrey12Grey12(src, dst, trafo, 0, false), 255);
    // Two display pixels per source pixel; the image's centre (5, 10) lies at (20 + 10, 20 - 20).
    const std::array<std::int32_t, 12> expected{32768,      0,          0,  32768, -10 * 65536, 10 * 65536,
                                                10 * 65536, 20 * 65536, 13, 40,    40,          47};
    EXPECT_EQ(fieldsOf(nearest_), expected);
    const CCsNearest copy(nearest_);
    EXPECT_EQ(fieldsOf(copy), expected);
    CCsNearest assigned;
    assigned = copy;
    EXPECT_EQ(fieldsOf(assigned), expected);
}

TEST_F(CCsNearestTest, FieldsSaturateWhereThirtyTwoBitsAreTooFew) {
    GuardedRaster src(40000, 1, CCS_GREY12, 40000, 1.0);
    GuardedImage dst(4, 4, CCS_GREY12, 4, 1.0);
    CCs2dTrafo trafo;
    trafo.scale(0.2);
    trafo.setDspPanFactor(1e6, -1e6);
    EXPECT_EQ(nearest_.nearestGrey12Grey12(src, dst, trafo, 0, false), 255);
    const auto fields = fieldsOf(nearest_);
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(fields[0], most);
    EXPECT_EQ(fields[3], most);
    EXPECT_EQ(fields[4], least);
    EXPECT_EQ(fields[5], most);
    EXPECT_EQ(fields[6], most);
    EXPECT_EQ(fields[7], 65536);
}

TEST_F(CCsNearestTest, ACallSetsTheTransformationsSizes) {
    GuardedRaster src(10, 20, CCS_GREY12, 10, 2.0);
    GuardedImage dst(40, 30, CCS_GREY12, 40, 1.0);
    CCs2dTrafo trafo;
    trafo.setSizes(1, 2, 3, 4, 1.0, 1.0, 50, 60);
    nearest_.nearestGrey12Grey12(src, dst, trafo, 0, false);
    EXPECT_EQ(trafo.getSrcSize().cx, 10);
    EXPECT_EQ(trafo.getSrcSize().cy, 20);
    EXPECT_EQ(trafo.getDstSize().cx, 40);
    EXPECT_EQ(trafo.getDstSize().cy, 30);
    CCs2dTrafo same;
    same.setSizes(src, dst);
    double a[6];
    double b[6];
    trafo.getImgToDsp(a[0], a[1], a[2], a[3], a[4], a[5]);
    same.getImgToDsp(b[0], b[1], b[2], b[3], b[4], b[5]);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(a[i], b[i]);  // the offsets (50, 60) are gone
}

TEST_F(CCsNearestTest, AnIdentityViewCopiesExactly) {
    forEachVariant([&] {
        GuardedImage src(4, 4, CCS_GREY8, 5, 1.0);
        GuardedImage dst(4, 4, CCS_GREY8, 7, 1.0);
        for (int i = 0; i < 20; ++i) src.memory.pixels()[i] = static_cast<unsigned char>(i + 1);
        CCs2dTrafo trafo;
        nearest_.nearestGrey8Grey8(src, dst, trafo, 99);
        for (int y = 0; y < 4; ++y) {
            for (int x = 0; x < 4; ++x) {
                ASSERT_EQ(dst.memory.pixels()[y * 7 + x], src.memory.pixels()[y * 5 + x]);
            }
        }
    });
}

TEST_F(CCsNearestTest, ASmallSourceAtScaleOneLeavesBackgroundAroundIt) {
    GuardedImage src(4, 2, CCS_GREY8, 4, 1.0);
    for (int i = 0; i < 8; ++i) src.memory.pixels()[i] = static_cast<unsigned char>(i + 1);
    GuardedImage dst(8, 4, CCS_GREY8, 8, 1.0);
    CCs2dTrafo trafo;
    trafo.setSizes(src, dst);
    trafo.setDspScaleFactor(1.0);
    nearest_.nearestGrey8Grey8(src, dst, trafo, 99);
    const std::vector<int> expected{99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 1,  2,  3,  4,  99, 99,
                                    99, 99, 5,  6,  7,  8,  99, 99, 99, 99, 99, 99, 99, 99, 99, 99};
    EXPECT_EQ(std::vector<int>(dst.memory.pixels(), dst.memory.pixels() + 32), expected);
}

TEST_F(CCsNearestTest, EveryMemberDrawsWhatItsRulesSay) {
    const std::vector<Member> all = members();
    zoltest::Random random(41);
    int compared = 0;
    for (int i = 0; i < 2600; ++i) {
        const Member& member = all[static_cast<std::size_t>(i) % all.size()];
        const int largest = random.chance(0.1) ? 300 : 45;
        const auto size = [&] { return random.integer(1, largest); };
        const int srcWidth = size();
        const int dstWidth = size();
        const double ratio = random.chance(0.7) ? 1.0 : random.real(0.3, 3.0);
        GuardedRaster src(srcWidth, size(), member.sourceType, srcWidth + random.integer(0, 5), ratio);
        GuardedImage dst(dstWidth, size(), member.destinationType, dstWidth + random.integer(0, 5), 1.0);
        src.memory.randomise(random);
        dst.memory.randomise(random);
        const std::vector<unsigned char> before = dst.memory.all();
        const CCs2dTrafo view = zoltest::anyView(random, src, dst);
        const zoltest::Matrix matrix = zoltest::toImageOf(view, src, dst);

        const bool comparable = zoltest::withinReach(matrix);
        if (comparable) member.draw(matrix.m, pixelsOf(src), pixelsOf(dst));
        const std::vector<unsigned char> expected = dst.memory.all();
        const std::vector<unsigned char> source = src.memory.all();
        forEachVariant([&] {
            dst.memory.all() = before;
            CCs2dTrafo trafo(view);
            ASSERT_EQ(member.call(nearest_, src, dst, trafo), 255);
            if (comparable) {
                ++compared;
                ASSERT_TRUE(dst.memory.all() == expected)
                    << zoltest::narrow(member.name) << " case " << i << ' ' << src.getWidth() << 'x' << src.getHeight()
                    << " to " << dst.getWidth() << 'x' << dst.getHeight() << ' ' << zoltest::textOf(matrix) << " seed "
                    << random.seed();
            } else {
                const auto guard = static_cast<std::ptrdiff_t>(dst.memory.guard());
                ASSERT_TRUE(std::equal(before.begin(), before.begin() + guard, dst.memory.all().begin()));
                ASSERT_TRUE(std::equal(before.end() - guard, before.end(), dst.memory.all().end() - guard));
            }
            ASSERT_TRUE(src.memory.all() == source);
        });
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(compared, 5000);
    EXPECT_TRUE(ownReports().empty());
}

TEST_F(CCsNearestTest, OverlaysGoBeforeShuttersAndShuttersBeforePadding) {
    zoltest::Random random(42);
    using Kind = bool RuleChoice::*;
    const std::vector<std::vector<Kind>> shutters{{},
                                                  {&RuleChoice::bitmapShutter},
                                                  {&RuleChoice::rectangle},
                                                  {&RuleChoice::circle},
                                                  {&RuleChoice::polygon},
                                                  {&RuleChoice::rectangle, &RuleChoice::circle, &RuleChoice::polygon},
                                                  {&RuleChoice::rectangle, &RuleChoice::bitmapShutter}};
    int overlaysOverShutters = 0;
    for (int combination = 0; combination < 16; ++combination) {
        for (const std::vector<Kind>& kinds : shutters) {
            if (((combination & 2) != 0) == kinds.empty()) continue;
            for (int repeat = 0; repeat < 6; ++repeat) {
                RuleChoice choice;
                choice.planes = (combination & 1) != 0;
                for (const Kind kind : kinds) choice.*kind = true;
                choice.embedded = (combination & 4) != 0;
                choice.padding = (combination & 8) != 0;
                const int type = random.chance(0.7) ? CCS_GREY12 : CCS_GREY16;
                const bool large = repeat == 0;
                RuledRaster source = zoltest::makeRuledRaster(random, random.integer(1, large ? 400 : 50),
                                                              random.integer(1, large ? 90 : 50), type,
                                                              random.chance(0.7) ? 1.0 : 1.7, choice);
                CCsRaster& src = *source.raster;
                auto* stored = reinterpret_cast<std::uint16_t*>(src.getOrigin());
                for (int k = 0; k < src.getPitch() * src.getHeight(); ++k) {
                    stored[k] = static_cast<std::uint16_t>(random.bits() & (random.chance(0.5) ? 0xFFFU : 0xFFFFU));
                }
                const int dstWidth = random.integer(1, large ? 300 : 60);
                GuardedImage dst(dstWidth, random.integer(1, 60), CCS_RGB8, dstWidth + random.integer(0, 3), 1.0);
                const CCs2dTrafo view = zoltest::anyView(random, src, dst);
                const zoltest::Matrix matrix = zoltest::toImageOf(view, src, dst);
                if (!zoltest::withinReach(matrix)) continue;
                TableMap map;

                dst.memory.randomise(random);
                const std::vector<unsigned char> before = dst.memory.all();
                const zolref::Pixels pixels{reinterpret_cast<unsigned char*>(stored), src.getWidth(), src.getHeight(),
                                            src.getPitch(), 2};
                const zolref::Stepping st = zolref::steppingOf(matrix.m, pixels, pixelsOf(dst));
                const unsigned mask = type == CCS_GREY12 ? 0xFFFU : 0xFFFFU;
                for (int y = 0; y < dst.getHeight(); ++y) {
                    for (int x = 0; x < dst.getWidth(); ++x) {
                        std::int64_t u = 0;
                        std::int64_t v = 0;
                        std::uint32_t value = 0xA5;
                        if (zolref::sourcePosition(st, x, y, u, v)) {
                            const unsigned s = zolref::load16(zolref::pixelAt(pixels, u >> 16, v >> 16));
                            const auto other =
                                zoltest::shownInstead(src, &map, source.paddingData(), 0xA5, dst.getWidth(), u, v, s);
                            value = other.value_or(map.entry(s & mask));
                            overlaysOverShutters += choice.planes && !kinds.empty() && value >> 24U == 2 ? 1 : 0;
                        }
                        zolref::store32(zolref::pixelAt(pixelsOf(dst), x, y), value);
                    }
                }
                const std::vector<unsigned char> expected = dst.memory.all();
                forEachVariant([&] {
                    dst.memory.all() = before;
                    CCs2dTrafo trafo(view);
                    nearest_.nearestGrey12IndexMap(src, dst, trafo, &map, source.paddingData(), 0xA5);
                    ASSERT_TRUE(dst.memory.all() == expected)
                        << "combination " << combination << " repeat " << repeat << ' ' << zoltest::textOf(matrix);
                });
                if (HasFatalFailure()) return;
            }
        }
    }
    EXPECT_GT(overlaysOverShutters, 100);
    EXPECT_TRUE(ownReports().empty());
}

/// A 12-bit raster of one value, drawn 1:1 into a display of the same size.
struct SmallView {
    explicit SmallView(int size, std::uint16_t value = 100)
        : src(size, size, CCS_GREY12, 1.0, false, false), dst(size, size, CCS_RGB8, size, 1.0) {
        auto* stored = reinterpret_cast<std::uint16_t*>(src.getOrigin());
        std::fill_n(stored, src.getPitch() * size, value);
    }

    std::uint32_t draw(CCsNearest& nearest, IMap* map, unsigned char* padding, int x, int y) {
        CCs2dTrafo trafo;
        nearest.nearestGrey12IndexMap(src, dst, trafo, map, padding, 0x77);
        std::uint32_t value = 0;
        std::memcpy(&value, zolref::pixelAt(pixelsOf(dst), x, y), 4);
        return value;
    }

    CCsRaster src;
    GuardedImage dst;
};

CCs60XXOverlay planeOver(int size, unsigned char* data) {
    CCs60XXOverlay plane;
    plane.originX = 1;
    plane.originY = 1;
    plane.rows = static_cast<std::uint16_t>(size);
    plane.columns = static_cast<std::uint16_t>(size);
    plane.data = data;
    return plane;
}

TEST_F(CCsNearestTest, AnOverlayPixelInsideAShutteredAreaShowsTheOverlay) {
    SmallView view(8);
    TableMap map;
    std::vector<unsigned char> bits(8);
    bits[3] = 1 << 2;  // column 2, row 3
    view.src.add60XXOverlayInfo(planeOver(8, bits.data()));
    view.src.setRectShutter({5, 5, 6, 6});
    view.src.setPresentationShutterValue(0x8000);
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 2, 3), map.groupColours[0]);
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 3, 3), 0x808080U);
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 5, 5), map.entry(100));
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 6, 6), map.entry(100));  // right and bottom are inside
    map.enabled = false;
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 2, 3), 0x808080U);
    map.enabled = true;
    map.hasGroupColours = false;
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 2, 3), 0x808080U);
}

TEST_F(CCsNearestTest, TheFirstPlaneThatIsSetGivesTheColourOfItsPosition) {
    SmallView view(8);
    TableMap map;
    std::vector<unsigned char> set(8, 0xFF);
    std::vector<unsigned char> clear(8, 0);
    view.src.add60XXOverlayInfo(planeOver(8, clear.data()));
    view.src.add60XXOverlayInfo(planeOver(8, nullptr));  // without data: not set, but it keeps its position
    view.src.add60XXOverlayInfo(planeOver(8, set.data()));
    view.src.add60XXOverlayInfo(planeOver(8, set.data()));
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 4, 4), map.groupColours[2]);
}

TEST_F(CCsNearestTest, PlanesBeyondTheSixteenthTakeTheLastColour) {
    SmallView view(8);
    TableMap map;
    std::vector<unsigned char> set(8, 0xFF);
    std::vector<unsigned char> clear(8, 0);
    for (int i = 0; i < 19; ++i) view.src.add60XXOverlayInfo(planeOver(8, i == 18 ? set.data() : clear.data()));
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 4, 4), map.groupColours[15]);
}

TEST_F(CCsNearestTest, EmbeddedBitsShowTheirColourAndAreMaskedWhereTheyAreOff) {
    SmallView view(4, 0x5123);
    TableMap map;
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 1, 1), map.entry(0x123));
    view.src.setEmbeddedOverlayStatus(true);
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 1, 1), map.planeColours[5]);
    view.src.setRectShutter({0, 0, 0, 0});
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 1, 1), map.planeColours[5]);
    map.hasPlaneColours = false;
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 1, 1), 0U);  // the shutter
    view.src.resetImage(-1);
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 1, 1), map.entry(0x123));
}

TEST_F(CCsNearestTest, AShutteredPixelNeverShowsPadding) {
    SmallView view(8);
    TableMap map;
    std::vector<unsigned char> padding(8, 0xFF);
    view.src.setRectShutter({2, 2, 5, 5});
    view.src.setPresentationShutterValue(0xFF00);
    EXPECT_EQ(view.draw(nearest_, &map, padding.data(), 0, 0), 0xFFFFFFU);
    EXPECT_EQ(view.draw(nearest_, &map, padding.data(), 3, 3), 0x77U);
}

TEST_F(CCsNearestTest, ASetBitOfABitmapShutterHidesUnlessADisplayShutterIsOn) {
    SmallView view(8);
    TableMap map;
    std::vector<unsigned char> bits(8);
    bits[2] = 1 << 4;
    CCsBitmapShutterInfo info;
    info.tag = 1;
    info.originX = 1;
    info.originY = 1;
    info.rows = 8;
    info.columns = 8;
    info.data = bits.data();
    info.presentationValue = 0x4321;
    view.src.setBitmapShutterInfo(info);
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 4, 2), 0x434343U);
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 3, 2), map.entry(100));
    view.src.setRectShutter({0, 0, 7, 7});
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 4, 2), map.entry(100));
}

TEST_F(CCsNearestTest, ThePresentationValueIsItsHighByteInThreeChannels) {
    SmallView view(4);
    TableMap map;
    view.src.setRectShutter({10, 10, 11, 11});
    for (const auto& [value, colour] : std::vector<std::pair<unsigned short, std::uint32_t>>{
             {0, 0}, {0x00FF, 0}, {0x0100, 0x010101}, {0xFFFF, 0xFFFFFF}}) {
        view.src.setPresentationShutterValue(value);
        EXPECT_EQ(view.draw(nearest_, &map, nullptr, 1, 1), colour);
    }
}

TEST_F(CCsNearestTest, ADegenerateCircleKeepsItsCentreAndReachesAcrossTheDisplay) {
    SmallView view(16);
    TableMap map;
    view.src.setPresentationShutterValue(0xFF00);
    // The centre (12, 12) comes from the radius 0, which then becomes 15.
    view.src.setCircShutter({12, 12, 12, 12});
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 12, 12), map.entry(100));
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 0, 12), map.entry(100));
    EXPECT_EQ(view.draw(nearest_, &map, nullptr, 0, 0), 0xFFFFFFU);
}

TEST_F(CCsNearestTest, AMapThatIsNotForGreyValuesGivesATableOfZeroes) {
    SmallView view(4);
    const auto colourMap = std::unique_ptr<IMap>(MapFactory::CreateMap(MapFactory::Rgb8));
    std::vector<unsigned char> set(2, 0xFF);
    view.src.add60XXOverlayInfo(planeOver(4, set.data()));
    view.src.setEmbeddedOverlayStatus(true);
    EXPECT_EQ(view.draw(nearest_, nullptr, nullptr, 1, 1), 0U);
    if (colourMap != nullptr) {
        EXPECT_EQ(view.draw(nearest_, colourMap.get(), nullptr, 1, 1), 0U);
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST_F(CCsNearestTest, SourcesOfOnePixelAndOfVeryLongLines) {
    zoltest::Random random(43);
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{1, 1}, {32767, 1}, {32768, 1}, {40000, 2}, {1, 32768}, {2, 70000}}) {
        GuardedRaster src(width, height, CCS_GREY12, width, 1.0);
        src.memory.randomise(random);
        GuardedImage dst(70, 50, CCS_GREY12, 70, 1.0);
        for (int i = 0; i < 30; ++i) {
            CCs2dTrafo view;
            view.setSizes(src, dst);
            view.rotate(random.chance(0.5) ? 90.0 * random.integer(0, 3) : random.real(0.0, 360.0));
            if (random.chance(0.6)) view.setDspScaleFactor(random.real(0.2, 5.0));
            if (random.chance(0.5)) view.setDspPanFactor(random.real(-100.0, 100.0), random.real(-100.0, 100.0));
            const zoltest::Matrix matrix = zoltest::toImageOf(view, src, dst);
            zolref::nearestCopy(matrix.m, pixelsOf(src), pixelsOf(dst), 0xBEEF);
            const std::vector<unsigned char> expected = dst.memory.all();
            forEachVariant([&] {
                CCs2dTrafo trafo(view);
                ASSERT_EQ(nearest_.nearestGrey12Grey12(src, dst, trafo, 0xBEEF, false), 255);
                ASSERT_TRUE(dst.memory.all() == expected) << src.getWidth() << 'x' << src.getHeight();
            });
            if (HasFatalFailure()) return;
        }
    }
}

TEST_F(CCsNearestTest, TransformationsThatAreNotFiniteGiveBackgroundOnly) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const double most = std::numeric_limits<double>::max();
    for (const Member& member : members()) {
        GuardedRaster src(5, 5, member.sourceType, 5, 1.0);
        GuardedImage dst(9, 7, member.destinationType, 10, 1.0);
        GuardedImage blank(9, 7, member.destinationType, 10, 1.0);
        const double beside[6] = {1, 0, 0, 1, 1000, 1000};
        member.draw(beside, pixelsOf(src), pixelsOf(blank));
        for (const double value : {nan, inf, -inf, most, -most, 1e100, 1e-200}) {
            for (const bool pan : {false, true}) {
                if (pan && value == 1e-200) continue;
                forEachVariant([&] {
                    std::fill(dst.memory.all().begin(), dst.memory.all().end(), static_cast<unsigned char>(0));
                    CCs2dTrafo trafo;
                    if (pan) {
                        trafo.setDspPanFactor(value, 0.0);
                    } else {
                        trafo.scale(value);
                    }
                    ASSERT_EQ(member.call(nearest_, src, dst, trafo), 255);
                    // An enormous zoom is a matrix of zeroes: the one source pixel everywhere, unless it overflows.
                    if (!pan && (std::fabs(value) > 1e90)) return;
                    ASSERT_TRUE(dst.memory.all() == blank.memory.all()) << zoltest::narrow(member.name) << ' ' << value;
                });
                if (HasFatalFailure()) return;
            }
        }
    }
    EXPECT_TRUE(ownReports().empty());
}

TEST_F(CCsNearestTest, ImagesWithoutLinesAreOnlyUnlocked) {
    for (const Member& member : members()) {
        if (member.destinationType == CCS_RGB24) continue;  // has no guard line to look at
        GuardedRaster src(5, 5, member.sourceType, 5, 1.0);
        CCsRaster flat(9, 0, member.destinationType, 1.0, false, false);
        const int bytes = zoltest::bytesOfType(member.destinationType);
        const int spare = (flat.getPitch() + 1) * bytes;
        std::vector<unsigned char> before(static_cast<std::size_t>(spare), 0x5A);
        std::copy(before.begin(), before.end(), flat.getOrigin());
        CCs2dTrafo trafo;
        EXPECT_EQ(member.call(nearest_, src, flat, trafo), 255);
        EXPECT_TRUE(std::equal(before.begin(), before.end(), flat.getOrigin()));
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST_F(CCsNearestTest, SourcesWithoutPixelsGiveBackgroundOnly) {
    CCsRaster src(0, 0, CCS_GREY12, 1.0, false, false);
    GuardedImage dst(6, 3, CCS_GREY12, 6, 1.0);
    CCs2dTrafo trafo;
    EXPECT_EQ(nearest_.nearestGrey12Grey12(src, dst, trafo, 0x1234, false), 255);
    const auto* pixels = reinterpret_cast<const std::uint16_t*>(dst.memory.pixels());
    for (int i = 0; i < 18; ++i) EXPECT_EQ(pixels[i], 0x1234);
}

TEST_F(CCsNearestTest, OnlyTheStatedTypesAreTaken) {
    for (const Member& member : members()) {
        for (int sourceType = CCS_INDEX8; sourceType <= CCS_GREY16; ++sourceType) {
            for (int destinationType = CCS_INDEX8; destinationType <= CCS_GREY16; ++destinationType) {
                const bool sizes =
                    zoltest::bytesOfType(sourceType) == zoltest::bytesOfType(member.sourceType) &&
                    zoltest::bytesOfType(destinationType) == zoltest::bytesOfType(member.destinationType);
                const bool exact = sourceType == member.sourceType && destinationType == member.destinationType;
                const bool either = sourceType == member.sourceType || destinationType == member.destinationType;
                bool accepted = member.eitherTypeWillDo ? either && sizes : exact;
                if (member.name == L"nearestGrey12IndexMap") {
                    accepted = (sourceType == CCS_GREY12 || sourceType == CCS_GREY16) && destinationType == CCS_RGB8;
                }
                GuardedRaster src(5, 5, sourceType, 6, 1.0);
                GuardedImage dst(7, 4, destinationType, 8, 1.0);
                std::fill(dst.memory.all().begin(), dst.memory.all().end(), static_cast<unsigned char>(0x69));
                const std::vector<unsigned char> before = dst.memory.all();
                CCs2dTrafo trafo;
                const int result = member.call(nearest_, src, dst, trafo);
                SCOPED_TRACE(zoltest::narrow(member.name) + " " + std::to_string(sourceType) + " to " +
                             std::to_string(destinationType));
                if (accepted) {
                    EXPECT_TRUE(ReportCapture::take().empty());
                    EXPECT_NE(dst.memory.all(), before);
                    EXPECT_EQ(trafo.getSrcSize().cx, 5);
                } else {
                    EXPECT_EQ(ReportCapture::take(),
                              (std::vector{errorReport(L"Image type not supported", 0, module, member.typeLine)}));
                    EXPECT_EQ(dst.memory.all(), before);
                    EXPECT_EQ(result, member.returnsInt ? 0 : 255);
                    EXPECT_EQ(trafo.getSrcSize().cx, 1);  // the transformation is not touched
                }
            }
        }
    }
}

TEST_F(CCsNearestTest, AMissingTableIsReportedAndNothingIsWritten) {
    for (const Member& member : members()) {
        if (!member.hasTable) continue;
        GuardedRaster src(5, 5, member.sourceType, 6, 1.0);
        GuardedImage dst(7, 4, member.destinationType, 8, 1.0);
        const std::vector<unsigned char> before = dst.memory.all();
        CCs2dTrafo trafo;
        member.callWithoutTable(nearest_, src, dst, trafo);
        EXPECT_EQ(
            ReportCapture::take(),
            (std::vector{errorReport(L"look-up table is NULL in method " + member.name, 0, module, member.tableLine)}));
        EXPECT_EQ(dst.memory.all(), before);
    }
}

/// Images that tell what is done to them.
std::vector<std::string>& locks() {
    static std::vector<std::string> list;
    return list;
}

template <typename Base>
class WatchedImage : public Base {
public:
    template <typename... Arguments>
    explicit WatchedImage(std::string name, Arguments... arguments) : Base(arguments...), name_(std::move(name)) {}

    unsigned char* getOrigin() override {
        locks().push_back("lock " + name_);
        if (throws) throw 17;
        return hasMemory ? Base::getOrigin() : nullptr;
    }
    void unlock() override {
        locks().push_back("unlock " + name_);
        Base::unlock();
    }

    bool hasMemory = true;
    bool throws = false;

private:
    std::string name_;
};

TEST_F(CCsNearestTest, BothImagesAreLockedAndUnlockedSourceFirst) {
    for (const Member& member : members()) {
        WatchedImage<CCsRaster> src("src", 5, 5, member.sourceType, 1.0, false, false);
        WatchedImage<CCsRaster> dst("dst", 5, 5, member.destinationType, 1.0, false, false);
        CCs2dTrafo trafo;
        locks().clear();
        EXPECT_EQ(member.call(nearest_, src, dst, trafo), 255);
        EXPECT_EQ(locks(), (std::vector<std::string>{"lock src", "lock dst", "unlock src", "unlock dst"}));
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

TEST_F(CCsNearestTest, ImagesWithoutMemoryAreReportedAndUnlocked) {
    for (const Member& member : members()) {
        for (const bool sourceMissing : {true, false}) {
            WatchedImage<CCsRaster> src("src", 5, 5, member.sourceType, 1.0, false, false);
            WatchedImage<CCsRaster> dst("dst", 5, 5, member.destinationType, 1.0, false, false);
            src.hasMemory = !sourceMissing;
            dst.hasMemory = false;
            CCs2dTrafo trafo;
            locks().clear();
            EXPECT_EQ(member.call(nearest_, src, dst, trafo), member.returnsInt ? 0 : 255);
            EXPECT_EQ(locks(), (std::vector<std::string>{"lock src", "lock dst", "unlock src", "unlock dst"}));
            const std::wstring image = sourceMissing ? L"source" : L"dst";
            EXPECT_EQ(
                ReportCapture::take(),
                (std::vector{errorReport(L"get origin for " + image + L" raster returned NULL in method " + member.name,
                                         0, module, sourceMissing ? member.sourceLine : member.destinationLine)}));
        }
    }
}

TEST_F(CCsNearestTest, ExceptionsAreReportedAndStayInside) {
    for (const Member& member : members()) {
        WatchedImage<CCsRaster> src("src", 5, 5, member.sourceType, 1.0, false, false);
        CCsRaster dst(5, 5, member.destinationType, 1.0, false, false);
        src.throws = true;
        CCs2dTrafo trafo;
        EXPECT_EQ(member.call(nearest_, src, dst, trafo), member.returnsInt ? 0 : 255);
        EXPECT_EQ(ReportCapture::take(),
                  (std::vector{errorReport(L"Exception in function " + member.name, 0, module, member.exceptionLine)}));
    }
}

TEST_F(CCsNearestTest, ADestinationThatThrowsLeavesTheSourceUnlocked) {
    WatchedImage<CCsRaster> src("src", 5, 5, CCS_GREY12, 1.0, false, false);
    WatchedImage<CCsRaster> dst("dst", 5, 5, CCS_GREY12, 1.0, false, false);
    dst.throws = true;
    CCs2dTrafo trafo;
    locks().clear();
    EXPECT_EQ(nearest_.nearestGrey12Grey12(src, dst, trafo, 0, false), 0);
    EXPECT_EQ(locks(), (std::vector<std::string>{"lock src", "lock dst", "unlock src"}));
    EXPECT_EQ(ReportCapture::take(),
              (std::vector{errorReport(L"Exception in function nearestGrey12Grey12", 0, module, 305)}));
}

TEST_F(CCsNearestTest, AMapThatThrowsIsReportedAndBothImagesAreUnlocked) {
    WatchedImage<CCsRaster> src("src", 5, 5, CCS_GREY12, 1.0, false, false);
    WatchedImage<CCsRaster> dst("dst", 5, 5, CCS_RGB8, 1.0, false, false);
    TableMap map;
    map.throwsOnCopy = true;
    CCs2dTrafo trafo;
    locks().clear();
    nearest_.nearestGrey12IndexMap(src, dst, trafo, &map, nullptr, 0);
    EXPECT_EQ(locks(), (std::vector<std::string>{"lock src", "lock dst", "unlock src", "unlock dst"}));
    EXPECT_EQ(ReportCapture::take(),
              (std::vector{errorReport(L"Exception in function nearestGrey12IndexMap", 0, module, 1290)}));
}

TEST_F(CCsNearestTest, ReportLinesAreDistinct) {
    std::vector<int> lines;
    for (const Member& member : members()) {
        if (member.name == L"nearestGrey12IndexMap" && member.sourceType == CCS_GREY16) continue;
        for (const int line :
             {member.typeLine, member.sourceLine, member.destinationLine, member.exceptionLine, member.tableLine}) {
            if (line != 0) lines.push_back(line);
        }
    }
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(std::adjacent_find(lines.begin(), lines.end()), lines.end());
}

}  // namespace
