// What all members of a resampler have in common, told once: which types they take, what they report, how they lock,
// and that they draw what is restated.
#pragma once

#include "reference/guarded_image.h"
#include "reference/nearest_reference.h"
#include "reference/random_shutters.h"
#include "reference/random_views.h"
#include "support/display_rules.h"
#include "support/resampler_reports.h"
#include "support/test_data.h"
#include "zolcs/ccs2dtrafo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace zoltest {

/// The fields of a resampler, which follow the pointer to its virtual operations.
template <std::size_t Count, typename Resampler>
std::array<std::int32_t, Count> fieldsOf(const Resampler& resampler) {
    static_assert(sizeof(Resampler) == (sizeof(void*) + Count * 4 + sizeof(void*) - 1) / sizeof(void*) * sizeof(void*));
    std::array<std::int32_t, Count> fields{};
    std::memcpy(fields.data(), reinterpret_cast<const unsigned char*>(&resampler) + sizeof(void*), sizeof fields);
    return fields;
}

/// One member with its arguments; `draw` is its restatement.
template <typename Resampler>
struct ResamplerMember {
    std::wstring name;
    int sourceType;
    int destinationType;
    std::function<bool(int, int)> accepts;
    bool stops;  ///< looks at the abort flag
    std::function<int(Resampler&, CCsRaster&, CCsImage&, CCs2dTrafo&)> call;
    std::function<int(Resampler&, CCsRaster&, CCsImage&, CCs2dTrafo&)> callWithoutTable;
    std::function<void(const double*, const zolref::Pixels&, const zolref::Pixels&)> draw;
    int refused = 0;  ///< what a refused call gives; 255 stands for the result of members that have none
};

template <typename Resampler>
using ResamplerMembers = std::vector<ResamplerMember<Resampler>>;

inline bool bothGrey16Bit(int source, int destination) {
    const auto grey = [](int type) { return type == CCS_GREY12 || type == CCS_GREY16; };
    return grey(source) && grey(destination);
}
inline bool greyToDisplay(int source, int destination) {
    return (source == CCS_GREY12 || source == CCS_GREY16) && destination == CCS_RGB8;
}
inline bool bothRgb8(int source, int destination) { return source == CCS_RGB8 && destination == CCS_RGB8; }
inline bool bothGrey12(int source, int destination) { return source == CCS_GREY12 && destination == CCS_GREY12; }

inline const std::array<unsigned char, 256>& byteTable() {
    static const std::array<unsigned char, 256> table = [] {
        std::array<unsigned char, 256> made{};
        for (std::size_t i = 0; i < made.size(); ++i) made[i] = static_cast<unsigned char>(i * 29 + 7);
        return made;
    }();
    return table;
}

/// Members take their tables as pointers to what they do not change.
inline unsigned char* byteTableArgument() {
    static std::array<unsigned char, 256> copy = byteTable();
    return copy.data();
}

inline TableMap& sharedMap() {
    static TableMap map;
    return map;
}

inline const std::vector<std::uint32_t>& sharedMapTable() {
    static const std::vector<std::uint32_t> table = [] {
        std::vector<std::uint32_t> made(0x10000);
        for (std::size_t i = 0; i < made.size(); ++i) made[i] = sharedMap().entry(i);
        return made;
    }();
    return table;
}

/// A view of a raster without shutters and planes.
inline zolref::GreyView plainGreyView(bool twelveBit, unsigned char background) {
    zolref::GreyView view;
    view.twelveBit = twelveBit;
    view.table = sharedMapTable().data();
    view.background = background;
    return view;
}

template <typename Image>
zolref::Pixels pixelsOf(Image& image) {
    return {image.memory.pixels(), image.getWidth(), image.getHeight(), image.getPitch(), bytesOfType(image.getType())};
}

