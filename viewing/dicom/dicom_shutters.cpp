#include "viewing/dicom/dicom_shutters.h"

#include "viewing/dicom/dicom_geometry.h"
#include "viewing/image/refusal.h"

#include <cstddef>
#include <optional>
#include <utility>

namespace viewing {

Shutters readShutters(const Attributes& attributes, std::vector<std::string>& notes) {
    Shutters shutters;
    // Each row of pixels is tested against every edge.
    constexpr std::size_t maxVertices = 1024;

    const auto number = [&attributes](const DcmTagKey& tag) { return attributes.number(tag); };
    for (const std::string& shape : attributes.texts(DCM_ShutterShape)) {
        bool usable = false;
        if (shape == "RECTANGULAR") {
            const auto left = number(DCM_ShutterLeftVerticalEdge);
            const auto right = number(DCM_ShutterRightVerticalEdge);
            const auto upper = number(DCM_ShutterUpperHorizontalEdge);
            const auto lower = number(DCM_ShutterLowerHorizontalEdge);
            if (left && right && upper && lower) shutters.rectangle = fromEdges(*left, *right, *upper, *lower);
            usable = shutters.rectangle.has_value();
        } else if (shape == "CIRCULAR") {
            const std::vector<double> centre = attributes.numbers(DCM_CenterOfCircularShutter);
            const auto radius = number(DCM_RadiusOfCircularShutter);
            if (centre.size() == 2 && radius) shutters.circle = fromCentre(centre[0], centre[1], *radius);
            usable = shutters.circle.has_value();
        } else if (shape == "POLYGONAL") {
            const std::vector<double> numbers = attributes.numbers(DCM_VerticesOfThePolygonalShutter);
            if (numbers.size() / 2 > maxVertices)
                throw Refusal("has a polygonal shutter of " + std::to_string(numbers.size() / 2) +
                              " vertices; zolview takes up to " + std::to_string(maxVertices));
            if (auto vertices = fromVertices(numbers)) shutters.polygon = std::move(*vertices);
            usable = !shutters.polygon.empty();
        }
        if (!usable) notes.push_back("the shutter '" + shape + "' cannot be read and is not applied");
    }
    shutters.presentationValue = attributes.word(DCM_ShutterPresentationValue).value_or(0);
    return shutters;
}

}  // namespace viewing
