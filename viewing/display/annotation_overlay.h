// Annotations as overlays of the drawing library.
#pragma once

#include "viewing/annotations/annotations.h"
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsgroup.h"

#include <string>
#include <vector>

namespace viewing {

/// The render modes of the library that make a difference here.
inline constexpr int screenMode = 1;
inline constexpr int printerMode = 2;

/// What annotations are drawn on. The view must outlive the overlay.
struct Canvas {
    CCs2dTrafo& view;            ///< image to picture
    double imageRatioYx = 1.0;   ///< height of an image pixel divided by its width
    double pictureAspect = 1.0;  ///< width of the picture divided by its height, as they are seen
};

/// A group with one overlay for each annotation, in their order, each in its own colour. Owns the overlays and the
/// strings to which the texts refer.
class AnnotationOverlay {
public:
    /// Refuses a text that is not UTF-8.
    AnnotationOverlay(const std::vector<Annotation>& annotations, const Canvas& canvas);

    [[nodiscard]] CCsGroup* group() { return &group_; }

private:
    void add(const Annotation& annotation, const Canvas& canvas);

    std::vector<std::wstring> texts_;
    CCsGroup group_;
};

}  // namespace viewing
