// Every nearest-neighbour member against its plain restatement: random views, sizes, pitches, types, shutters, planes,
// padding bits. The whole memory of the destination is compared, guards and line padding included.
#include "reference/guarded_image.h"
#include "reference/nearest_reference.h"
#include "reference/random_shutters.h"
#include "reference/random_views.h"
#include "support/resampler_members.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsnearest.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using zolref::Pixels;
using zoltest::GuardedImage;
using zoltest::GuardedMemory;
using zoltest::GuardedRaster;
using zoltest::Matrix;
using zoltest::pixelsOf;
using zoltest::Random;
using zoltest::ReportCapture;
using zoltest::TableMap;

double anyRatio(Random& random) {
    switch (random.integer(0, 9)) {
        case 0:
            return 0.5;
        case 1:
            return random.real(0.3, 3.0);
        case 2:
            return random.chance(0.1) ? 0.0 : 2.0;
        default:
            return 1.0;
    }
}

struct Sizes {
    int srcWidth, srcHeight, dstWidth, dstHeight;
};

/// Mostly small and odd; sometimes so wide or tall that 16.16 positions no longer fit a float.
Sizes anySizes(Random& random) {
    Sizes sizes = {random.integer(1, random.chance(0.3) ? 4 : 70), random.integer(1, random.chance(0.3) ? 4 : 50),
                   random.integer(1, 70), random.integer(1, 50)};
    if (random.chance(0.12)) {
        sizes.srcWidth = random.integer(257, 1500);
        sizes.srcHeight = random.integer(1, 4);
        if (random.chance(0.7)) {
            sizes.dstWidth = sizes.srcWidth + random.integer(-2, 2);
            sizes.dstHeight = random.integer(1, 5);
        }
    } else if (random.chance(0.12)) {
        sizes.srcWidth = random.integer(1, 4);
        sizes.srcHeight = random.integer(257, 1500);
        if (random.chance(0.7)) {
            sizes.dstWidth = random.integer(1, 5);
            sizes.dstHeight = sizes.srcHeight + random.integer(-2, 2);
        }
    } else if (random.chance(0.1)) {
        sizes.dstWidth = sizes.srcWidth;
        sizes.dstHeight = sizes.srcHeight;
    }
    return sizes;
}

int anyPitch(Random& random, int width) { return width + (random.chance(0.3) ? 0 : random.integer(1, 9)); }

/// The restated call works on a copy of the destination's memory, which then has to equal what the library left.
struct Expected {
    std::vector<unsigned char> memory;
    Pixels pixels;

    explicit Expected(GuardedImage& dst) : memory(dst.memory.all()), pixels(pixelsOf(dst)) {
        pixels.first = memory.data() + dst.memory.guard();
    }
};

/// Takes over whatever the library put into the pixels themselves, so that only their surroundings are compared.
void acceptPixels(GuardedImage& dst, Expected& expected) {
    const Pixels got = pixelsOf(dst);
    for (int y = 0; y < got.height; ++y) {
        std::memcpy(zolref::pixelAt(expected.pixels, 0, y), zolref::pixelAt(got, 0, y),
                    static_cast<std::size_t>(got.width) * static_cast<std::size_t>(got.bytes));
    }
}

std::string firstDifference(GuardedImage& dst, const Expected& expected) {
    const std::vector<unsigned char>& got = dst.memory.all();
    if (got == expected.memory) return {};
    std::size_t at = 0;
    while (got[at] == expected.memory[at]) ++at;
    const auto offset = static_cast<std::ptrdiff_t>(at) - static_cast<std::ptrdiff_t>(dst.memory.guard());
    std::ostringstream out;
    out << "byte " << offset;
    if (offset >= 0 && offset < static_cast<std::ptrdiff_t>(dst.memory.bytes())) {
        const std::ptrdiff_t pixel = offset / expected.pixels.bytes;
        out << " = column " << pixel % expected.pixels.pitch << ", row " << pixel / expected.pixels.pitch << ", byte "
            << offset % expected.pixels.bytes << " of the pixel";
    } else {
        out << " in the guard";
    }
    out << ": " << int{got[at]} << ", restated " << int{expected.memory[at]};
    return out.str();
}

std::string textOfImages(const CCsImage& src, const CCsImage& dst, const Matrix& matrix) {
    std::ostringstream out;
    out << "source " << src.getWidth() << 'x' << src.getHeight() << " pitch " << src.getPitch() << " type "
        << src.getType() << " ratio " << src.getRatioYx() << ", destination " << dst.getWidth() << 'x'
        << dst.getHeight() << " pitch " << dst.getPitch() << " type " << dst.getType() << " ratio " << dst.getRatioYx()
        << "\ndisplay to image " << textOf(matrix);
    return out.str();
}