/// Random images and views; the destination's whole memory is compared.
template <typename Resampler>
void expectRestatedPictures(const ResamplerMembers<Resampler>& members, const wchar_t* module, std::uint64_t seed,
                            int rounds) {
    const ReportCapture capture;
    Random random(seed);
    Resampler resampler;
    for (int round = 0; round < rounds; ++round) {
        const auto& member = members[static_cast<std::size_t>(round) % members.size()];
        const int largest = random.chance(0.3) ? 4 : (random.chance(0.1) ? 200 : 40);
        const auto size = [&] { return random.integer(1, largest); };
        const int srcWidth = size();
        const int dstWidth = random.integer(1, 45);
        const double ratio = random.chance(0.7) ? 1.0 : random.real(0.3, 3.0);
        GuardedRaster src(srcWidth, size(), member.sourceType, srcWidth + random.integer(0, 5), ratio);
        GuardedImage dst(dstWidth, random.integer(1, 40), member.destinationType, dstWidth + random.integer(0, 5), 1.0);
        src.memory.randomise(random);
        dst.memory.randomise(random);
        if (random.chance(0.2)) {  // only extremes: products and overshoots are largest
            for (unsigned char& byte : src.memory.all()) byte = random.chance(0.5) ? 255 : 0;
        }
        CCs2dTrafo trafo = anyView(random, src, dst);
        if (random.chance(0.4)) startAtBorders(random, trafo, src, dst);
        const Matrix matrix = toImageOf(trafo, src, dst);
        const std::vector<unsigned char> before = dst.memory.all();
        const std::vector<unsigned char> source = src.memory.all();
        const bool comparable = withinReach(matrix);
        if (comparable) member.draw(matrix.m, pixelsOf(src), pixelsOf(dst));
        const std::vector<unsigned char> expected = dst.memory.all();
        dst.memory.all() = before;
        ASSERT_EQ(member.call(resampler, src, dst, trafo), 255);
        ASSERT_TRUE(src.memory.all() == source);
        ASSERT_EQ(src.GetMemBuffer()->getLockCount(), 0);
        ASSERT_EQ(dst.GetMemBuffer()->getLockCount(), 0);
        if (!comparable) continue;
        ASSERT_TRUE(dst.memory.all() == expected)
            << narrow(member.name) << " round " << round << ' ' << srcWidth << 'x' << src.getHeight() << " type "
            << member.sourceType << " to " << dstWidth << 'x' << dst.getHeight() << " type " << member.destinationType
            << ' ' << textOf(matrix) << " seed " << random.seed();
    }
    EXPECT_TRUE(reportsOf(module).empty());
}

/// Everything that a raster can carry above its values, in random views.
template <typename Resampler, typename Call, typename Draw>
void expectRestatedRules(std::uint64_t seed, int rounds, const Call& call, const Draw& draw) {
    const ReportCapture capture;
    Random random(seed);
    Resampler resampler;
    const std::vector<std::uint32_t> zeros(0x10000);
    for (int round = 0; round < rounds; ++round) {
        const int srcWidth = random.integer(1, 60);
        const int srcHeight = random.integer(1, 40);
        const int dstWidth = random.integer(1, 60);
        GuardedRaster src(srcWidth, srcHeight, random.chance(0.7) ? CCS_GREY12 : CCS_GREY16,
                          srcWidth + random.integer(0, 5), 1.0);
        GuardedImage dst(dstWidth, random.integer(1, 40), CCS_RGB8, dstWidth + random.integer(0, 5), 1.0);
        src.memory.randomise(random);
        dst.memory.randomise(random);
        if (random.chance(0.6)) {  // few embedded bits
            for (std::size_t i = 1; i < src.memory.bytes(); i += 2) {
                if (!random.chance(0.1)) src.memory.pixels()[i] &= 15;
            }
        }
        const ShutterCase shutters = anyShutters(random, srcWidth, srcHeight);
        applyShutters(shutters.shutters, src);
        std::vector<unsigned char> padding;
        if (random.chance(0.4)) {
            padding = anyBits(random, static_cast<std::size_t>(srcWidth) * static_cast<std::size_t>(srcHeight));
        }
        TableMap map;
        map.enabled = !random.chance(0.15);
        map.hasPlaneColours = !random.chance(0.15);
        map.hasGroupColours = !random.chance(0.15);
        IMap* given = random.chance(0.9) ? &map : nullptr;

        zolref::GreyView view = plainGreyView(src.getType() == CCS_GREY12, static_cast<unsigned char>(random.bits()));
        view.greyMap = given != nullptr;
        view.enabled = map.enabled;
        if (given == nullptr) view.table = zeros.data();
        if (map.hasPlaneColours) view.planeColours = map.planeColours.data();
        if (map.hasGroupColours) view.groupColours = map.groupColours.data();
        view.shutters = shutters.shutters;
        if (!padding.empty()) view.padding = padding.data();

        CCs2dTrafo trafo = anyView(random, src, dst);
        if (random.chance(0.4)) startAtBorders(random, trafo, src, dst);
        const Matrix matrix = toImageOf(trafo, src, dst);
        if (!withinReach(matrix)) continue;
        const std::vector<unsigned char> before = dst.memory.all();
        draw(matrix.m, pixelsOf(src), pixelsOf(dst), view);
        const std::vector<unsigned char> expected = dst.memory.all();
        dst.memory.all() = before;
        ASSERT_EQ(call(resampler, src, dst, trafo, given, padding.empty() ? nullptr : padding.data(), view.background),
                  255);
        ASSERT_TRUE(dst.memory.all() == expected) << "round " << round << ' ' << textOf(matrix) << '\n' << shutters;
    }
}

