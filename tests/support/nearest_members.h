// The members of CCsNearest, with arguments and restatements.
#pragma once

#include "reference/nearest_reference.h"
#include "support/resampler_members.h"
#include "zolcs/ccsnearest.h"

namespace zoltest {

template <std::size_t Size>
std::array<unsigned char, Size> tableOf(unsigned factor) {
    std::array<unsigned char, Size> table{};
    for (std::size_t i = 0; i < Size; ++i) table[i] = static_cast<unsigned char>(i * factor + factor);
    return table;
}

struct NearestTables {
    std::array<unsigned char, 256> a = tableOf<256>(7);
    std::array<unsigned char, 256> b = tableOf<256>(13);
    std::array<unsigned char, 256> c = tableOf<256>(29);
    std::array<unsigned char, 4096> deep = tableOf<4096>(11);
};

inline NearestTables& nearestTables() {
    static NearestTables tables;
    return tables;
}

/// Both types have to be these.
inline std::function<bool(int, int)> bothTypes(int source, int destination) {
    return [=](int from, int to) { return from == source && to == destination; };
}

/// One of the two types is enough, as long as the pixels have the right sizes.
inline std::function<bool(int, int)> eitherType(int source, int destination) {
    return [=](int from, int to) {
        const bool sizes = bytesOfType(from) == bytesOfType(source) && bytesOfType(to) == bytesOfType(destination);
        return sizes && (from == source || to == destination);
    };
}

inline ResamplerMembers<CCsNearest> nearestMembers() {
    using zolref::Pixels;
    NearestTables& t = nearestTables();
    ResamplerMembers<CCsNearest> list;
    const auto copy = [](std::uint64_t background) {
        return [background](const double* m, const Pixels& src, const Pixels& dst) {
            zolref::nearestCopy(m, src, dst, background);
        };
    };
    // Most members have no result.
    const auto quiet = [](auto call) {
        return [call](CCsNearest& n, CCsRaster& s, CCsImage& d, CCs2dTrafo& v) {
            call(n, s, d, v);
            return 255;
        };
    };
    using N = CCsNearest;
    using R = CCsRaster;
    using I = CCsImage;
    using T = CCs2dTrafo;
    list.push_back({L"nearestGrey12Grey12", CCS_GREY12, CCS_GREY12, bothGrey12, false,
                    [](N& n, R& s, I& d, T& v) { return n.nearestGrey12Grey12(s, d, v, 0xBEEF, true); }, nullptr,
                    copy(0xBEEF), 0});
    for (const int type : {CCS_GREY12, CCS_GREY16}) {
        list.push_back(
            {L"nearestGrey12IndexMap", type, CCS_RGB8, greyToDisplay, false,
             quiet([](N& n, R& s, I& d, T& v) { n.nearestGrey12IndexMap(s, d, v, &sharedMap(), nullptr, 0xA5); }),
             nullptr,
             [type](const double* m, const Pixels& src, const Pixels& dst) {
                 zolref::nearestGrey(m, src, dst, plainGreyView(type == CCS_GREY12, 0xA5));
             },
             255});
    }
    list.push_back({L"nearestGrey8Grey8", CCS_GREY8, CCS_GREY8, eitherType(CCS_GREY8, CCS_GREY8), false,
                    quiet([](N& n, R& s, I& d, T& v) { n.nearestGrey8Grey8(s, d, v, 0xA5); }), nullptr, copy(0xA5),
                    255});
    list.push_back({L"nearestGrey8IndexMap", CCS_GREY8, CCS_INDEX8, eitherType(CCS_GREY8, CCS_INDEX8), false,
                    quiet([&t](N& n, R& s, I& d, T& v) { n.nearestGrey8IndexMap(s, d, v, t.a.data(), 0xA5); }),
                    quiet([](N& n, R& s, I& d, T& v) { n.nearestGrey8IndexMap(s, d, v, nullptr, 0xA5); }),
                    [&t](const double* m, const Pixels& src, const Pixels& dst) {
                        zolref::nearestGrey8Table(m, src, dst, t.a.data(), 0xA5);
                    },
                    255});
    list.push_back({L"nearestIndexIndex", CCS_INDEX8, CCS_INDEX8, bothTypes(CCS_INDEX8, CCS_INDEX8), false,
                    quiet([](N& n, R& s, I& d, T& v) { n.nearestIndexIndex(s, d, v, 0x5A); }), nullptr, copy(0x5A),
                    255});
    list.push_back({L"nearestRgb12Rgb12", CCS_RGB12, CCS_RGB12, eitherType(CCS_RGB12, CCS_RGB12), false,
                    quiet([](N& n, R& s, I& d, T& v) { n.nearestRgb12Rgb12(s, d, v, 0x0123456789ABCDEFULL); }), nullptr,
                    copy(0x0123456789ABCDEFULL), 255});
    list.push_back(
        {L"nearestRgb12Rgb8Map", CCS_RGB12, CCS_RGB8, eitherType(CCS_RGB12, CCS_RGB8), false,
         quiet([&t](N& n, R& s, I& d, T& v) { n.nearestRgb12Rgb8Map(s, d, v, t.deep.data(), 0x89ABCDEFUL); }),
         quiet([](N& n, R& s, I& d, T& v) { n.nearestRgb12Rgb8Map(s, d, v, nullptr, 0); }),
         [&t](const double* m, const Pixels& src, const Pixels& dst) {
             zolref::nearestRgb12Table(m, src, dst, t.deep.data(), 0x89ABCDEF);
         },
         255});
    list.push_back(
        {L"nearestRgb8Rgb24Save", CCS_RGB8, CCS_RGB24, bothTypes(CCS_RGB8, CCS_RGB24), false,
         quiet([](N& n, R& s, I& d, T& v) { n.nearestRgb8Rgb24Save(s, d, v, 0xC3); }), nullptr,
         [](const double* m, const Pixels& src, const Pixels& dst) { zolref::nearestRgb24Save(m, src, dst, 0xC3); },
         255});
    list.push_back({L"nearestRgb8Rgb8", CCS_RGB8, CCS_RGB8, bothRgb8, false,
                    [](N& n, R& s, I& d, T& v) { return n.nearestRgb8Rgb8(s, d, v, 0x89ABCDEFUL); }, nullptr,
                    copy(0x89ABCDEF), 0});
    list.push_back({L"nearestRgb8Rgb8Map", CCS_RGB8, CCS_RGB8, bothRgb8, false,
                    quiet([&t](N& n, R& s, I& d, T& v) { n.nearestRgb8Rgb8Map(s, d, v, t.a.data(), 0x89ABCDEFUL); }),
                    quiet([](N& n, R& s, I& d, T& v) { n.nearestRgb8Rgb8Map(s, d, v, nullptr, 0); }),
                    [&t](const double* m, const Pixels& src, const Pixels& dst) {
                        zolref::nearestRgb8Tables(m, src, dst, t.a.data(), t.a.data(), t.a.data(), 0x89ABCDEF);
                    },
                    255});
    for (const int missing : {0, 1, 2}) {
        list.push_back({L"nearestRgb8Rgb8MapSeperate", CCS_RGB8, CCS_RGB8, bothRgb8, false,
                        quiet([&t](N& n, R& s, I& d, T& v) {
                            n.nearestRgb8Rgb8MapSeperate(s, d, v, t.a.data(), t.b.data(), t.c.data(), 0x11, 0x22, 0x33);
                        }),
                        quiet([&t, missing](N& n, R& s, I& d, T& v) {
                            n.nearestRgb8Rgb8MapSeperate(s, d, v, missing == 0 ? nullptr : t.a.data(),
                                                         missing == 1 ? nullptr : t.b.data(),
                                                         missing == 2 ? nullptr : t.c.data(), 0x11, 0x22, 0x33);
                        }),
                        [&t](const double* m, const Pixels& src, const Pixels& dst) {
                            // Blue is byte 0: its table is the third one.
                            zolref::nearestRgb8Tables(m, src, dst, t.c.data(), t.b.data(), t.a.data(), 0x112233);
                        },
                        255});
    }
    return list;
}

}  // namespace zoltest
