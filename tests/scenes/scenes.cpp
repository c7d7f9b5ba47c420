#include "scenes/scenes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <utility>

#include "support/capability_guard.h"
#include "zolcs/ccs2dtrafo.h"
#include "zolcs/ccsbicubic.h"
#include "zolcs/ccsbilinear.h"
#include "zolcs/ccscolorman.h"
#include "zolcs/ccsedgeenhancement.h"
#include "zolcs/ccsframe.h"
#include "zolcs/ccsmap.h"
#include "zolcs/ccsnearest.h"
#include "zolcs/ccsraster.h"

namespace zolscenes {

namespace {

constexpr int sourceWidth = 97;
constexpr int sourceHeight = 71;

/// A letter F of 5 x 7 cells: no rotation or mirroring maps it onto itself.
bool insideLetter(int x, int y, int cell) {
    static constexpr const char* rows[7] = {"#####", "#....", "#....", "###..", "#....", "#....", "#...."};
    const int column = x / cell;
    const int row = y / cell;
    return x >= 0 && y >= 0 && column < 5 && row < 7 && rows[row][column] == '#';
}

/// Stored value of the test picture: rings that grow finer to the lower right, a wedge on top, a letter.
int storedValue(int x, int y) {
    if (x == 0 || y == 0 || x == sourceWidth - 1 || y == sourceHeight - 1) return 4095;
    if (insideLetter(x - 8, y - 16, 4)) return 3600;
    if (y < 10) return x * 4095 / (sourceWidth - 1);
    const int phase = (x * x + y * y) >> 2;
    const int triangle = phase & 1023;
    return 300 + 3 * (triangle < 512 ? triangle : 1023 - triangle);
}

/// Everything that one scene needs, with the plain view as the start.
struct Stage {
    explicit Stage(double ratio = 1.0)
        : raster(sourceWidth, sourceHeight, CCS_GREY12, ratio, false, false),
          map(MapFactory::CreateMap(MapFactory::Grey12)) {
        auto* line = reinterpret_cast<std::uint16_t*>(raster.getOrigin());
        for (int y = 0; y < sourceHeight; ++y, line += raster.getPitch()) {
            for (int x = 0; x < sourceWidth; ++x) line[x] = static_cast<std::uint16_t>(storedValue(x, y));
        }
        raster.unlock();
        palette.getColorMap(colors);
        map->setColorMapIndex(&colors);
        map->setWindow(2048, 4096);
        grey().setOverlayColors(planeColors, groupColors);
    }

    IGreyMap& grey() { return static_cast<IGreyMap&>(*map); }

    /// Adds a plane that shows a letter F at the given place (0-based).
    void addPlane(int x, int y, int cell) {
        const int columns = 5 * cell;
        const int rows = 7 * cell;
        std::vector<unsigned char> bits((static_cast<std::size_t>(columns * rows) + 7) / 8);
        for (int r = 0; r < rows; ++r) {
            for (int c = 0; c < columns; ++c) {
                const int k = r * columns + c;
                if (insideLetter(c, r, cell)) {
                    bits[static_cast<std::size_t>(k / 8)] =
                        static_cast<unsigned char>(bits[static_cast<std::size_t>(k / 8)] | (1U << (k % 8)));
                }
            }
        }
        CCs60XXOverlay plane;
        plane.originX = x + 1;
        plane.originY = y + 1;
        plane.rows = static_cast<std::uint16_t>(rows);
        plane.columns = static_cast<std::uint16_t>(columns);
        plane.data = planes.emplace_back(std::move(bits)).data();
        raster.add60XXOverlayInfo(plane);
    }

    /// Marks embedded overlay bits along a diagonal, one of the four bits after the other.
    void embedDiagonal() {
        auto* line = reinterpret_cast<std::uint16_t*>(raster.getOrigin());
        for (int y = 0; y < sourceHeight; ++y, line += raster.getPitch()) {
            line[y] = static_cast<std::uint16_t>(line[y] | (0x1000U << (y / 4 % 4)));
        }
        raster.unlock();
        raster.setEmbeddedOverlayStatus(true);
    }

