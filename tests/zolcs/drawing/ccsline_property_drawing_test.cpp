// Lines of every kind against the rules of drawing, written down once more as plainly as possible: random figures,
// flags, modes and views, and for each of them the whole sequence of calls.
#include "support/drawing.h"
#include "support/open_line.h"
#include "support/overlay_views.h"
#include "support/test_data.h"

#include "zolcs/ccsline.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>

namespace {

using zoltest::OpenLine;

using Points = std::vector<CCsPointDouble>;

/// The display coordinates that a line holds: rounded ones and unrounded ones.
struct Held {
    explicit Held(const OpenLine& line) {
        for (std::size_t i = 0; line.displayPoints != nullptr && i < static_cast<std::size_t>(line.pointCount); ++i) {
            shown.push_back(line.displayPoints[i]);
            exact.push_back(line.displayPointsDouble[i]);
        }
    }

    [[nodiscard]] std::string text() const {
        std::ostringstream out;
        out.precision(17);
        for (const CCsPoint& p : shown) out << '(' << p.x << ' ' << p.y << ')';
        for (const CCsPointDouble& p : exact) out << '(' << p.x << ' ' << p.y << ')';
        return out.str();
    }

    std::vector<CCsPoint> shown;
    Points exact;
};

/// A render call and what the device answers.
struct Call {
    CCs2dTrafo* image = nullptr;
    CCs2dTrafo* output = nullptr;
    int mode = 1;
    unsigned long color = 0;
    int dotsPerInch = 0;
    int textHeight = 0;
};

/// What a line is to draw, and the display points that it has afterwards.
class Reference {
public:
    Reference(const OpenLine& line, const Call& call) : held(line), line_(line), call_(call) {
        if (line.isRenderable() && place()) draw();
    }

    [[nodiscard]] std::string calls() const { return out_.str(); }

    Held held;

private:
    [[nodiscard]] std::size_t count() const { return static_cast<std::size_t>(line_.pointCount); }

    [[nodiscard]] CCsPointDouble shown(std::size_t i) const {
        return {static_cast<double>(held.shown[i].x), static_cast<double>(held.shown[i].y)};
    }

    static CCsPointDouble mapped(CCs2dTrafo& trafo, CCsPointDouble p) {
        double m11 = 0, m12 = 0, m21 = 0, m22 = 0, dx = 0, dy = 0;
        trafo.getImgToDsp(m11, m12, m21, m22, dx, dy);
        return {p.x * m11 + p.y * m21 + dx, p.x * m12 + p.y * m22 + dy};
    }

    /// The output position of every vertex; false where there is none.
    bool place() {
        const bool fromDisplay = line_.displayAuthoritative != 0;
        for (std::size_t i = 0; i < count(); ++i) {
            if (line_.normalised) {
                if (call_.image == nullptr) return false;
                const CSize size = call_.image->getDstSize();
                const CCsPointDouble& fraction = line_.normalisedPoints[i];
                at_.emplace_back(size.cx * fraction.x, size.cy * fraction.y);
            } else if (call_.mode == 1 && fromDisplay) {
                at_.push_back(shown(i));
            } else if (call_.mode == 2 || call_.mode == 3) {
                CCs2dTrafo* const trafo = fromDisplay ? call_.output : call_.image;
                if (trafo == nullptr) return false;
                at_.push_back(mapped(*trafo, fromDisplay ? shown(i) : line_.imagePoints[i]));
            } else if (call_.mode == 1 || call_.mode == 4) {
                if (call_.image == nullptr) return false;
                const CCsPointDouble exact = mapped(*call_.image, line_.imagePoints[i]);
                held.exact[i] = exact;
                held.shown[i] =
                    CCsPoint(static_cast<int>(std::lround(exact.x)), static_cast<int>(std::lround(exact.y)));
                at_.push_back(shown(i));
            } else {
                return false;
            }
        }
        return !at_.empty();
    }

