#include "viewing/display/annotation_overlay.h"

#include "platform/unicode.h"
#include "viewing/display/font.h"
#include "viewing/image/refusal.h"
#include "zolcs/ccsline.h"
#include "zolcs/ccstext.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <optional>
#include <utility>

namespace viewing {

namespace {

/// An overlay drawn in its own colour on the screen. Printers and burning in have colours of their own.
class Coloured : public CCsGroup {
public:
    explicit Coloured(std::uint32_t rgb) : colour_(((rgb & 0xFFU) << 16U) | (rgb & 0xFF00U) | ((rgb >> 16U) & 0xFFU)) {}

    using CCsGroup::render;
    void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                int height, int offsetX, int offsetY) override {
        // Otherwise the gaps of dashed pens would be painted white.
        const int before = SetBkMode(dc, TRANSPARENT);
        CCsGroup::render(imageTrafo, outputTrafo, mode == screenMode ? colour_ : color, dc, mode, width, height,
                         offsetX, offsetY);
        SetBkMode(dc, before);
    }

private:
    unsigned long colour_;
};

using Points = std::vector<CCsPointDouble>;

CCsPointDouble toPoint(const Position& position) { return {position.x, position.y}; }

Points rectangleOf(const Position& a, const Position& b) { return {{a.x, a.y}, {b.x, a.y}, {b.x, b.y}, {a.x, b.y}}; }

/// The point so far along and across the axes of a turned figure around `centre`.
CCsPointDouble aroundCentre(const Annotation& annotation, double along, double across, double aspect) {
    const double angle = std::fmod(annotation.degrees, 360.0) * std::numbers::pi / 180.0;
    const Position& centre = annotation.points[0];
    return {centre.x + along * std::cos(angle) - across * std::sin(angle),
            centre.y + (along * std::sin(angle) + across * std::cos(angle)) * aspect};
}

/// From the end to the tip, out to one end of the head, and over the tip to the other one.
Points arrowOf(const Annotation& annotation, double aspect) {
    const Position& end = annotation.points[0];
    const Position& tip = annotation.points[1];
    // Straight lengths and angles, in units of x.
    const double back = std::atan2((end.y - tip.y) / aspect, end.x - tip.x);
    const double length = std::hypot(end.x - tip.x, (end.y - tip.y) / aspect);
    const double head = annotation.length > 0.0 ? annotation.length : length / 5.0;
    constexpr double spread = 25.0 * std::numbers::pi / 180.0;
    const auto barb = [&](double angle) {
        return CCsPointDouble(tip.x + head * std::cos(angle), tip.y + head * std::sin(angle) * aspect);
    };
    return {toPoint(end), toPoint(tip), barb(back - spread), toPoint(tip), barb(back + spread)};
}

bool isRound(FigureKind kind) { return kind == FigureKind::Circle || kind == FigureKind::Ellipse; }

bool isClosed(const Annotation& annotation) {
    return annotation.closed || annotation.filled || annotation.kind == FigureKind::Rectangle ||
           annotation.kind == FigureKind::Square;
}

/// The vertices of an outline. `aspect` is how many units of y are as long as one of x.
Points verticesOf(const Annotation& annotation, double aspect) {
    const Position& first = annotation.points[0];
    if (annotation.kind == FigureKind::Rectangle) return rectangleOf(first, annotation.points[1]);
    if (annotation.kind == FigureKind::Square)
        return rectangleOf(first, {first.x + annotation.length, first.y + annotation.length * aspect});

    if (annotation.kind == FigureKind::Arrow) return arrowOf(annotation, aspect);
    Points out;
    if (isRound(annotation.kind)) {
        const double across = annotation.kind == FigureKind::Circle ? annotation.length : annotation.across;
        if (!annotation.filled) {
            for (const auto& [u, v] : {std::pair(-1, -1), {1, -1}, {1, 1}, {-1, 1}})
                out.push_back(aroundCentre(annotation, u * annotation.length, v * across, aspect));
            return out;
        }
        // An area has to be a polygon: the library's filled ellipse counts hundredths of an inch, not pixels.
        constexpr int corners = 360;
        for (int i = 0; i < corners; ++i) {
            const double t = i * 2.0 * std::numbers::pi / corners;
            out.push_back(aroundCentre(annotation, annotation.length * std::cos(t), across * std::sin(t), aspect));
        }
        return out;
    }
    for (const Position& point : annotation.points) out.push_back(toPoint(point));
    // Areas begin at four vertices.
    if (annotation.filled)
        while (out.size() < 4) out.push_back(out.back());
    return out;
}

std::unique_ptr<CCsLine> makeLine(const Annotation& annotation, CCs2dTrafo& trafo, double aspect) {
    const bool normalised = annotation.space == CoordinateSpace::Normalised;
    const Points p = verticesOf(annotation, aspect);
    std::unique_ptr<CCsLine> line;
    if (isRound(annotation.kind) && !annotation.filled) {
        line = std::make_unique<CCsLine>(&trafo, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y, p[3].x, p[3].y,
                                         annotation.penStyle, true, normalised);
    } else {
        line = std::make_unique<CCsLine>(&trafo, p, annotation.penStyle, annotation.kind == FigureKind::Curve,
                                         normalised, annotation.filled);
        if (isClosed(annotation)) line->close();
    }
    line->setShadow(annotation.shadow);
    return line;
}

int alignmentCode(Alignment alignment) {
    switch (alignment) {
        case Alignment::Centre:
            return 2;
        case Alignment::Right:
            return 1;
        case Alignment::Left:
            break;
    }
    return 0;
}

/// A text in whatever script, whose halo can be left out and is seen on a printer, too.
class Label : public CCsText {
public:
    /// `words` must live as long as this.
    Label(CCs2dTrafo* trafo, const Annotation& annotation, const std::wstring& words)
        : CCsText(trafo, annotation.points[0].x, annotation.points[0].y, words.c_str(),
                  alignmentCode(annotation.alignment), annotation.space == CoordinateSpace::Normalised),
          words_(words) {
        shadow = annotation.shadow ? 1 : 0;
    }

