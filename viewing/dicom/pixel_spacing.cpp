#include "viewing/dicom/pixel_spacing.h"

namespace viewing {

PixelSpacing readPixelSpacing(const Attributes& attributes, std::vector<std::string>& notes) {
    for (const DcmTagKey& tag :
         {DCM_PixelSpacing, DCM_ImagerPixelSpacing, DCM_NominalScannedPixelSpacing, DCM_PixelAspectRatio}) {
        const std::vector<double> sides = attributes.numbers(tag);
        if (!attributes.has(tag)) continue;
        // Vertical first in all four of them.
        constexpr double extreme = 100.0;
        if (sides.size() == 2 && sides[0] > 0.0 && sides[1] > 0.0 && sides[0] <= sides[1] * extreme &&
            sides[1] <= sides[0] * extreme) {
            PixelSpacing spacing;
            spacing.ratioYx = sides[0] / sides[1];
            if (tag != DCM_PixelAspectRatio) spacing.width = sides[1];
            spacing.isUncalibrated = tag != DCM_PixelSpacing;
            return spacing;
        }
        notes.push_back("the attribute " + std::string(DcmTag(tag).getTagName()) + " makes no sense and is not used");
    }
    return {};
}

}  // namespace viewing
