#include "viewing/annotations/annotations.h"

#include "support/dicom_writer.h"
#include "viewing/image/stored_image.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/folders.h"

namespace {

using namespace viewing;

/// The only annotation of a file that holds this object.
Annotation parseOne(const std::string& figure) {
    const std::vector<Annotation> all = parseAnnotations(R"({"annotations": [)" + figure + "]}");
    EXPECT_EQ(all.size(), 1U);
    return all.at(0);
}

std::string refusalOf(const std::string& json) {
    try {
        parseAnnotations(json);
    } catch (const Refusal& refusal) {
        return refusal.what();
    }
    return "";
}

std::string refusalOfOne(const std::string& figure) { return refusalOf(R"({"annotations": [)" + figure + "]}"); }

TEST(Annotations, DefaultsOfALine) {
    const Annotation line = parseOne(R"({"figure": "line", "points": [[1, 2.5], [-3, 4e2]]})");
    EXPECT_EQ(line.kind, FigureKind::Line);
    EXPECT_EQ(line.space, CoordinateSpace::Image);
    EXPECT_EQ(line.points, (std::vector<Position>{{1.0, 2.5}, {-3.0, 400.0}}));
    EXPECT_EQ(line.colour, 0xFFFF00U);
    EXPECT_EQ(line.penStyle, 0);
    EXPECT_FALSE(line.filled);
    EXPECT_FALSE(line.closed);
    EXPECT_TRUE(line.shadow);
}

TEST(Annotations, EveryProperty) {
    const Annotation polyline = parseOne(R"({"figure": "polyline", "coordinates": "display", "colour": "#12aBcD",
        "pen": "dash-dot-dot", "closed": true, "filled": true, "shadow": false, "points": [[0, 0], [1, 0], [1, 1]]})");
    EXPECT_EQ(polyline.space, CoordinateSpace::Display);
    EXPECT_EQ(polyline.colour, 0x12ABCDU);
    EXPECT_EQ(polyline.penStyle, 4);
    EXPECT_TRUE(polyline.closed);
    EXPECT_TRUE(polyline.filled);
    EXPECT_FALSE(polyline.shadow);

    const Annotation ellipse = parseOne(
        R"({"figure": "ellipse", "points": [[5, 6]], "radii": [7, 8], "turn": -9, "coordinates": "normalised"})");
    EXPECT_EQ(ellipse.space, CoordinateSpace::Normalised);
    EXPECT_EQ(ellipse.length, 7.0);
    EXPECT_EQ(ellipse.across, 8.0);
    EXPECT_EQ(ellipse.degrees, -9.0);

    EXPECT_EQ(parseOne(R"({"figure": "square", "points": [[0, 0]], "side": 3})").length, 3.0);
    EXPECT_EQ(parseOne(R"({"figure": "circle", "points": [[0, 0]], "radius": 4})").length, 4.0);

    EXPECT_EQ(parseOne(R"({"figure": "arrow", "points": [[0, 0], [9, 9]]})").length, 0.0);
    EXPECT_EQ(parseOne(R"({"figure": "arrow", "points": [[0, 0], [9, 9]], "head": 5})").length, 5.0);
    EXPECT_TRUE(parseOne(R"({"figure": "curve", "points": [[0, 0], [9, 9], [0, 9]], "closed": true})").closed);

    const Annotation text = parseOne(R"({"figure": "text", "points": [[0, 0]], "text": "5 µm", "align": "right"})");
    EXPECT_EQ(text.text, "5 µm");
    EXPECT_EQ(text.alignment, Alignment::Right);
}

TEST(Annotations, RefusesWhatIsNotTheDocument) {
    const std::string shape = R"(must be {"annotations": [...]} with at most 10000 of them)";
    EXPECT_EQ(refusalOf(""), "is not JSON; the error is in line 1");
    EXPECT_EQ(refusalOf("{\n\n,}"), "is not JSON; the error is in line 3");
    EXPECT_EQ(refusalOf("\"\xFF\""), "is not JSON; the error is in line 1");
    EXPECT_EQ(refusalOf(std::string(200000, '[')), "is not JSON; the error is in line 1");
    EXPECT_EQ(refusalOf("[]"), shape);
    EXPECT_EQ(refusalOf("{}"), shape);
    EXPECT_EQ(refusalOf(R"({"annotations": 5})"), shape);
    EXPECT_EQ(refusalOf(R"({"annotations": [], "more": 1})"), shape);
    std::string many = "1";
    for (int i = 0; i < 10000; ++i) many += ",1";
    EXPECT_EQ(refusalOf(R"({"annotations": [)" + many + "]}"), shape);
    EXPECT_EQ(refusalOf(R"({"annotations": [1e999]})"), "holds a number that is too large");
    EXPECT_TRUE(parseAnnotations(R"({"annotations": []})").empty());
}