    void padCorner() {
        padding.assign((static_cast<std::size_t>(sourceWidth * sourceHeight) + 7) / 8, 0);
        for (int y = 0; y < sourceHeight; ++y) {
            for (int x = 0; x < sourceWidth; ++x) {
                const int k = y * sourceWidth + x;
                if (x + y < 40) {
                    padding[static_cast<std::size_t>(k / 8)] =
                        static_cast<unsigned char>(padding[static_cast<std::size_t>(k / 8)] | (1U << (k % 8)));
                }
            }
        }
    }

    unsigned char* paddingBits() { return padding.empty() ? nullptr : padding.data(); }

    Picture resample(int width, int height, unsigned char background = 40) {
        CCsFrame frame(width, height);
        if (frame.init() != 255) throw std::runtime_error("no frame");
        frame.clear();
        CCsNearest().nearestGrey12IndexMap(raster, frame, trafo, map.get(), paddingBits(), background);
        return take(frame, width, height);
    }

    Picture mapWhole(bool wholeImageAllowed) {
        CCsFrame frame(sourceWidth, sourceHeight);
        if (frame.init() != 255) throw std::runtime_error("no frame");
        trafo.setSizes(raster, frame);
        const RECT all = {0, 0, sourceWidth, sourceHeight};
        if (map->mapRaster(raster, frame, all, wholeImageAllowed, paddingBits(), &trafo) != 255) {
            throw std::runtime_error("mapping refused");
        }
        return take(frame, sourceWidth, sourceHeight);
    }

    static Picture take(CCsFrame& frame, int width, int height) {
        Picture picture{width, height, std::vector<std::uint32_t>(static_cast<std::size_t>(width * height))};
        const unsigned char* line = frame.getOrigin();
        for (int y = 0; y < height; ++y, line += frame.getPitch() * 4) {
            std::memcpy(&picture.pixels[static_cast<std::size_t>(y * width)], line,
                        static_cast<std::size_t>(width) * 4);
        }
        frame.unlock();
        return picture;
    }

