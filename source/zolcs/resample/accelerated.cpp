#include "zolcs/resample/accelerated.h"

#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsimageutils.h"
#include "zolcs/pixels/imagelock.h"
#include "zolcs/pixels/imageview.h"
#include "zolcs/view/viewturn.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace zolcs {

namespace {

/// The view as the primitives take it.
class View {
public:
    explicit View(const CCs2dTrafo& trafo) : trafo_(trafo) {
        double angle = 0.0;
        int mirrored = 0;
        double scale = 1.0;
        double panX = 0.0;
        double panY = 0.0;
        trafo_.getOperations(angle, mirrored, scale, panX, panY);
        turn_ = turnOf(angle);
        mirrored_ = mirrored != 0;
        trafo_.getImgToDsp(coefficients[0][0], coefficients[1][0], coefficients[0][1], coefficients[1][1],
                           coefficients[0][2], coefficients[1][2]);
    }

    [[nodiscard]] Turn turn() const { return turn_; }
    [[nodiscard]] bool isTransposed() const { return zolcs::isTransposed(turn_); }

    /// Whether the destination is mirrored once it is drawn, and about which axis.
    [[nodiscard]] bool isMirroredAfterwards() const { return mirrored_ || turn_ == Turn::Half; }
    [[nodiscard]] IppiAxis axisAfterwards() const {
        if (turn_ != Turn::Half) return ippAxsVertical;
        return mirrored_ ? ippAxsHorizontal : ippAxsBoth;
    }

    /// Display pixels per pixel of the image that is resized, which may be the transposed source.
    [[nodiscard]] double factorX() const { return std::abs(coefficients[0][isTransposed() ? 1 : 0]); }
    [[nodiscard]] double factorY() const { return std::abs(coefficients[1][isTransposed() ? 0 : 1]); }

    /// The point of the image that is resized which belongs on the middle of the destination, counted in whole pixels.
    /// What is mirrored afterwards is drawn on the other side of the middle first; with an odd size that is another
    /// pixel.
    [[nodiscard]] CCsPointDouble centre(const IppiSize& source, const IppiSize& destination) {
        const bool flipsX = isMirroredAfterwards() && axisAfterwards() != ippAxsHorizontal;
        const bool flipsY = isMirroredAfterwards() && axisAfterwards() != ippAxsVertical;
        const int halfX = destination.width / 2;
        const int halfY = destination.height / 2;
        const CCsPointDouble middle(flipsX ? destination.width - halfX : halfX,
                                    flipsY ? destination.height - halfY : halfY);
        const CCsPointDouble point = CCsImageUtils::dspToImgD(trafo_, middle);
        if (turn_ == Turn::Quarter) return {source.height - point.y, point.x};
        if (turn_ == Turn::ThreeQuarters) return {point.y, source.width - point.x};
        return point;
    }

    double coefficients[2][3] = {};  ///< image to display

private:
    CCs2dTrafo trafo_;
    Turn turn_ = Turn::Oblique;
    bool mirrored_ = false;
};

/// Bytes from row to row; 0, which every primitive refuses, where they do not fit.
int stepOf(int pitch, int bytes) {
    const std::int64_t step = std::int64_t{pitch} * bytes;
    return step <= std::numeric_limits<int>::max() ? static_cast<int>(step) : 0;
}

/// An image's memory as the primitives take it.
template <typename Sample>
struct Pixels {
    Pixels(const CCsImage& image, unsigned char* origin)
        : first(reinterpret_cast<Sample*>(origin)),
          step(stepOf(image.getPitch(), Primitives<Sample>::bytes)),
          size{image.getWidth(), image.getHeight()} {}