/// Sources without pixels and views that are not finite show background alone.
template <typename Resampler>
void expectBackgroundOnly(const ResamplerMembers<Resampler>& members, const std::wstring& module) {
    const ReportCapture capture;
    Resampler resampler;
    for (const auto& member : members) {
        SCOPED_TRACE(narrow(member.name));
        CCsRaster empty(0, 0, member.sourceType, 1.0, false, false);
        GuardedRaster src(5, 5, member.sourceType, 5, 1.0);
        GuardedImage blank(9, 7, member.destinationType, 10, 1.0);
        const double beside[6] = {1, 0, 0, 1, 1000, 1000};
        member.draw(beside, pixelsOf(src), pixelsOf(blank));
        GuardedImage dst(9, 7, member.destinationType, 10, 1.0);
        CCs2dTrafo plain;
        EXPECT_EQ(member.call(resampler, empty, dst, plain), 255);
        EXPECT_TRUE(dst.memory.all() == blank.memory.all());
        GuardedImage other(9, 7, member.destinationType, 10, 1.0);
        CCs2dTrafo broken;
        broken.scale(std::numeric_limits<double>::quiet_NaN());
        EXPECT_EQ(member.call(resampler, src, other, broken), 255);
        EXPECT_TRUE(other.memory.all() == blank.memory.all());
    }
    EXPECT_TRUE(reportsOf(module).empty());
}

/// Every pair of types: drawn, or refused with everything left as it was.
template <typename Resampler>
void expectStatedTypes(const ResamplerMembers<Resampler>& members) {
    const ReportCapture capture;
    Resampler resampler;
    for (const auto& member : members) {
        for (int sourceType = CCS_INDEX8; sourceType <= CCS_GREY16; ++sourceType) {
            for (int destinationType = CCS_INDEX8; destinationType <= CCS_GREY16; ++destinationType) {
                GuardedRaster src(5, 5, sourceType, 6, 1.0);
                GuardedImage dst(7, 4, destinationType, 8, 1.0);
                std::fill(dst.memory.all().begin(), dst.memory.all().end(), static_cast<unsigned char>(0x69));
                const std::vector<unsigned char> before = dst.memory.all();
                CCs2dTrafo trafo;
                const int result = member.call(resampler, src, dst, trafo);
                SCOPED_TRACE(narrow(member.name) + " " + std::to_string(sourceType) + " to " +
                             std::to_string(destinationType));
                if (member.accepts(sourceType, destinationType)) {
                    EXPECT_EQ(result, 255);
                    EXPECT_TRUE(ReportCapture::take().empty());
                    EXPECT_NE(dst.memory.all(), before);
                    EXPECT_EQ(trafo.getSrcSize().cx, 5);
                } else {
                    EXPECT_EQ(result, member.refused);
                    EXPECT_EQ(ReportCapture::take(), std::vector{statedReport(member.name, Problem::Type)});
                    EXPECT_EQ(dst.memory.all(), before);
                    EXPECT_EQ(trafo.getSrcSize().cx, 1);  // the transformation is not touched
                }
            }
        }
    }
}

/// An image that tells what is done to it.
template <typename Base>
class WatchedImage : public Base {
public:
    template <typename... Arguments>
    explicit WatchedImage(std::string name, Arguments... arguments) : Base(arguments...), name_(std::move(name)) {}