TEST(Annotations, RefusesFiguresThatAreNotAsDocumented) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"7", R"(annotation 1: must be {"figure": ...})"},
        {"{}", R"(annotation 1: must be {"figure": ...})"},
        {R"({"figure": "star"})",
         "annotation 1: \"figure\" must be one of: line, arrow, angle, polyline, rectangle, square, circle, ellipse, "
         "curve, text"},
        {R"({"figure": 5})",
         "annotation 1: \"figure\" must be one of: line, arrow, angle, polyline, rectangle, square, circle, ellipse, "
         "curve, text"},
        {R"({"figure": "line"})", "annotation 1 (line): needs \"points\""},
        {R"({"figure": "line", "points": [[1, 2]]})", "annotation 1 (line): \"points\" must be a list of 2 [x, y]"},
        {R"({"figure": "line", "points": [[1, 2], [1, 2], [1, 2]]})",
         "annotation 1 (line): \"points\" must be a list of 2 [x, y]"},
        {R"({"figure": "polyline", "points": [[1, 2]]})",
         "annotation 1 (polyline): \"points\" must be a list of 2 to 10000 [x, y]"},
        {R"({"figure": "arrow", "points": [[1, 2]]})", "annotation 1 (arrow): \"points\" must be a list of 2 [x, y]"},
        {R"({"figure": "arrow", "points": [[1, 2], [3, 4]], "head": 0})",
         "annotation 1 (arrow): \"head\" must be a number above 0 and up to 1000000"},
        {R"({"figure": "curve", "points": [[1, 2], [3, 4], [5, 6]], "filled": true})",
         "annotation 1 (curve): has no property \"filled\""},
        {R"({"figure": "line", "points": "here"})", "annotation 1 (line): \"points\" must be a list of 2 [x, y]"},
        {R"({"figure": "line", "points": [[1, 2], [1]]})", "annotation 1 (line): a point must be [x, y]"},
        {R"({"figure": "line", "points": [[1, 2], 5]})", "annotation 1 (line): a point must be [x, y]"},
        {R"({"figure": "line", "points": [[1, 2], [1, "2"]]})",
         "annotation 1 (line): a coordinate must be a number from -1000000 to 1000000"},
        {R"({"figure": "line", "points": [[1, 2], [1, 1e7]]})",
         "annotation 1 (line): a coordinate must be a number from -1000000 to 1000000"},
        {R"({"figure": "circle", "points": [[1, 2]]})", "annotation 1 (circle): needs \"radius\""},
        {R"({"figure": "circle", "points": [[1, 2]], "radius": 0})",
         "annotation 1 (circle): \"radius\" must be a number above 0 and up to 1000000"},
        {R"({"figure": "circle", "points": [[1, 2]], "radius": 99999999999999999999})",
         "annotation 1 (circle): \"radius\" must be a number above 0 and up to 1000000"},
        {R"({"figure": "ellipse", "points": [[1, 2]], "radii": [1]})",
         "annotation 1 (ellipse): \"radii\" must be [along, across]"},
        {R"({"figure": "square", "points": [[1, 2]], "side": true})",
         "annotation 1 (square): \"side\" must be a number above 0 and up to 1000000"},
        {R"({"figure": "text", "points": [[1, 2]]})", "annotation 1 (text): needs \"text\""},
        {R"({"figure": "text", "points": [[1, 2]], "text": ""})",
         "annotation 1 (text): \"text\" must be one line of 1 to 1000 bytes"},
        {R"({"figure": "text", "points": [[1, 2]], "text": "two\nlines"})",
         "annotation 1 (text): \"text\" must be one line of 1 to 1000 bytes"},
        {R"({"figure": "text", "points": [[1, 2]], "text": "x", "filled": true})",
         "annotation 1 (text): has no property \"filled\""},
        {R"({"figure": "text", "points": [[1, 2]], "text": "x", "align": "middle"})",
         "annotation 1 (text): \"align\" must be one of: left, centre, right"},
        {R"({"figure": "line", "points": [[1, 2], [3, 4]], "color": "#000000"})",
         "annotation 1 (line): has no property \"color\""},
        {R"({"figure": "line", "points": [[1, 2], [3, 4]], "colour": "red"})",
         "annotation 1 (line): \"colour\" must be \"#RRGGBB\", six hexadecimal digits"},
        {R"({"figure": "line", "points": [[1, 2], [3, 4]], "shadow": 1})",
         "annotation 1 (line): \"shadow\" must be true or false"},
        {R"({"figure": "line", "points": [[1, 2], [3, 4]], "pen": "wavy"})",
         "annotation 1 (line): \"pen\" must be one of: solid, dash, dot, dash-dot, dash-dot-dot"},
        {R"({"figure": "line", "points": [[1, 2], [3, 4]], "coordinates": "mm"})",
         "annotation 1 (line): \"coordinates\" must be one of: image, display, normalised"},
    };
    for (const auto& [figure, expected] : cases) EXPECT_EQ(refusalOfOne(figure), expected) << figure;
    EXPECT_EQ(refusalOfOne(R"({"figure": "line", "points": [[1, 2], [3, 4]]}, 5)").substr(0, 12), "annotation 2");
}

TEST(Annotations, FilesThatCannotBeRead) {
    const zoltest::TemporaryFolder folder;
    try {
        readAnnotations(folder.file("none.json"));
        FAIL();
    } catch (const Refusal& refusal) {
        EXPECT_STREQ(refusal.what(), "cannot be read: No such file or directory");
    }
    EXPECT_THROW(readAnnotations(folder.file("")), Refusal);
    std::ofstream(folder.file("large.json")) << std::string((16 << 20) + 1, ' ');
    EXPECT_THROW(readAnnotations(folder.file("large.json")), Refusal);
}

TEST(Annotations, TheExampleHasEveryKindAndSpace) {
    std::vector<bool> kinds(10);
    std::vector<bool> spaces(3);
    std::vector<bool> penStyles(5);
    for (const Annotation& annotation :
         readAnnotations((zoltest::sourceFolder() / "examples/annotations/all-figures.json").string())) {
        kinds[static_cast<std::size_t>(annotation.kind)] = true;
        spaces[static_cast<std::size_t>(annotation.space)] = true;
        penStyles[static_cast<std::size_t>(annotation.penStyle)] = true;
    }
    EXPECT_EQ(kinds, std::vector<bool>(10, true));
    EXPECT_EQ(spaces, std::vector<bool>(3, true));
    EXPECT_EQ(penStyles, std::vector<bool>(5, true));
}

}  // namespace