    void draw() {
        const bool curve = line_.interpolated != 0;
        if (!curve && line_.ellipse && count() != 4) return;
        const bool ownColor = line_.filled && line_.fillColor != 0;
        const bool area = line_.filled && count() > 3;

        int width = 0;
        unsigned long main = call_.color;
        unsigned long fill = ownColor ? 0x808080 : call_.color;
        unsigned long dark = 0;
        if (call_.mode == 2) {
            width = call_.dotsPerInch * 10 / 600;
            main = 0xFFFFFF;
            fill = ownColor ? line_.fillColor : main;
        } else if (call_.mode == 4) {
            width = static_cast<int>(call_.textHeight / 10.0 + 1.5);
            main = 0x00FFFF;
            fill = ownColor ? line_.fillColor : main;
            if (line_.dicomPrintFlag) dark = 0x010101;
        }
        const std::string mainPen = pen(width, main);
        const std::string mainBrush = "brush " + colored(fill);
        const std::string darkPen = pen(width, dark);
        const std::string blackBrush = "brush 0x000000";

        for (const std::string& object : {mainPen, mainBrush, darkPen, blackBrush}) out_ << "create " << object << '\n';
        if (!ownColor) out_ << "select " << darkPen << "\nselect " << blackBrush << '\n';
        if (line_.penStyle == 2) out_ << "background transparent\n";
        if (line_.shadow != 0 && !area) {
            const int k = call_.mode == 2 ? 10 : 1;
            outline(k);
            if (call_.mode == 4 && line_.dicomPrintFlag) outline(k + 1);
            if (line_.selected != 0) handles(-2);
        }
        out_ << "select " << mainPen << "\nselect " << mainBrush << '\n';
        if (area) {
            out_ << "fill alternate\n";
            if (curve || line_.ellipse) {
                out_ << "begin path\n";
                outline(0);
                out_ << "end path\nstroke and fill path\n";
            } else {
                out_ << "polygon" << listed(at_, 0) << '\n';
            }
        } else {
            outline(0);
            if (line_.selected != 0) handles(-3);
        }
        if (line_.penStyle == 2) out_ << "background opaque\n";
        out_ << "select caller's brush\nselect caller's pen\n";
        for (const std::string& object : {blackBrush, darkPen, mainBrush, mainPen}) out_ << "delete " << object << '\n';
    }

    void outline(int k) {
        if (line_.interpolated != 0 && count() > 1) {
            out_ << "bezier" << listed(curveControls(), k) << '\n';
        } else if (line_.interpolated == 0 && line_.ellipse) {
            out_ << "bezier" << listed(ellipseControls(), k) << '\n';
        } else {
            out_ << "move to" << bare(at_.front(), k) << '\n';
            for (std::size_t i = 1; i < count(); ++i) out_ << "line to" << bare(at_[i], k) << '\n';
            if (count() == 1 || line_.closed != 0.0) out_ << "line to" << bare(at_.front(), k) << '\n';
        }
    }

    /// A Catmull-Rom spline; beyond an open end the end itself goes on.
    [[nodiscard]] Points curveControls() const {
        const bool round = line_.closed != 0.0 || (line_.filled && count() > 3);
        const int n = line_.pointCount;
        const auto vertex = [&](int i) {
            return at_[static_cast<std::size_t>(round ? (i + n) % n : std::clamp(i, 0, n - 1))];
        };
        Points out{vertex(0)};
        for (int i = 0; i < (round ? n : n - 1); ++i) {
            const CCsPointDouble a = vertex(i - 1), b = vertex(i), c = vertex(i + 1), d = vertex(i + 2);
            out.emplace_back(b.x + (c.x - a.x) / 6.0, b.y + (c.y - a.y) / 6.0);
            out.emplace_back(c.x - (d.x - b.x) / 6.0, c.y - (d.y - b.y) / 6.0);
            out.push_back(c);
        }
        return out;
    }

    /// Four quarters from the middle of side 1-2 over those of 2-3, 3-0 and 0-1.
    [[nodiscard]] Points ellipseControls() const {
        const double k = 4.0 / 3.0 * (std::sqrt(2.0) - 1.0);
        const CCsPointDouble centre((at_[0].x + at_[1].x + at_[2].x + at_[3].x) / 4,
                                    (at_[0].y + at_[1].y + at_[2].y + at_[3].y) / 4);
        const CCsPointDouble u((at_[1].x - at_[0].x + at_[2].x - at_[3].x) / 4,
                               (at_[1].y - at_[0].y + at_[2].y - at_[3].y) / 4);
        const CCsPointDouble v((at_[3].x - at_[0].x + at_[2].x - at_[1].x) / 4,
                               (at_[3].y - at_[0].y + at_[2].y - at_[1].y) / 4);
        const auto at = [&](double alongU, double alongV) {
            return CCsPointDouble(centre.x + u.x * alongU + v.x * alongV, centre.y + u.y * alongU + v.y * alongV);
        };
        return {at(1, 0),   at(1, k),   at(k, 1),  at(0, 1),  at(-k, 1), at(-1, k), at(-1, 0),
                at(-1, -k), at(-k, -1), at(0, -1), at(k, -1), at(1, -k), at(1, 0)};
    }

    void handles(int corner) {
        for (const CCsPointDouble& p : at_) {
            out_ << zoltest::square(static_cast<int>(p.x) + corner, static_cast<int>(p.y) + corner);
        }
    }

    static std::string bare(const CCsPointDouble& p, int k) {
        return ' ' + std::to_string(static_cast<int>(p.x + k)) + ' ' + std::to_string(static_cast<int>(p.y + k));
    }

    static std::string listed(const Points& points, int k) {
        std::string out;
        for (const CCsPointDouble& p : points) out += " (" + bare(p, k).substr(1) + ')';
        return out;
    }