    Sample* first;
    int step;
    IppiSize size;
};

template <typename Pixel>
void fill(unsigned char* origin, const CCsImage& image, Pixel value) {
    const ImageView<Pixel> view(origin, image.getPitch());
    for (int y = 0; y < image.getHeight(); ++y) std::fill_n(view.row(y), std::max(image.getWidth(), 0), value);
}

/// Grey as it is, colour with the same value in all three bytes.
template <typename Sample>
void fillBackground(unsigned char* origin, const CCsImage& image, unsigned char background) {
    if (origin == nullptr) return;
    if constexpr (Primitives<Sample>::isGrey) {
        fill<std::uint16_t>(origin, image, background);
    } else {
        fill<std::uint32_t>(origin, image, background * 0x010101U);
    }
}

/// Cubic interpolation overshoots, and the primitives know of no 12-bit values: what is too large for one would lose
/// its upper bits in a table.
void limitTo12Bits(unsigned char* origin, const CCsImage& image) {
    constexpr std::uint16_t largest = 0x0FFF;
    const ImageView<std::uint16_t> view(origin, image.getPitch());
    for (int y = 0; y < image.getHeight(); ++y) {
        std::uint16_t* const row = view.row(y);
        for (int x = 0; x < image.getWidth(); ++x) row[x] = std::min(row[x], largest);
    }
}

template <typename Sample>
IppStatus resize(const AcceleratedMember<Sample>& member, View& view, const Pixels<Sample>& source,
                 const IppiRect& region, const CCsPointDouble& centre, const Pixels<Sample>& destination) {
    const Primitives<Sample>& primitives = member.primitives;
    const IppStatus status = primitives.resizeCenter(source.first, source.size, source.step, region, destination.first,
                                                     destination.step, destination.size, view.factorX(), view.factorY(),
                                                     centre.x, centre.y, member.interpolation);
    if (status != ippStsNoErr || !view.isMirroredAfterwards()) return status;
    return primitives.mirror(destination.first, destination.step, destination.size, view.axisAfterwards());
}

/// A region of the source after the turn.
IppiRect turned(const IppiRect& region, const IppiSize& source, Turn turn) {
    if (turn == Turn::Quarter) {
        return {source.height - region.y - region.height, region.x, region.height, region.width};
    }
    return {region.y, source.width - region.x - region.width, region.height, region.width};
}

/// A quarter turn by transposing the source and mirroring what comes of it.
template <typename Sample>
IppStatus resizeTurned(const AcceleratedMember<Sample>& member, View& view, const Pixels<Sample>& source,
                       const IppiRect& region, const Pixels<Sample>& destination) {
    if (source.first == nullptr || destination.first == nullptr) return ippStsNullPtrErr;
    const Primitives<Sample>& primitives = member.primitives;
    CCsRaster temporary(source.size.height, source.size.width, Primitives<Sample>::type, 1.0, false, false);
    const ImageLock lock(temporary);
    const Pixels<Sample> transposed(temporary, lock.origin());
    IppStatus status = primitives.transpose(source.first, source.step, transposed.first, transposed.step, source.size);
    if (status != ippStsNoErr) return status;
    status = primitives.mirror(transposed.first, transposed.step, transposed.size,
                               view.turn() == Turn::Quarter ? ippAxsVertical : ippAxsHorizontal);
    if (status != ippStsNoErr) return status;
    return resize(member, view, transposed, turned(region, source.size, view.turn()),
                  view.centre(source.size, destination.size), destination);
}

template <typename Sample>
IppStatus draw(const AcceleratedMember<Sample>& member, View& view, const Pixels<Sample>& source,
               const IppiRect& region, const Pixels<Sample>& destination) {
    if (view.turn() == Turn::Oblique) {
        const IppiRect whole{0, 0, destination.size.width, destination.size.height};
        return member.primitives.warpAffine(source.first, source.size, source.step, region, destination.first,
                                            destination.step, whole, view.coefficients, member.interpolation);
    }
    if (view.isTransposed()) return resizeTurned(member, view, source, region, destination);
    return resize(member, view, source, region, view.centre(source.size, destination.size), destination);
}

}  // namespace

template <typename Sample>
int drawAccelerated(const AcceleratedMember<Sample>& member, const AcceleratedCall& call) {
    if (!CCsImageUtils::isIPPCompatible(&call.src)) return CCS_FAILED;
    RECT bounds{0, 0, call.src.getWidth(), call.src.getHeight()};
    if (!CCsImageUtils::getDisplayShutterBounds(bounds, call.src, call.trafo, false)) return member.reports.noRegion();
    const IppiRect region{static_cast<int>(bounds.left), static_cast<int>(bounds.top),
                          static_cast<int>(bounds.right - bounds.left), static_cast<int>(bounds.bottom - bounds.top)};

    View view(call.trafo);
    IppStatus status = ippStsNoErr;
    {
        const ImagePairLock lock(call.src, call.dst);
        fillBackground<Sample>(lock.destination(), call.dst, call.background);
        status = draw(member, view, Pixels<Sample>(call.src, lock.source()), region,
                      Pixels<Sample>(call.dst, lock.destination()));
        const bool mayOvershoot = member.interpolation == IPPI_INTER_CUBIC && call.src.getType() == CCS_GREY12;
        if (status == ippStsNoErr && mayOvershoot) limitTo12Bits(lock.destination(), call.dst);
    }
    return status == ippStsNoErr ? CCS_DONE : member.reports.failed(status);
}

template int drawAccelerated<Ipp16u>(const AcceleratedMember<Ipp16u>& member, const AcceleratedCall& call);
template int drawAccelerated<Ipp8u>(const AcceleratedMember<Ipp8u>& member, const AcceleratedCall& call);

}  // namespace zolcs