    CCsRaster raster;
    CCs2dTrafo trafo;
    CCsColorMan palette;
    CCsColorMapT colors;
    std::unique_ptr<IMap> map;
    std::vector<std::vector<unsigned char>> planes;
    std::vector<unsigned char> padding;
    unsigned int planeColors[16] = {0,        0xFF0000, 0x00FF00, 0xFF8000, 0x0000FF, 0x8080FF, 0x80FF80, 0xFF8080,
                                    0xFFFF00, 0x00FFFF, 0xFF00FF, 0xC0C000, 0x00C0C0, 0xC000C0, 0x808000, 0x008080};
    unsigned int groupColors[16] = {0xFFD000, 0x00D0FF, 0xFF40FF, 0x40FF40, 0xFF4040, 0x4040FF, 0xC0C0C0, 0x808080,
                                    0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF};
};

/// One of the eight orientations of the plane.
Picture orientation(int quarterTurns, bool mirrored, double degreesMore, double zoom) {
    Stage stage;
    if (mirrored) stage.trafo.mirror(CCS_HORIZONTAL);
    stage.trafo.rotate(90.0 * quarterTurns + degreesMore);
    stage.trafo.scale(zoom);
    return stage.resample(160, 130);
}

std::vector<CPoint> polygon() {
    return {CPoint(20, 8), CPoint(90, 20), CPoint(60, 40), CPoint(85, 66), CPoint(12, 55)};
}

void addShutters(Stage& stage, bool rectangle, bool circle, bool polygonal) {
    stage.raster.setPresentationShutterValue(0x5000);
    if (rectangle) stage.raster.setRectShutter(RECT{10, 6, 85, 64});
    if (circle) stage.raster.setCircShutter(RECT{15, 2, 81, 68});
    if (polygonal) stage.raster.setPolygonalShutter(polygon());
}

Picture shuttered(bool rectangle, bool circle, bool polygonal, double degrees) {
    Stage stage;
    addShutters(stage, rectangle, circle, polygonal);
    stage.trafo.rotate(degrees);
    stage.trafo.scale(0.9);
    return stage.resample(211, 160);
}

void setBitmapShutter(Stage& stage, std::vector<unsigned char>& bits) {
    bits.assign((60 * 50 + 7) / 8, 0);
    for (std::size_t k = 0; k < 60 * 50; ++k) {
        const std::size_t c = k % 60;
        const std::size_t r = k / 60;
        if ((c / 10 + r / 10) % 2 == 0) bits[k / 8] = static_cast<unsigned char>(bits[k / 8] | (1U << (k % 8)));
    }
    CCsBitmapShutterInfo info;
    info.tag = 1;
    info.originX = 20;
    info.originY = 11;
    info.rows = 50;
    info.columns = 60;
    info.data = bits.data();
    info.presentationValue = 0x9000;
    stage.raster.setBitmapShutterInfo(info);
}

void everything(Stage& stage) {
    addShutters(stage, true, true, true);
    stage.addPlane(60, 20, 3);
    stage.addPlane(-4, 50, 4);
    stage.embedDiagonal();
    stage.padCorner();
}

std::vector<unsigned short> curve(bool falling) {
    std::vector<unsigned short> values(4096);
    for (int i = 0; i < 4096; ++i) {
        const int value = i * i / 4096;
        values[static_cast<std::size_t>(i)] = static_cast<unsigned short>(falling ? 4095 - value : value);
    }
    return values;
}

/// The views in which interpolation is looked at: upright, turned a quarter, between, and smaller than the image.
struct InterpolatedView {
    const char* name;
    double degrees;
    bool mirrored;
    double zoom;
};

constexpr InterpolatedView interpolatedViews[] = {
    {"fit", 0.0, false, 1.0}, {"turned", 90.0, true, 1.3}, {"oblique", 33.0, false, 1.7}, {"shrunk", -80.0, true, 0.4}};

void setView(CCs2dTrafo& trafo, const InterpolatedView& view) {
    if (view.mirrored) trafo.mirror(CCS_HORIZONTAL);
    trafo.rotate(view.degrees);
    trafo.scale(view.zoom);
    trafo.translate(0.03, -0.02);
}

/// The test picture in colour: each channel differs from the others everywhere.
void fillColour(CCsRaster& raster) {
    auto* line = reinterpret_cast<std::uint32_t*>(raster.getOrigin());
    for (int y = 0; y < raster.getHeight(); ++y, line += raster.getPitch()) {
        for (int x = 0; x < raster.getWidth(); ++x) {
            const auto value = static_cast<std::uint32_t>(storedValue(x, y));
            line[x] =
                value >> 4 | (value * 3 >> 4 & 0xFF) << 8 | (static_cast<std::uint32_t>(x * 5 + y * 3) & 0xFF) << 16;
        }
    }
    raster.unlock();
}

/// The stored values themselves as pixels.
Picture valuesOf(CCsImage& image) {
    const int width = image.getWidth();
    const int height = image.getHeight();
    Picture picture{width, height, {}};
    const auto* line = reinterpret_cast<const std::uint16_t*>(image.getOrigin());
    for (int y = 0; y < height; ++y, line += image.getPitch())
        picture.pixels.insert(picture.pixels.end(), line, line + width);
    image.unlock();
    return picture;
}

enum class Kind { Nearest, Bilinear, Bicubic };

Picture greyThroughMap(Kind kind, const InterpolatedView& view, bool withEverything) {
    Stage stage;
    if (withEverything) everything(stage);
    setView(stage.trafo, view);
    CCsFrame frame(143, 117);
    if (frame.init() != 255) throw std::runtime_error("no frame");
    frame.clear();
    const int result = kind == Kind::Bilinear
                           ? CCsBilinear().bilinearGrey12IndexMap(stage.raster, frame, stage.trafo, stage.map.get(),
                                                                  false, stage.paddingBits(), 40)
                           : CCsBicubic().bicubicGrey12IndexMap(stage.raster, frame, stage.trafo, stage.map.get(),
                                                                stage.paddingBits(), 40);
    if (result != 255) throw std::runtime_error("resampling refused");
    return Stage::take(frame, 143, 117);
}

Picture greyValues(Kind kind, const InterpolatedView& view) {
    Stage stage;
    setView(stage.trafo, view);
    CCsRaster values(131, 119, CCS_GREY12, 1.0, false, false);
    values.clear();
    const int result =
        kind == Kind::Nearest    ? CCsNearest().nearestGrey12Grey12(stage.raster, values, stage.trafo, 77, false)
        : kind == Kind::Bilinear ? CCsBilinear().bilinearGrey12Grey12(stage.raster, values, stage.trafo, 77, false)
                                 : CCsBicubic().bicubicGrey12Grey12(stage.raster, values, stage.trafo, 77, true, false);
    if (result != 255) throw std::runtime_error("resampling refused");
    return valuesOf(values);
}

Picture colour(Kind kind, const InterpolatedView& view) {
    CCsRaster raster(sourceWidth, sourceHeight, CCS_RGB8, 1.0, false, false);
    fillColour(raster);
    CCs2dTrafo trafo;
    setView(trafo, view);
    CCsFrame frame(139, 101);
    if (frame.init() != 255) throw std::runtime_error("no frame");
    frame.clear();
    const int result = kind == Kind::Nearest    ? CCsNearest().nearestRgb8Rgb8(raster, frame, trafo, 0x102030)
                       : kind == Kind::Bilinear ? CCsBilinear().bilinearRgb8Rgb8(raster, frame, trafo, 0x102030, false)
                                                : CCsBicubic().bicubicRgb8Rgb8(raster, frame, trafo, 0x102030);
    if (result != 255) throw std::runtime_error("resampling refused");
    return Stage::take(frame, 139, 101);
}

Picture coloursOf(CCsRaster& image) {
    Picture picture{image.getWidth(), image.getHeight(), {}};
    const auto* line = reinterpret_cast<const std::uint32_t*>(image.getOrigin());
    for (int y = 0; y < picture.height; ++y, line += image.getPitch()) {
        picture.pixels.insert(picture.pixels.end(), line, line + picture.width);
    }
    image.unlock();
    return picture;
}

/// What an accelerated member draws of a grey or a colour picture.
Picture accelerated(Kind kind, CCsRaster& source, CCs2dTrafo& trafo) {
    const bool isGrey = source.getType() == CCS_GREY12;
    CCsRaster drawn(67, 58, source.getType(), 1.0, false, false);
    constexpr unsigned char background = 77;
    const auto draw = [&] {
        switch (kind) {
            case Kind::Nearest:
                return isGrey ? CCsNearest().nearestIPPGrey12Grey12(source, drawn, trafo, background)
                              : CCsNearest().nearestIPPRgb8Rgb8(source, drawn, trafo, background);
            case Kind::Bilinear:
                return isGrey ? CCsBilinear().bilinearIPPGrey12Grey12(source, drawn, trafo, background)
                              : CCsBilinear().bilinearIPPRgb8Rgb8(source, drawn, trafo, background);
            default:
                return isGrey ? CCsBicubic().bicubicIPPGrey12Grey12(source, drawn, trafo, background)
                              : CCsBicubic().bicubicIPPRgb8Rgb8(source, drawn, trafo, background);
        }
    };
    if (draw() != 255) throw std::runtime_error("resampling refused");
    return isGrey ? valuesOf(drawn) : coloursOf(drawn);
}

void place(const Picture& tile, int left, int top, Picture& sheet) {
    for (int y = 0; y < tile.height; ++y) {
        std::copy_n(tile.pixels.begin() + static_cast<std::ptrdiff_t>(y) * tile.width, tile.width,
                    sheet.pixels.begin() + static_cast<std::ptrdiff_t>(top + y) * sheet.width + left);
    }
}

/// A sheet of views: one column for each angle; whole images plain and mirrored, then images of which a shutter leaves
/// a part, with pixels that are not square, zoomed out of the middle, plain and mirrored.
Picture acceleratedSheet(Kind kind, bool isGrey, const std::array<double, 4>& angles) {
    Picture sheet;
    for (int row = 0; row < 4; ++row) {
        const bool isMirrored = row % 2 != 0;
        const bool isPart = row >= 2;
        Stage grey(isPart ? 1.4 : 1.0);
        CCsRaster colour(sourceWidth, sourceHeight, CCS_RGB8, isPart ? 1.4 : 1.0, false, false);
        fillColour(colour);
        CCsRaster& source = isGrey ? grey.raster : colour;
        if (isPart) source.setRectShutter(RECT{12, 7, 83, 60});
        for (int column = 0; column < 4; ++column) {
            CCs2dTrafo trafo;
            if (isMirrored) trafo.mirror(CCS_HORIZONTAL);
            trafo.rotate(angles[static_cast<std::size_t>(column)]);
            if (isPart) {
                trafo.scale(1.37);
                trafo.translate(0.053, -0.021);
            }
            const Picture tile = accelerated(kind, source, trafo);
            sheet.width = 4 * tile.width;
            sheet.height = 4 * tile.height;
            sheet.pixels.resize(static_cast<std::size_t>(sheet.width) * static_cast<std::size_t>(sheet.height));
            place(tile, column * tile.width, row * tile.height, sheet);
        }
    }
    return sheet;
}

Picture sharpenedGrey(long box, long strength) {
    Stage stage;
    CCsRaster sharp(sourceWidth, sourceHeight, CCS_GREY12, 1.0, false, false);
    sharp.clear();
    if (CCsEdgeEnhancement().edgeEnhancementGrey12(stage.raster, sharp, box, strength, 11) != 255) {
        throw std::runtime_error("sharpening refused");
    }
    return valuesOf(sharp);
}

Picture sharpenedColour(long box, long strength) {
    CCsRaster raster(sourceWidth, sourceHeight, CCS_RGB8, 1.0, false, false);
    fillColour(raster);
    CCsRaster sharp(sourceWidth, sourceHeight, CCS_RGB8, 1.0, false, false);
    sharp.clear();
    if (CCsEdgeEnhancement().edgeEnhancementRGB8(raster, sharp, box, strength) != 255) {
        throw std::runtime_error("sharpening refused");
    }
    return coloursOf(sharp);
}

/// A bitmap with letters of ink, half ink and blank, burnt into the stored values.
Picture burntIn(unsigned int depth, int bits, bool blankToMax) {
    Stage stage;
    std::vector<std::uint32_t> dib(sizeof(BITMAPINFOHEADER) / 4 + static_cast<std::size_t>(sourceWidth * sourceHeight));
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = sourceWidth;
    header.biHeight = sourceHeight;
    header.biPlanes = 1;
    header.biBitCount = 32;
    std::memcpy(dib.data(), &header, sizeof header);
    std::uint32_t* pixel = dib.data() + sizeof header / 4;
    for (int y = 0; y < sourceHeight; ++y) {
        for (int x = 0; x < sourceWidth; ++x, ++pixel) {
            if (insideLetter(x - 10, y - 10, 4)) *pixel = 0x00FFFF00;
            if (insideLetter(x - 40, y - 20, 5)) *pixel = 0x00010101;
            if (insideLetter(x - 66, y - 30, 5)) *pixel = 0x00123456;
        }
    }
    if (stage.map->mergeDIBtoData(stage.raster, reinterpret_cast<BITMAPINFO*>(dib.data()), depth, bits, blankToMax) !=
        255) {
        throw std::runtime_error("burning in refused");
    }
    return valuesOf(stage.raster);
}

std::vector<Scene> makeScenes() {
    std::vector<Scene> scenes;
    const auto add = [&scenes](const std::string& name, std::function<Picture()> draw) {
        scenes.push_back({name, std::move(draw)});
    };

    for (int turn = 0; turn < 4; ++turn) {
        for (const bool mirrored : {false, true}) {
            const std::string suffix = std::to_string(90 * turn) + (mirrored ? "_mirrored" : "");
            add("nearest_fit_" + suffix, [=] { return orientation(turn, mirrored, 0.0, 1.0); });
            add("nearest_oblique_" + suffix, [=] { return orientation(turn, mirrored, 30.0, 1.7); });
        }
    }
    add("nearest_pan_zoom", [] {
        Stage stage;
        stage.trafo.scale(3.0);
        stage.trafo.translate(0.4, -0.3);
        return stage.resample(150, 111, 90);
    });
    add("nearest_shrunk", [] {
        Stage stage;
        stage.trafo.scale(0.3);
        return stage.resample(150, 111, 90);
    });
    add("nearest_aspect_2_1", [] {
        Stage stage(2.0);
        return stage.resample(140, 200);
    });
    add("nearest_aspect_2_1_turned", [] {
        Stage stage(2.0);
        stage.trafo.rotate(90.0);
        return stage.resample(200, 140);
    });

    add("shutter_rectangle", [] { return shuttered(true, false, false, 0.0); });
    add("shutter_circle", [] { return shuttered(false, true, false, 0.0); });
    add("shutter_polygon", [] { return shuttered(false, false, true, 0.0); });
    add("shutter_all_three", [] { return shuttered(true, true, true, 0.0); });
    add("shutter_all_three_oblique", [] { return shuttered(true, true, true, 40.0); });
    add("shutter_bitmap", [] {
        Stage stage;
        std::vector<unsigned char> bits;
        setBitmapShutter(stage, bits);
        return stage.resample(194, 142);
    });
    add("precedence", [] {
        Stage stage;
        everything(stage);
        return stage.resample(194, 142);
    });
    add("precedence_oblique", [] {
        Stage stage;
        everything(stage);
        stage.trafo.rotate(-25.0);
        stage.trafo.mirror(CCS_VERTICAL);
        return stage.resample(201, 163);
    });
    add("precedence_overlays_disabled", [] {
        Stage stage;
        everything(stage);
        stage.grey().setEnabled(false);
        return stage.resample(194, 142);
    });

    add("map_window_narrow", [] {
        Stage stage;
        stage.map->setWindow(1200, 900);
        return stage.resample(sourceWidth, sourceHeight);
    });
    add("map_inverted", [] {
        Stage stage;
        stage.palette.invertPalette();
        return stage.resample(sourceWidth, sourceHeight);
    });
    add("map_sigmoid", [] {
        Stage stage;
        stage.grey().enableSigmoid();
        stage.map->setWindow(1800, 1500);
        return stage.resample(sourceWidth, sourceHeight);
    });
    add("map_remap", [] {
        Stage stage;
        unsigned char table[256];
        for (int i = 0; i < 256; ++i) table[i] = static_cast<unsigned char>((i / 16) * 17);
        stage.grey().setIndexRemap(table);
        return stage.resample(sourceWidth, sourceHeight);
    });
    for (const bool falling : {false, true}) {
        const std::string suffix = falling ? "_falling" : "_rising";
        add("map_presentation" + suffix, [=] {
            Stage stage;
            const std::vector<unsigned short> values = curve(falling);
            stage.grey().setPresentationLut(values.data(), 0, 4096);
            stage.map->setWindow(2000, 3000);
            return stage.resample(sourceWidth, sourceHeight);
        });
        add("map_nonlinear" + suffix, [=] {
            Stage stage;
            const std::vector<unsigned short> values = curve(falling);
            stage.grey().setNonLinearLut(values.data(), 0, 4096, false);
            stage.map->setWindow(2000, 3000);
            return stage.resample(sourceWidth, sourceHeight);
        });
    }

    add("whole_raster_fast", [] {
        Stage stage;
        return stage.mapWhole(true);
    });
    add("whole_raster_rows", [] {
        Stage stage;
        return stage.mapWhole(false);
    });
    add("whole_raster_precedence", [] {
        Stage stage;
        everything(stage);
        return stage.mapWhole(true);
    });

    for (const InterpolatedView& view : interpolatedViews) {
        const std::string suffix = std::string("_") + view.name;
        add("nearest_values" + suffix, [=] { return greyValues(Kind::Nearest, view); });
        add("nearest_colour" + suffix, [=] { return colour(Kind::Nearest, view); });
        add("bilinear_mapped" + suffix, [=] { return greyThroughMap(Kind::Bilinear, view, false); });
        add("bilinear_precedence" + suffix, [=] { return greyThroughMap(Kind::Bilinear, view, true); });
        add("bilinear_values" + suffix, [=] { return greyValues(Kind::Bilinear, view); });
        add("bilinear_colour" + suffix, [=] { return colour(Kind::Bilinear, view); });
        add("bicubic_mapped" + suffix, [=] { return greyThroughMap(Kind::Bicubic, view, false); });
        add("bicubic_precedence" + suffix, [=] { return greyThroughMap(Kind::Bicubic, view, true); });
        add("bicubic_values" + suffix, [=] { return greyValues(Kind::Bicubic, view); });
        add("bicubic_colour" + suffix, [=] { return colour(Kind::Bicubic, view); });
    }
    for (const auto& [name, kind] : {std::pair{"nearest", Kind::Nearest}, std::pair{"bilinear", Kind::Bilinear},
                                     std::pair{"bicubic", Kind::Bicubic}}) {
        for (const bool isGrey : {true, false}) {
            const std::string prefix = std::string("accelerated_") + name + (isGrey ? "_values" : "_colour");
            add(prefix + "_orientations", [=, kind = kind] {
                return acceleratedSheet(kind, isGrey, {0.0, 90.0, 180.0, 270.0});
            });
            add(prefix + "_oblique", [=, kind = kind] {
                return acceleratedSheet(kind, isGrey, {17.0, 123.4, 200.5, 310.0});
            });
        }
    }
    add("sharpened_grey_3", [] { return sharpenedGrey(3, 2); });
    add("sharpened_grey_16", [] { return sharpenedGrey(16, 7); });
    add("sharpened_colour_5", [] { return sharpenedColour(5, 3); });
    add("burnt_in_black", [] { return burntIn(12, 11, false); });
    add("burnt_in_white", [] { return burntIn(8, 7, true); });
    return scenes;
}

}  // namespace

const std::vector<Scene>& allScenes() {
    static const std::vector<Scene> scenes = makeScenes();
    return scenes;
}

Picture draw(const Scene& scene, Arithmetic arithmetic) {
    const zoltest::CapabilityGuard guard(arithmetic == Arithmetic::Packed ? 1 : 0);
    return scene.draw();
}

std::uint64_t digest(const Picture& picture) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    const auto feed = [&hash](std::uint32_t value) {
        for (int shift = 0; shift < 32; shift += 8) hash = (hash ^ ((value >> shift) & 0xFFU)) * 0x100000001B3U;
    };
    feed(static_cast<std::uint32_t>(picture.width));
    feed(static_cast<std::uint32_t>(picture.height));
    for (const std::uint32_t pixel : picture.pixels) feed(pixel);
    return hash;
}

}  // namespace zolscenes