    static std::vector<std::string>& log() {
        static std::vector<std::string> list;
        return list;
    }

    unsigned char* getOrigin() override {
        log().push_back("lock " + name_);
        if (throws) throw 17;
        return hasMemory ? Base::getOrigin() : nullptr;
    }
    void unlock() override {
        log().push_back("unlock " + name_);
        Base::unlock();
    }

    bool hasMemory = true;
    bool throws = false;

private:
    std::string name_;
};

/// The reports of every failure, and that images are locked and unlocked once, source first.
template <typename Resampler>
void expectStatedFailures(const ResamplerMembers<Resampler>& members) {
    using Watched = WatchedImage<CCsRaster>;
    const ReportCapture capture;
    const std::vector<std::string> bothOnce{"lock src", "lock dst", "unlock src", "unlock dst"};
    Resampler resampler;
    for (const auto& member : members) {
        SCOPED_TRACE(narrow(member.name));
        const auto make = [](const char* name, int type) { return Watched(name, 5, 5, type, 1.0, false, false); };
        CCs2dTrafo trafo;
        {
            Watched src = make("src", member.sourceType);
            Watched dst = make("dst", member.destinationType);
            Watched::log().clear();
            EXPECT_EQ(member.call(resampler, src, dst, trafo), 255);
            EXPECT_EQ(Watched::log(), bothOnce);
            EXPECT_TRUE(ReportCapture::take().empty());
        }
        for (const bool sourceMissing : {true, false}) {
            Watched src = make("src", member.sourceType);
            Watched dst = make("dst", member.destinationType);
            src.hasMemory = !sourceMissing;
            dst.hasMemory = false;
            Watched::log().clear();
            EXPECT_EQ(member.call(resampler, src, dst, trafo), member.refused);
            EXPECT_EQ(Watched::log(), bothOnce);
            const Problem problem = sourceMissing ? Problem::Source : Problem::Destination;
            EXPECT_EQ(ReportCapture::take(), std::vector{statedReport(member.name, problem)});
        }
        {
            Watched src = make("src", member.sourceType);
            Watched dst = make("dst", member.destinationType);
            src.throws = true;
            EXPECT_EQ(member.call(resampler, src, dst, trafo), member.refused);
            EXPECT_EQ(ReportCapture::take(), std::vector{statedReport(member.name, Problem::Exception)});
        }
        {  // what has been locked is unlocked
            Watched src = make("src", member.sourceType);
            Watched dst = make("dst", member.destinationType);
            dst.throws = true;
            Watched::log().clear();
            EXPECT_EQ(member.call(resampler, src, dst, trafo), member.refused);
            EXPECT_EQ(Watched::log(), (std::vector<std::string>{"lock src", "lock dst", "unlock src"}));
            EXPECT_EQ(ReportCapture::take(), std::vector{statedReport(member.name, Problem::Exception)});
        }
        if (member.callWithoutTable != nullptr) {
            Watched src = make("src", member.sourceType);
            Watched dst = make("dst", member.destinationType);
            Watched::log().clear();
            const CCs2dTrafo untold;
            trafo = untold;
            EXPECT_EQ(member.callWithoutTable(resampler, src, dst, trafo), member.refused);
            EXPECT_TRUE(Watched::log().empty());
            EXPECT_EQ(trafo.getSrcSize().cx, untold.getSrcSize().cx);
            EXPECT_EQ(ReportCapture::take(), std::vector{statedReport(member.name, Problem::Table)});
        }
        {  // a destination without lines is only unlocked
            Watched src = make("src", member.sourceType);
            Watched dst("dst", 5, 0, member.destinationType, 1.0, false, false);
            Watched::log().clear();
            EXPECT_EQ(member.call(resampler, src, dst, trafo), 255);
            EXPECT_EQ(Watched::log(), bothOnce);
            EXPECT_TRUE(ReportCapture::take().empty());
        }
    }
}

