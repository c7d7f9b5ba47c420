#include "platform/gdi/cairopath.h"

namespace zolgdi {

void appendPath(cairo_t* cairo, const Figures& figures, double shift) {
    for (const Figure& figure : figures) {
        const auto& p = figure.points;
        if (p.empty()) continue;
        cairo_move_to(cairo, p[0].x + shift, p[0].y + shift);
        if (figure.curved) {
            for (std::size_t i = 1; i + 2 < p.size(); i += 3) {
                cairo_curve_to(cairo, p[i].x + shift, p[i].y + shift, p[i + 1].x + shift, p[i + 1].y + shift,
                               p[i + 2].x + shift, p[i + 2].y + shift);
            }
        } else {
            for (std::size_t i = 1; i < p.size(); ++i) cairo_line_to(cairo, p[i].x + shift, p[i].y + shift);
        }
        if (figure.closed) cairo_close_path(cairo);
    }
}

}  // namespace zolgdi
