#include "viewing/dicom/dicom_shutters.h"

#include "support/opened.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace viewing;
using zoltest::DicomWriter;
using zoltest::image2x2;
using zoltest::load;
using zoltest::refusal;

TEST(DicomShutters, Shutters) {
    DicomWriter writer = image2x2();
    writer.put(DCM_ShutterShape, "RECTANGULAR\\CIRCULAR\\POLYGONAL");
    writer.put(DCM_ShutterLeftVerticalEdge, "31").put(DCM_ShutterRightVerticalEdge, "330");
    writer.put(DCM_ShutterUpperHorizontalEdge, "41").put(DCM_ShutterLowerHorizontalEdge, "320");
    writer.put(DCM_CenterOfCircularShutter, "180\\185").put(DCM_RadiusOfCircularShutter, "130");
    writer.put(DCM_VerticesOfThePolygonalShutter, "60\\180\\180\\330\\310\\181");
    writer.word(DCM_ShutterPresentationValue, 0x8000);
    const Shutters shutters = load(writer).shutters;
    EXPECT_EQ(shutters.rectangle, (Box{30, 40, 329, 319}));
    EXPECT_EQ(shutters.circle, (Circle{{184, 179}, 130}));
    EXPECT_EQ(shutters.polygon, (std::vector<Point>{{179, 59}, {329, 179}, {180, 309}}));
    EXPECT_EQ(shutters.presentationValue, 0x8000);
}

TEST(DicomShutters, BrokenShuttersAreSaidAndLeftOut) {
    DicomWriter writer = image2x2();
    writer.put(DCM_ShutterShape, "RECTANGULAR\\CIRCULAR\\POLYGONAL\\ROUND");
    writer.put(DCM_ShutterLeftVerticalEdge, "31").put(DCM_ShutterRightVerticalEdge, "30");
    writer.put(DCM_ShutterUpperHorizontalEdge, "41").put(DCM_ShutterLowerHorizontalEdge, "320");
    writer.put(DCM_CenterOfCircularShutter, "180\\185").put(DCM_RadiusOfCircularShutter, "0");
    writer.put(DCM_VerticesOfThePolygonalShutter, "60\\180\\180\\330\\310");
    const StoredImage image = load(writer);
    EXPECT_FALSE(image.shutters.any());
    EXPECT_EQ(image.notes.size(), 4U);
}

TEST(DicomShutters, EndlessPolygonsAreRefused) {
    DicomWriter writer = image2x2();
    std::string vertices = "1\\1";
    for (int i = 0; i < 1024; ++i) vertices += "\\1\\1";
    writer.put(DCM_ShutterShape, "POLYGONAL").put(DCM_VerticesOfThePolygonalShutter, vertices);
    EXPECT_EQ(refusal(writer), "has a polygonal shutter of 1025 vertices; zolview takes up to 1024");
}

}  // namespace