/// The tables and backgrounds of one call; every member takes what it needs.
struct Arguments {
    std::vector<unsigned char> table;
    std::vector<unsigned char> green;
    std::vector<unsigned char> blue;
    std::uint64_t background = 0;

    explicit Arguments(Random& random) : table(4096), green(256), blue(256), background(random.bits()) {
        for (unsigned char& byte : table) byte = static_cast<unsigned char>(random.bits() >> 20);
        for (unsigned char& byte : green) byte = static_cast<unsigned char>(random.bits() >> 20);
        for (unsigned char& byte : blue) byte = static_cast<unsigned char>(random.bits() >> 20);
    }
    [[nodiscard]] unsigned char byteAt(int i) const { return static_cast<unsigned char>(background >> (8 * i)); }
};

struct Member {
    const char* name;
    std::function<bool(int src, int dst)> accepts;
    std::function<void(CCsNearest&, GuardedRaster&, GuardedImage&, CCs2dTrafo&, Arguments&)> call;
    std::function<void(const double*, const Pixels&, const Pixels&, const Arguments&)> restated;
};

bool oneByte(int type) { return type == CCS_INDEX8 || type == CCS_GREY8; }

const std::vector<Member>& members() {
    static const std::vector<Member> list = {
        {"nearestGrey12Grey12", [](int s, int d) { return s == CCS_GREY12 && d == CCS_GREY12; },
         [](CCsNearest& n, GuardedRaster& s, GuardedImage& d, CCs2dTrafo& t, Arguments& a) {
             EXPECT_EQ(n.nearestGrey12Grey12(s, d, t, static_cast<unsigned short>(a.background), a.byteAt(7) > 127),
                       255);
         },
         [](const double* m, const Pixels& s, const Pixels& d, const Arguments& a) {
             zolref::nearestCopy(m, s, d, a.background);
         }},
        {"nearestGrey8Grey8",
         [](int s, int d) { return (s == CCS_GREY8 || d == CCS_GREY8) && oneByte(s) && oneByte(d); },
         [](CCsNearest& n, GuardedRaster& s, GuardedImage& d, CCs2dTrafo& t, Arguments& a) {
             n.nearestGrey8Grey8(s, d, t, a.byteAt(0));
         },
         [](const double* m, const Pixels& s, const Pixels& d, const Arguments& a) {
             zolref::nearestCopy(m, s, d, a.background);
         }},
        {"nearestGrey8IndexMap",
         [](int s, int d) { return (s == CCS_GREY8 || d == CCS_INDEX8) && oneByte(s) && oneByte(d); },
         [](CCsNearest& n, GuardedRaster& s, GuardedImage& d, CCs2dTrafo& t, Arguments& a) {
             n.nearestGrey8IndexMap(s, d, t, a.table.data(), a.byteAt(0));
         },
         [](const double* m, const Pixels& s, const Pixels& d, const Arguments& a) {
             zolref::nearestGrey8Table(m, s, d, a.table.data(), a.byteAt(0));
         }},
        {"nearestIndexIndex", [](int s, int d) { return s == CCS_INDEX8 && d == CCS_INDEX8; },
         [](CCsNearest& n, GuardedRaster& s, GuardedImage& d, CCs2dTrafo& t, Arguments& a) {
             n.nearestIndexIndex(s, d, t, a.byteAt(0));
         },
         [](const double* m, const Pixels& s, const Pixels& d, const Arguments& a) {
             zolref::nearestCopy(m, s, d, a.background);
         }},
        {"nearestRgb12Rgb12", [](int s, int d) { return s == CCS_RGB12 && d == CCS_RGB12; },
         [](CCsNearest& n, GuardedRaster& s, GuardedImage& d, CCs2dTrafo& t, Arguments& a) {
             n.nearestRgb12Rgb12(s, d, t, a.background);
         },
         [](const double* m, const Pixels& s, const Pixels& d, const Arguments& a) {
             zolref::nearestCopy(m, s, d, a.background);
         }},
        {"nearestRgb12Rgb8Map", [](int s, int d) { return s == CCS_RGB12 && d == CCS_RGB8; },
         [](CCsNearest& n, GuardedRaster& s, GuardedImage& d, CCs2dTrafo& t, Arguments& a) {
             n.nearestRgb12Rgb8Map(s, d, t, a.table.data(), static_cast<unsigned long>(a.background & 0xFFFFFFFFU));
         },
         [](const double* m, const Pixels& s, const Pixels& d, const Arguments& a) {
             zolref::nearestRgb12Table(m, s, d, a.table.data(), static_cast<std::uint32_t>(a.background));
         }},
        {"nearestRgb8Rgb24Save", [](int s, int d) { return s == CCS_RGB8 && d == CCS_RGB24; },
         [](CCsNearest& n, GuardedRaster& s, GuardedImage& d, CCs2dTrafo& t, Arguments& a) {
             n.nearestRgb8Rgb24Save(s, d, t, a.byteAt(0));
         },
         [](const double* m, const Pixels& s, const Pixels& d, const Arguments& a) {
             zolref::nearestRgb24Save(m, s, d, a.byteAt(0));
         }},
        {"nearestRgb8Rgb8", [](int s, int d) { return s == CCS_RGB8 && d == CCS_RGB8; },
         [](CCsNearest& n, GuardedRaster& s, GuardedImage& d, CCs2dTrafo& t, Arguments& a) {
             EXPECT_EQ(n.nearestRgb8Rgb8(s, d, t, static_cast<unsigned long>(a.background & 0xFFFFFFFFU)), 255);
         },
         [](const double* m, const Pixels& s, const Pixels& d, const Arguments& a) {
             zolref::nearestCopy(m, s, d, a.background);
         }},
        {"nearestRgb8Rgb8Map", [](int s, int d) { return s == CCS_RGB8 && d == CCS_RGB8; },
         [](CCsNearest& n, GuardedRaster& s, GuardedImage& d, CCs2dTrafo& t, Arguments& a) {
             n.nearestRgb8Rgb8Map(s, d, t, a.table.data(), static_cast<unsigned long>(a.background & 0xFFFFFFFFU));
         },
         [](const double* m, const Pixels& s, const Pixels& d, const Arguments& a) {
             const unsigned char* table = a.table.data();
             zolref::nearestRgb8Tables(m, s, d, table, table, table, static_cast<std::uint32_t>(a.background));
         }},
        {"nearestRgb8Rgb8MapSeperate", [](int s, int d) { return s == CCS_RGB8 && d == CCS_RGB8; },
         [](CCsNearest& n, GuardedRaster& s, GuardedImage& d, CCs2dTrafo& t, Arguments& a) {
             n.nearestRgb8Rgb8MapSeperate(s, d, t, a.table.data(), a.green.data(), a.blue.data(), a.byteAt(2),
                                          a.byteAt(1), a.byteAt(0));
         },
         [](const double* m, const Pixels& s, const Pixels& d, const Arguments& a) {
             zolref::nearestRgb8Tables(m, s, d, a.blue.data(), a.green.data(), a.table.data(),
                                       static_cast<std::uint32_t>(a.background & 0xFFFFFFU));
         }},
    };
    return list;
}

