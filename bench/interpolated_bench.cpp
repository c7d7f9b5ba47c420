// Bilinear and bicubic interpolation: 12-bit grey through the window table to 32-bit display pixels, and colour, beside
// OpenCV and pixman.
#include "view_scenes.h"

#include "zolcs/ccsbicubic.h"
#include "zolcs/ccsbilinear.h"

namespace {

using zolbench::ColourScene;
using zolbench::GreyScene;
using zolbench::scene;
using zolbench::View;

void bilinearGrey(const View& view) {
    auto& s = scene<GreyScene>();
    CCs2dTrafo trafo = view.trafo();
    CCsBilinear().bilinearGrey12IndexMap(s.source, s.frame, trafo, s.map.get(), false, nullptr, zolbench::background);
}

void bicubicGrey(const View& view) {
    auto& s = scene<GreyScene>();
    CCs2dTrafo trafo = view.trafo();
    CCsBicubic().bicubicGrey12IndexMap(s.source, s.frame, trafo, s.map.get(), nullptr, zolbench::background);
}

void bilinearColour(const View& view) {
    auto& s = scene<ColourScene>();
    CCs2dTrafo trafo = view.trafo();
    CCsBilinear().bilinearRgb8Rgb8(s.source, s.frame, trafo, zolbench::background, false);
}

void bicubicColour(const View& view) {
    auto& s = scene<ColourScene>();
    CCs2dTrafo trafo = view.trafo();
    CCsBicubic().bicubicRgb8Rgb8(s.source, s.frame, trafo, zolbench::background);
}

template <typename Wanted>
void besideOpenCv(const std::string& kind, double bar, void (*ours)(const View&), int interpolation, const View& view) {
    const std::string title = kind + " " + view.name;
    zolbench::compare(title, bar, {title + "/zolwebcs", [=] { ours(view); }},
                      {title + "/OpenCV", [=] { scene<Wanted>().openCv(view, interpolation); }});
}

void besidePixman(const std::string& kind, double bar, void (*ours)(const View&), const View& view) {
    const std::string title = kind + " " + view.name + " : pixman";
    zolbench::compare(title, bar, {title + "/zolwebcs", [=] { ours(view); }},
                      {title + "/pixman", [=] { scene<ColourScene>().pixman(view, PIXMAN_FILTER_BILINEAR); }});
}

const zolbench::Registration registration([] {
    struct Bars {
        double grey;
        double bilinearColour;
        double bicubicColour;
    };
    // In the order of the views; 0 where none is set.
    constexpr std::array<Bars, 4> bars{Bars{0.5, 0.0, 0.3}, {0.5, 0.0, 0.0}, {0.6, 0.8, 0.4}, {0.5, 0.6, 0.4}};
    for (std::size_t i = 0; i < bars.size(); ++i) {
        const View& view = zolbench::views().at(i);
        const Bars& bar = bars.at(i);
        besideOpenCv<GreyScene>("bilinear grey", bar.grey, bilinearGrey, cv::INTER_LINEAR, view);
        besideOpenCv<GreyScene>("bicubic grey", bar.grey, bicubicGrey, cv::INTER_CUBIC, view);
        besideOpenCv<ColourScene>("bilinear RGB8", bar.bilinearColour, bilinearColour, cv::INTER_LINEAR, view);
        besideOpenCv<ColourScene>("bicubic RGB8", bar.bicubicColour, bicubicColour, cv::INTER_CUBIC, view);
    }
    besidePixman("bilinear RGB8", 1.0, bilinearColour, zolbench::views().front());
});

}  // namespace