    static std::string colored(unsigned long color) {
        char text[16];
        std::snprintf(text, sizeof text, "0x%06lx", color);
        return text;
    }

    [[nodiscard]] std::string pen(int width, unsigned long color) const {
        static const char* const styles[] = {"solid", "dash", "dot", "dash-dot", "dash-dot-dot", "null", "insideframe"};
        return std::string("pen ") + styles[line_.penStyle] + ' ' + std::to_string(width) + ' ' + colored(color);
    }

    const OpenLine& line_;
    const Call& call_;
    Points at_;
    std::ostringstream out_;
};

CCs2dTrafo anyView(zoltest::Random& random) {
    CCs2dTrafo view;
    view.setSizes(random.integer(1, 700), random.integer(1, 700), random.integer(1, 900), random.integer(1, 900),
                  random.chance(0.3) ? random.real(0.3, 3.0) : 1.0, 1.0, random.integer(-20, 20),
                  random.integer(-20, 20));
    view.scale(random.real(0.2, 4.0));
    if (random.chance(0.5)) view.rotate(random.chance(0.5) ? 90.0 * random.integer(1, 3) : random.real(0.0, 360.0));
    if (random.chance(0.3)) view.mirror(random.chance(0.5) ? CCS_HORIZONTAL : CCS_VERTICAL);
    if (random.chance(0.5)) view.translate(random.real(-0.5, 0.5), random.real(-0.5, 0.5));
    return view;
}

OpenLine anyLine(zoltest::Random& random, CCs2dTrafo& view) {
    const bool normalised = random.chance(0.2);
    const bool whole = random.chance(0.3);
    Points points(static_cast<std::size_t>(random.chance(0.3) ? 4 : random.integer(0, 6)));
    for (CCsPointDouble& p : points) {
        if (normalised) {
            p.setPosition(random.real(-0.5, 1.5), random.real(-0.5, 1.5));
        } else if (whole) {
            p.setPosition(random.integer(-300, 900), random.integer(-300, 900));
        } else {
            p.setPosition(random.real(-300, 900), random.real(-300, 900));
        }
    }
    // All but the null pen, which is one and the same object to GDI however often it is made.
    const int styles[] = {PS_SOLID, PS_DASH, PS_DOT, PS_DASHDOT, PS_DASHDOTDOT, PS_INSIDEFRAME};
    OpenLine line(&view, points, styles[random.integer(0, 5)], false, normalised, random.chance(0.4));
    // Whatever is not 0 counts as set.
    const auto flag = [&](double probability) { return random.chance(probability) ? random.integer(1, 3) - 4 : 0; };
    line.interpolated = flag(0.25);
    line.ellipse = random.chance(0.25);
    line.closed = 0.5 * flag(0.4);
    line.fillColor = random.chance(0.5) ? static_cast<std::uint32_t>(random.integer(1, 0xFFFFFF)) : 0;
    line.selected = flag(0.4);
    line.shadow = flag(0.7);
    line.dicomPrintFlag = random.chance(0.4);
    line.displayAuthoritative = flag(0.3);
    line.setRenderFlag(!random.chance(0.05));
    return line;
}

TEST(LineProperty, EveryFigureIsDrawnByTheRules) {
    zoltest::Random random(5202);
    int drawn = 0;
    for (int run = 0; run < 1500; ++run) {
        SCOPED_TRACE(run);
        CCs2dTrafo made = anyView(random);
        CCs2dTrafo image = anyView(random);
        CCs2dTrafo output = anyView(random);
        const OpenLine original = anyLine(random, made);
        OpenLine line(original);  // which is to look the same
        Call call;
        call.image = random.chance(0.03) ? nullptr : &image;
        call.output = random.chance(0.03) ? nullptr : &output;
        call.mode = random.chance(0.05) ? random.integer(-1, 6) : random.integer(1, 4);
        call.color = static_cast<unsigned long>(random.integer(0, 0xFFFFFF));
        call.dotsPerInch = random.chance(0.5) ? 300 * random.integer(1, 4) : random.integer(0, 1300);
        call.textHeight = random.integer(0, 120);

        const Reference reference(original, call);
        const std::string calls = zoltest::drawn(
            {call.image, call.output, call.mode, call.color, random.integer(-9, 9), random.integer(-9, 9),
             [&](zoltest::GdiRecorder& recorder) {
                 recorder.dotsPerInch = call.dotsPerInch;
                 recorder.textHeight = call.textHeight;
             }},
            [&](HDC dc) {
                line.render(call.image, call.output, call.color, dc, call.mode, random.integer(0, 99),
                            random.integer(0, 99), random.integer(-9, 9), random.integer(-9, 9));
            });
        ASSERT_EQ(calls, reference.calls());
        ASSERT_EQ(Held(line).text(), reference.held.text());
        drawn += calls.empty() ? 0 : 1;
    }
    EXPECT_GT(drawn, 1000);
}

}  // namespace