constexpr int kTypes[] = {CCS_INDEX8, CCS_GREY12, CCS_GREY8, CCS_RGB12, CCS_RGB8, CCS_RGB24, CCS_GREY16};

/// One call of one member on random images; empty when all is as restated.
std::string compareMember(const Member& member, int srcType, int dstType, Random& random) {
    const auto [srcWidth, srcHeight, dstWidth, dstHeight] = anySizes(random);
    GuardedRaster src(srcWidth, srcHeight, srcType, anyPitch(random, srcWidth), anyRatio(random));
    GuardedImage dst(dstWidth, dstHeight, dstType, anyPitch(random, dstWidth), anyRatio(random));
    src.memory.randomise(random);
    dst.memory.randomise(random);
    Arguments arguments(random);
    CCs2dTrafo trafo = zoltest::anyView(random, src, dst);
    if (random.chance(0.4)) zoltest::startAtBorders(random, trafo, src, dst);
    const Matrix matrix = zoltest::toImageOf(trafo, src, dst);
    const std::vector<unsigned char> srcBefore = src.memory.all();

    Expected expected(dst);
    const bool comparable = zoltest::withinReach(matrix);
    if (comparable) member.restated(matrix.m, pixelsOf(src), expected.pixels, arguments);
    CCsNearest nearest;
    member.call(nearest, src, dst, trafo, arguments);
    if (!comparable) acceptPixels(dst, expected);

    std::string difference = firstDifference(dst, expected);
    if (difference.empty() && src.memory.all() != srcBefore) difference = "the source was written";
    if (difference.empty() && src.GetMemBuffer()->getLockCount() != 0) difference = "the source stayed locked";
    if (difference.empty() && dst.GetMemBuffer()->getLockCount() != 0) difference = "the destination stayed locked";
    if (difference.empty()) {
        // The call leaves the two images' sizes in the transformation.
        const CSize size = trafo.getSrcSize();
        const CSize target = trafo.getDstSize();
        if (size.cx != srcWidth || size.cy != srcHeight || target.cx != dstWidth || target.cy != dstHeight) {
            difference = "the transformation has other sizes";
        }
    }
    if (difference.empty()) return {};
    return std::string(member.name) + ": " + difference + '\n' + textOfImages(src, dst, matrix);
}

}  // namespace