/// A map that throws is found out after both images have been locked.
template <typename Resampler, typename Call>
void expectThrowingMapReported(const Call& call, const wchar_t* member) {
    using Watched = WatchedImage<CCsRaster>;
    const ReportCapture capture;
    Watched src("src", 5, 5, CCS_GREY12, 1.0, false, false);
    Watched dst("dst", 5, 5, CCS_RGB8, 1.0, false, false);
    TableMap map;
    map.throwsOnCopy = true;
    CCs2dTrafo trafo;
    Resampler resampler;
    Watched::log().clear();
    EXPECT_EQ(call(resampler, src, dst, trafo, &map, nullptr, static_cast<unsigned char>(0)), 0);
    EXPECT_EQ(Watched::log(), (std::vector<std::string>{"lock src", "lock dst", "unlock src", "unlock dst"}));
    EXPECT_EQ(ReportCapture::take(), std::vector{statedReport(member, Problem::Exception)});
}

/// A flag that is set before the call: nothing is touched, nothing reported; back at 0 the member draws again.
template <typename Resampler>
void expectRefusedWhenStopped(const ResamplerMembers<Resampler>& members) {
    const ReportCapture capture;
    for (const auto& member : members) {
        SCOPED_TRACE(narrow(member.name));
        GuardedRaster src(5, 5, member.sourceType, 6, 1.0);
        GuardedImage dst(7, 4, member.destinationType, 8, 1.0);
        std::fill(dst.memory.all().begin(), dst.memory.all().end(), static_cast<unsigned char>(0x69));
        const std::vector<unsigned char> before = dst.memory.all();
        CCs2dTrafo trafo;
        Resampler resampler;
        resampler.setAbortFlag(-3);
        EXPECT_EQ(member.call(resampler, src, dst, trafo), member.stops ? 0 : 255);
        EXPECT_EQ(dst.memory.all() == before, member.stops);
        EXPECT_TRUE(ReportCapture::take().empty());
        const Resampler copy(resampler);
        Resampler assigned;
        assigned = copy;
        EXPECT_EQ(member.call(assigned, src, dst, trafo), member.stops ? 0 : 255);  // the flag is copied
        resampler.setAbortFlag(0);
        EXPECT_EQ(member.call(resampler, src, dst, trafo), 255);
        EXPECT_NE(dst.memory.all(), before);
    }
}

