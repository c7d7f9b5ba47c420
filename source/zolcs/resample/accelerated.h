// Resampling through the host's image primitives: one plan for all members.
#pragma once

#include "zolcs/ccsraster.h"
#include "zolcs/resample/member.h"
#include "zolcs/resample/memberreports.h"
#include "zolipp/zolipp.h"

#include <type_traits>

class CCs2dTrafo;

namespace zolcs {

/// The primitives for one kind of pixel: grey values of 16 bits, or display colours by their bytes.
template <typename Sample>
struct Primitives {
    static constexpr bool isGrey = std::is_same_v<Sample, Ipp16u>;
    static constexpr int bytes = isGrey ? 2 : 4;                 ///< of a pixel
    static constexpr int type = isGrey ? CCS_GREY12 : CCS_RGB8;  ///< of a raster made for such pixels

    static bool take(int imageType) { return imageType == type || (isGrey && imageType == CCS_GREY16); }

    IppStatus (*resizeCenter)(const Sample*, IppiSize, int, IppiRect, Sample*, int, IppiSize, double, double, double,
                              double, int);
    IppStatus (*mirror)(Sample*, int, IppiSize, IppiAxis);
    IppStatus (*transpose)(const Sample*, int, Sample*, int, IppiSize);
    IppStatus (*warpAffine)(const Sample*, IppiSize, int, IppiRect, Sample*, int, IppiRect, const double (*)[3], int);
};

inline constexpr Primitives<Ipp16u> greyPrimitives{ZOLippiResizeCenter_16u_C1R, ZOLippiMirror_16u_C1IR,
                                                   ZOLippiTranspose_16u_C1R, ZOLippiWarpAffine_16u_C1R};

/// All four bytes of a pixel.
inline constexpr Primitives<Ipp8u> colourPrimitives{ZOLippiResizeCenter_8u_C4R, ZOLippiMirror_8u_C4IR,
                                                    ZOLippiTranspose_8u_C4R, ZOLippiWarpAffine_8u_C4R};

/// The three colour bytes of a pixel; the fourth one stays the background's.
inline constexpr Primitives<Ipp8u> threeColourPrimitives{ZOLippiResizeCenter_8u_AC4R, ZOLippiMirror_8u_AC4IR,
                                                         ZOLippiTranspose_8u_C4R, ZOLippiWarpAffine_8u_AC4R};

/// The report sites of one accelerated member; what they report gives CCS_FAILED.
class AcceleratedReports {
public:
    struct Lines {
        int type;
        int region;
        int nullPointer;
        int status;
        int exception;
    };

    constexpr AcceleratedReports(const wchar_t* module, const wchar_t* member, Lines lines)
        : module_(module),
          lines_(lines),
          nullPointer_(L"NULL pointer of src/dst passed and IPP method failed in ", member, L" method with error ID :"),
          status_(L"IPP method failed in ", member, L" method with error ID :"),
          exception_(L"Exception in function ", member) {}

    [[nodiscard]] int wrongType() const {
        return fail({L"Image type not supported", module_, lines_.type}, 0, CCS_FAILED);
    }
    [[nodiscard]] int noRegion() const {
        return fail({L"There is no common shutter region", module_, lines_.region}, 0, CCS_FAILED);
    }
    [[nodiscard]] int failed(IppStatus status) const {
        const bool isNull = status == ippStsNullPtrErr;
        return fail({isNull ? nullPointer_.characters : status_.characters, module_,
                     isNull ? lines_.nullPointer : lines_.status},
                    status, CCS_FAILED);
    }
    [[nodiscard]] int exception() const {
        return fail({exception_.characters, module_, lines_.exception}, 0, CCS_FAILED);
    }

private:
    const wchar_t* module_;
    Lines lines_;
    JoinedText nullPointer_;
    JoinedText status_;
    JoinedText exception_;
};

/// What one accelerated member is made of.
template <typename Sample>
struct AcceleratedMember {
    AcceleratedReports reports;
    const Primitives<Sample>& primitives;
    int interpolation;  ///< of the primitives
};

/// The arguments of a call.
struct AcceleratedCall {
    CCsRaster& src;
    CCsImage& dst;
    CCs2dTrafo& trafo;  ///< with the sizes of the two images
    unsigned char background;
};

/// Fills the destination: the background, then the view by the member's primitives. CCS_DONE, or CCS_FAILED when
/// nothing was drawn.
template <typename Sample>
int drawAccelerated(const AcceleratedMember<Sample>& member, const AcceleratedCall& call);

/// A member's whole call.
template <typename Sample, typename Resampler>
int runAccelerated(Resampler& resampler, const AcceleratedMember<Sample>& member, const AcceleratedCall& call) {
    using Pixels = Primitives<Sample>;
    if (!Pixels::take(call.src.getType()) || !Pixels::take(call.dst.getType())) return member.reports.wrongType();
    try {
        ResamplerAccess::prepare(resampler, call.src, call.dst, call.trafo);
        return drawAccelerated(member, call);
    } catch (...) {
        return member.reports.exception();
    }
}

}  // namespace zolcs