TEST(NearestProperty, EveryMemberWritesWhatIsRestated) {
    Random random(20240201);
    for (const Member& member : members()) {
        for (const int srcType : kTypes) {
            for (const int dstType : kTypes) {
                if (!member.accepts(srcType, dstType)) continue;
                for (int round = 0; round < 400; ++round) {
                    const ReportCapture capture;
                    const std::string difference = compareMember(member, srcType, dstType, random);
                    ASSERT_EQ(difference, "") << "round " << round;
                }
            }
        }
    }
}

TEST(NearestProperty, EveryPairOfTypesThatIsNotItsOwnIsRefused) {
    Random random(20240202);
    const int types[] = {CCS_INDEX8, CCS_GREY12, CCS_GREY8, CCS_RGB12, CCS_RGB8, CCS_RGB24, CCS_GREY16, 0, 9};
    for (const Member& member : members()) {
        for (const int srcType : types) {
            for (const int dstType : types) {
                if (member.accepts(srcType, dstType)) continue;
                if (std::string(member.name) == "nearestGrey12Grey12" ||
                    std::string(member.name) == "nearestRgb8Rgb8") {
                    continue;  // these return a result: below
                }
                GuardedRaster src(7, 5, srcType, 9, 1.0);
                GuardedImage dst(6, 8, dstType, 7, 1.0);
                dst.memory.randomise(random);
                const std::vector<unsigned char> before = dst.memory.all();
                Arguments arguments(random);
                CCs2dTrafo trafo;
                CCsNearest nearest;
                const ReportCapture capture;
                member.call(nearest, src, dst, trafo, arguments);
                const std::vector<zoltest::Report> reports = ReportCapture::take();
                ASSERT_EQ(reports.size(), 1U) << member.name << ' ' << srcType << ' ' << dstType;
                EXPECT_EQ(reports[0].text, L"Image type not supported 0 ");
                EXPECT_EQ(reports[0].tag, L"CS-E");
                EXPECT_EQ(reports[0].file, L"source\\zolcs\\ccsnearest");
                EXPECT_TRUE(before == dst.memory.all()) << member.name << ' ' << srcType << ' ' << dstType;
            }
        }
    }
}

TEST(NearestProperty, MembersWithAResultRefuseOtherTypesWithZero) {
    Random random(20240203);
    const int types[] = {CCS_INDEX8, CCS_GREY12, CCS_GREY8, CCS_RGB12, CCS_RGB8, CCS_RGB24, CCS_GREY16, 0, 9};
    for (const int srcType : types) {
        for (const int dstType : types) {
            GuardedRaster src(7, 5, srcType, 9, 1.0);
            GuardedImage dst(6, 8, dstType, 7, 1.0);
            dst.memory.randomise(random);
            const std::vector<unsigned char> before = dst.memory.all();
            CCs2dTrafo trafo;
            CCsNearest nearest;
            const ReportCapture capture;
            if (!(srcType == CCS_GREY12 && dstType == CCS_GREY12)) {
                EXPECT_EQ(nearest.nearestGrey12Grey12(src, dst, trafo, 1, false), 0);
                EXPECT_EQ(ReportCapture::take().size(), 1U);
                EXPECT_TRUE(before == dst.memory.all());
            }
            if (!(srcType == CCS_RGB8 && dstType == CCS_RGB8)) {
                EXPECT_EQ(nearest.nearestRgb8Rgb8(src, dst, trafo, 1), 0);
                EXPECT_EQ(ReportCapture::take().size(), 1U);
                EXPECT_TRUE(before == dst.memory.all());
            }
        }
    }
}