    using CCsText::render;
    void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                int height, int offsetX, int offsetY) override {
        const CoveringFont font(dc, words_);
        const auto draw = [&] {
            CCsText::render(imageTrafo, outputTrafo, color, dc, mode, width, height, offsetX, offsetY);
        };
        const auto halo = shadow;
        if (mode == printerMode && halo != 0) {
            shadow = 0;
            BeginPath(dc);
            draw();
            EndPath(dc);
            strokeHalo(dc);
        }
        draw();
        shadow = halo;
    }

private:
    /// The library's own halo is one dot wide, which is next to nothing on paper, and leaves eight more texts in the
    /// document. This one is an outline beneath the letters.
    static void strokeHalo(HDC dc) {
        const int reach = std::max(GetDeviceCaps(dc, LOGPIXELSY) / 150, 1);
        HPEN pen = CreatePen(PS_SOLID, 2 * reach, RGB(0, 0, 0));
        const HGDIOBJ before = SelectObject(dc, pen);
        StrokePath(dc);
        if (before != nullptr) SelectObject(dc, before);
        DeleteObject(pen);
    }

    const std::wstring& words_;
};

std::wstring wide(const std::string& utf8) {
    std::optional<std::wstring> out = zolplatform::fromUtf8(utf8);
    if (!out) throw Refusal("the text of an annotation is not UTF-8");
    return std::move(*out);
}

double aspectOf(CoordinateSpace space, const Canvas& canvas) {
    switch (space) {
        case CoordinateSpace::Image:
            return 1.0 / canvas.imageRatioYx;
        case CoordinateSpace::Normalised:
            return canvas.pictureAspect;
        case CoordinateSpace::Display:
            break;
    }
    return 1.0;
}

}  // namespace

AnnotationOverlay::AnnotationOverlay(const std::vector<Annotation>& annotations, const Canvas& canvas) {
    // The overlays keep pointers to the strings, which must not move.
    texts_.reserve(annotations.size());
    for (const Annotation& annotation : annotations) add(annotation, canvas);
}

void AnnotationOverlay::add(const Annotation& annotation, const Canvas& canvas) {
    // Figures are made from display coordinates; an identity makes these the image's.
    CCs2dTrafo identity;
    CCs2dTrafo& trafo = annotation.space == CoordinateSpace::Image ? identity : canvas.view;
    auto coloured = std::make_unique<Coloured>(annotation.colour);
    if (annotation.kind == FigureKind::Text) {
        texts_.push_back(wide(annotation.text));
        coloured->append(*std::make_unique<Label>(&trafo, annotation, texts_.back()).release());
    } else {
        coloured->append(*makeLine(annotation, trafo, aspectOf(annotation.space, canvas)).release());
    }
    group_.append(*coloured.release());
}

}  // namespace viewing