/// A flag that is set once a call has begun: nothing is drawn, both images are unlocked.
template <typename Resampler>
void expectStoppedOnceBegun(const ResamplerMembers<Resampler>& members) {
    class StoppingImage : public WatchedImage<CCsRaster> {
    public:
        StoppingImage(Resampler& resampler, int type)
            : WatchedImage<CCsRaster>("dst", 5, 5, type, 1.0, false, false), resampler_(resampler) {}

        unsigned char* getOrigin() override {
            std::thread([&] { resampler_.setAbortFlag(1); }).join();
            return WatchedImage<CCsRaster>::getOrigin();
        }

    private:
        Resampler& resampler_;
    };
    const ReportCapture capture;
    for (const auto& member : members) {
        SCOPED_TRACE(narrow(member.name));
        Resampler resampler;
        WatchedImage<CCsRaster> src("src", 5, 5, member.sourceType, 1.0, false, false);
        std::fill_n(src.getOrigin(), 5 * src.getPitch() * bytesOfType(member.sourceType),
                    static_cast<unsigned char>(3));
        StoppingImage dst(resampler, member.destinationType);
        CCs2dTrafo trafo;
        StoppingImage::log().clear();
        EXPECT_EQ(member.call(resampler, src, dst, trafo), member.stops ? 0 : 255);
        EXPECT_EQ(StoppingImage::log(), (std::vector<std::string>{"lock src", "lock dst", "unlock src", "unlock dst"}));
        const unsigned char* shown = dst.CCsRaster::getOrigin();
        EXPECT_EQ(std::all_of(shown, shown + 5 * bytesOfType(member.destinationType), [](int b) { return b == 0; }),
                  member.stops);
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

/// What a stopped call left: the rows from the top are as they should be, one may have been begun, the others hold what
/// they held. In a quarter turn, which is not drawn row by row, each pixel is as it should be or holds what it held.
/// Tells whether the call had drawn something, and not all.
inline void expectDrawnInPart(GuardedImage& dst, GuardedImage& whole, unsigned char held, bool isByRow) {
    const std::ptrdiff_t pixelBytes = bytesOfType(dst.getType());
    const std::ptrdiff_t rowBytes = dst.getWidth() * pixelBytes;
    const std::ptrdiff_t unit = isByRow ? rowBytes : pixelBytes;
    const std::ptrdiff_t units = rowBytes * dst.getHeight() / unit;
    const unsigned char* got = dst.memory.pixels();
    const unsigned char* wanted = whole.memory.pixels();
    const std::vector<unsigned char> untouched(static_cast<std::size_t>(unit), held);
    std::ptrdiff_t drawn = 0;
    for (std::ptrdiff_t i = 0; i < units; ++i, got += unit, wanted += unit) {
        if (std::equal(got, got + unit, wanted)) {
            EXPECT_TRUE(!isByRow || drawn == i) << "row " << i << " was drawn after one that was not";
            ++drawn;
            continue;
        }
        if (isByRow && drawn == i) continue;  // the row that the call was in
        if (!std::equal(got, got + unit, untouched.begin())) {
            ADD_FAILURE() << (isByRow ? "row " : "pixel ") << i << " is neither drawn nor as it was";
            return;
        }
    }
}

/// Raises a resampler's flag when it is asked for its table: the call has begun by then.
template <typename Resampler>
class StoppingMap : public TableMap {
public:
    explicit StoppingMap(Resampler& resampler) : resampler_(resampler) {}
    void copyLut(unsigned int** dst) override {
        resampler_.setAbortFlag(1);
        TableMap::copyLut(dst);
    }

private:
    Resampler& resampler_;
};

/// A flag that is raised between a mapped call's begin and its first pixel, without and with rules above the values.
template <typename Resampler, typename Call>
void expectStoppedByTheMap(const Call& call) {
    const ReportCapture capture;
    Resampler resampler;
    StoppingMap<Resampler> map(resampler);
    GuardedRaster src(4, 4, CCS_GREY12, 4, 1.0);
    GuardedImage dst(4, 4, CCS_RGB8, 4, 1.0);
    const std::vector<unsigned char> before = dst.memory.all();
    std::vector<unsigned char> padding(2, 0xFF);
    for (unsigned char* bits : {static_cast<unsigned char*>(nullptr), padding.data()}) {
        CCs2dTrafo trafo;
        resampler.setAbortFlag(0);
        EXPECT_EQ(call(resampler, src, dst, trafo, &map, bits, static_cast<unsigned char>(9)), 0);
        EXPECT_EQ(dst.memory.all(), before);
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

/// A flag that another thread sets while a member draws. Whether the call still sees it is up to the two threads;
/// either way the picture is as expected: whole, or drawn in part as expectDrawnInPart says.
template <typename Resampler>
void expectStoppedByAnotherThread(const ResamplerMembers<Resampler>& members, double angle) {
    constexpr int size = 500;
    constexpr unsigned char held = 0x69;
    const ReportCapture capture;
    for (const auto& member : members) {
        if (!member.stops) continue;
        SCOPED_TRACE(narrow(member.name));
        GuardedRaster src(40, 40, member.sourceType, 40, 1.0);
        Random random(7);
        src.memory.randomise(random);
        Resampler resampler;
        CCs2dTrafo trafo;
        trafo.rotate(angle);
        GuardedImage whole(size, size, member.destinationType, size, 1.0);
        GuardedImage dst(size, size, member.destinationType, size, 1.0);
        resampler.setAbortFlag(0);
        ASSERT_EQ(member.call(resampler, src, whole, trafo), 255);
        std::fill(dst.memory.all().begin(), dst.memory.all().end(), held);
        std::atomic<bool> running{false};
        std::thread other([&] {
            while (!running) std::this_thread::yield();
            resampler.setAbortFlag(1);
        });
        running = true;
        const int result = member.call(resampler, src, dst, trafo);
        other.join();
        EXPECT_TRUE(result == 255 || result == 0) << result;
        expectDrawnInPart(dst, whole, held, angle != 90.0);
        EXPECT_EQ(src.GetMemBuffer()->getLockCount(), 0);
        EXPECT_EQ(dst.GetMemBuffer()->getLockCount(), 0);
    }
    EXPECT_TRUE(ReportCapture::take().empty());
}

}  // namespace zoltest