namespace {

enum class MapKind { table, none, colour };

/// One call of the grey member with everything that a raster can carry; empty when all is as restated.
/// With `borders`, in views whose rows start where one rule differs from another.
std::string compareGrey(Random& random, bool borders) {
    auto [srcWidth, srcHeight, dstWidth, dstHeight] = anySizes(random);
    if (borders) {
        dstWidth = srcWidth;
        dstHeight = srcHeight;
    }
    const double srcRatio = borders ? 1.0 : anyRatio(random);
    const double dstRatio = borders ? 1.0 : anyRatio(random);
    const int srcType = random.chance(0.7) ? CCS_GREY12 : CCS_GREY16;
    GuardedRaster src(srcWidth, srcHeight, srcType, anyPitch(random, srcWidth), srcRatio);
    GuardedImage dst(dstWidth, dstHeight, CCS_RGB8, anyPitch(random, dstWidth), dstRatio);
    src.memory.randomise(random);
    dst.memory.randomise(random);
    if (random.chance(0.5)) {
        // Mostly clean 12-bit values, so that the table is seen as well.
        unsigned char* bytes = src.memory.pixels();
        for (std::size_t i = 1; i < src.memory.bytes(); i += 2) {
            if (!random.chance(0.1)) bytes[i] = static_cast<unsigned char>(bytes[i] & 15);
        }
    }
    const zoltest::ShutterCase shutters = zoltest::anyShutters(random, srcWidth, srcHeight);
    zoltest::applyShutters(shutters.shutters, src);

    TableMap map;
    for (unsigned int& colour : map.planeColours) colour = static_cast<unsigned int>(random.bits() >> 16);
    for (unsigned int& colour : map.groupColours) colour = static_cast<unsigned int>(random.bits() >> 16);
    map.hasPlaneColours = !random.chance(0.15);
    map.hasGroupColours = !random.chance(0.15);
    map.enabled = !random.chance(0.15);
    const MapKind kind = random.chance(0.9) ? MapKind::table : (random.chance(0.5) ? MapKind::none : MapKind::colour);
    const std::unique_ptr<IMap> colourMap(kind == MapKind::colour ? MapFactory::CreateMap(MapFactory::Rgb8) : nullptr);
    const std::vector<std::uint32_t> zeros(65536);

    std::vector<unsigned char> padding;
    if (random.chance(0.4)) {
        padding = zoltest::anyBits(random, static_cast<std::size_t>(srcWidth) * static_cast<std::size_t>(srcHeight));
    }

    zolref::GreyView view;
    view.twelveBit = srcType == CCS_GREY12;
    view.greyMap = kind == MapKind::table;
    view.enabled = map.enabled;
    view.table = kind == MapKind::table ? zoltest::sharedMapTable().data() : zeros.data();
    if (map.hasPlaneColours) view.planeColours = map.planeColours.data();
    if (map.hasGroupColours) view.groupColours = map.groupColours.data();
    view.shutters = shutters.shutters;
    view.padding = padding.empty() ? nullptr : padding.data();
    view.background = static_cast<unsigned char>(random.bits());

    CCs2dTrafo trafo = borders ? zoltest::plainView(random, src, dst) : zoltest::anyView(random, src, dst);
    if (borders || random.chance(0.4)) zoltest::startAtBorders(random, trafo, src, dst);
    const Matrix matrix = zoltest::toImageOf(trafo, src, dst);
    Expected expected(dst);
    const bool comparable = zoltest::withinReach(matrix);
    if (comparable) zolref::nearestGrey(matrix.m, pixelsOf(src), expected.pixels, view);

    IMap* given = &map;
    if (kind == MapKind::none) given = nullptr;
    if (kind == MapKind::colour) given = colourMap.get();
    CCsNearest nearest;
    nearest.nearestGrey12IndexMap(src, dst, trafo, given, padding.empty() ? nullptr : padding.data(), view.background);
    if (!comparable) acceptPixels(dst, expected);

    std::string difference = firstDifference(dst, expected);
    if (difference.empty() && src.GetMemBuffer()->getLockCount() != 0) difference = "the source stayed locked";
    if (difference.empty() && dst.GetMemBuffer()->getLockCount() != 0) difference = "the destination stayed locked";
    if (difference.empty()) return {};
    std::ostringstream out;
    out << difference << '\n'
        << textOfImages(src, dst, matrix) << '\n'
        << shutters << "\nmap kind " << static_cast<int>(kind) << " enabled " << map.enabled << " plane colours "
        << map.hasPlaneColours << " group colours " << map.hasGroupColours << " padding " << (!padding.empty())
        << " background " << int{view.background};
    return out.str();
}

}  // namespace

TEST(NearestProperty, GreyWithShuttersPlanesAndPaddingWritesWhatIsRestated) {
    Random random(20240204);
    for (int round = 0; round < 2500; ++round) {
        const ReportCapture capture;
        ASSERT_EQ(compareGrey(random, false), "") << "round " << round;
    }
}

TEST(NearestProperty, GreyAtTheBordersOfShuttersAndPlanesWritesWhatIsRestated) {
    Random random(20240205);
    for (int round = 0; round < 4000; ++round) {
        const ReportCapture capture;
        ASSERT_EQ(compareGrey(random, true), "") << "round " << round;
    }
}
