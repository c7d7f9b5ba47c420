// Nearest neighbour of colour, as it is and through a table, beside OpenCV and pixman.
#include "view_scenes.h"

#include "zolcs/ccsnearest.h"

namespace {

using zolbench::ColourScene;
using zolbench::scene;
using zolbench::View;

void plain(const View& view) {
    auto& s = scene<ColourScene>();
    CCs2dTrafo trafo = view.trafo();
    CCsNearest().nearestRgb8Rgb8(s.source, s.frame, trafo, zolbench::background);
}

/// 256 bytes that undo nothing and repeat nothing.
std::array<unsigned char, 256>& table() {
    static std::array<unsigned char, 256> made = [] {
        std::array<unsigned char, 256> bytes{};
        for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i * 29 + 7);
        return bytes;
    }();
    return made;
}

void mapped(const View& view) {
    auto& s = scene<ColourScene>();
    CCs2dTrafo trafo = view.trafo();
    CCsNearest().nearestRgb8Rgb8Map(s.source, s.frame, trafo, table().data(), zolbench::background);
}

void openCv(const View& view) { scene<ColourScene>().openCv(view, cv::INTER_NEAREST); }

void openCvMapped(const View& view) {
    auto& s = scene<ColourScene>();
    s.openCv(view, cv::INTER_NEAREST);
    cv::Mat shown = view.isOblique() ? s.cvFrame : s.cvFrame(view.target());
    cv::LUT(shown, cv::Mat(1, 256, CV_8U, table().data()), shown);
}

void pixman(const View& view) { scene<ColourScene>().pixman(view, PIXMAN_FILTER_NEAREST); }

const zolbench::Registration registration([] {
    const auto beside = [](const std::string& kind, const char* peer, double bar, void (*ours)(const View&),
                           void (*other)(const View&), const View& view) {
        const std::string title = kind + " " + view.name + " : " + peer;
        zolbench::compare(title, bar, {title + "/zolwebcs", [=] { ours(view); }},
                          {title + "/" + peer, [=] { other(view); }});
    };
    struct Bars {
        double openCv;
        double pixman;
    };
    // In the order of the views; 0 where none is set.
    constexpr std::array<Bars, 4> bars{Bars{1.0, 0.0}, {0.0, 0.0}, {0.6, 0.0}, {0.0, 0.5}};
    for (std::size_t i = 0; i < bars.size(); ++i) {
        const View& view = zolbench::views().at(i);
        beside("nearest RGB8", "OpenCV", bars.at(i).openCv, plain, openCv, view);
        beside("nearest RGB8", "pixman", bars.at(i).pixman, plain, pixman, view);
        beside("nearest RGB8 mapped", "OpenCV", 0.0, mapped, openCvMapped, view);
    }
});

}  // namespace
