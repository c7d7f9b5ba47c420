// Building the tables of the grey value maps, every way that leads to one, beside loops that ask for each entry on its
// own: a division, an exponential, an interpolation. A window that is dragged builds one for every picture.
#include "compare.h"

#include "zolcs/ccscolorman.h"
#include "zolcs/ccsmap.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int mostSteps = 4096;

/// A map of a depth with everything that a table can be made of, each part switched on by its bit.
class Tables {
public:
    enum Part : unsigned { Remap = 1, Sigmoid = 2, Presentation = 4, NonLinear = 8, Exact = 16 };

    Tables(int depth, unsigned parts)
        : depth_(depth),
          map_(MapFactory::CreateMap(depth == 4096 ? MapFactory::Grey12 : MapFactory::Grey16)),
          entries_(static_cast<std::size_t>(depth)) {
        auto& map = dynamic_cast<IGreyMap&>(*map_);
        palette_.getColorMap(colours_);
        map.setColorMapIndex(&colours_);
        std::vector<unsigned short> curve(entries_.size());
        for (std::size_t i = 0; i < curve.size(); ++i) {
            curve[i] = static_cast<unsigned short>(std::sqrt(static_cast<double>(i)) * 16.0);
        }
        std::array<unsigned char, 256> remap{};
        for (std::size_t i = 0; i < remap.size(); ++i) remap[i] = static_cast<unsigned char>(255 - i);
        if ((parts & Remap) != 0) map.setIndexRemap(remap.data());
        if ((parts & Sigmoid) != 0) map.enableSigmoid();
        if ((parts & Presentation) != 0) map.setPresentationLut(curve.data(), 0, depth);
        if ((parts & NonLinear) != 0) map.setNonLinearLut(curve.data(), 0, depth, (parts & Exact) != 0);
    }

    /// A table for the next window of a drag.
    void drag() {
        step_ = (step_ + 1) % mostSteps;
        map_->setWindow(static_cast<unsigned>(depth_ / 4 + step_), depth_ / 2 + step_);
        benchmark::DoNotOptimize(map_->getLut());
    }

    void divideForEach() {
        step_ = (step_ + 1) % mostSteps;
        const int low = depth_ / 4 - (depth_ / 2 + step_) / 2;
        const int width = depth_ / 2 + step_;
        for (int v = 0; v < depth_; ++v) {
            const int level = v < low ? 0 : v >= low + width ? 255 : (v - low) * 256 / width;
            entries_[static_cast<std::size_t>(v)] = colours_.entries[level & 255];
        }
        benchmark::DoNotOptimize(entries_.data());
    }

    void exponentialForEach() {
        step_ = (step_ + 1) % mostSteps;
        const double centre = depth_ / 4 + step_;
        const double width = depth_ / 2 + step_;
        for (int v = 0; v < depth_; ++v) {
            const auto value = static_cast<unsigned>(4095.0 / (std::exp(-4.0 * (v - centre) / width) + 1.0));
            entries_[static_cast<std::size_t>(v)] = colours_.entries[value >> 4U];
        }
        benchmark::DoNotOptimize(entries_.data());
    }

private:
    int depth_;
    int step_ = 0;
    CCsColorMan palette_;
    CCsColorMapT colours_;
    std::unique_ptr<IMap> map_;
    std::vector<std::uint32_t> entries_;
};

struct Way {
    const char* name;
    unsigned parts;
};

const zolbench::Registration registration([] {
    for (const int depth : {4096, 65536}) {
        const std::string prefix = depth == 4096 ? "table 12-bit: " : "table 16-bit: ";
        for (const Way& way : {Way{"linear", 0}, Way{"remapped", Tables::Remap}, Way{"sigmoid", Tables::Sigmoid},
                               Way{"sigmoid, remapped", Tables::Sigmoid | Tables::Remap},
                               Way{"presentation", Tables::Presentation}, Way{"non-linear", Tables::NonLinear},
                               Way{"non-linear, presentation", Tables::NonLinear | Tables::Presentation},
                               Way{"exact non-linear", Tables::NonLinear | Tables::Exact}}) {
            const auto tables = std::make_shared<std::unique_ptr<Tables>>();
            const auto get = [=]() -> Tables& {
                if (!*tables) *tables = std::make_unique<Tables>(depth, way.parts);
                return **tables;
            };
            const zolbench::Side ours{"zolwebcs", [=] { get().drag(); }};
            const bool sigmoid = (way.parts & Tables::Sigmoid) != 0;
            const zolbench::Side each{"loop", [=] { sigmoid ? get().exponentialForEach() : get().divideForEach(); }};
            zolbench::compare(prefix + way.name + (sigmoid ? " / exponential each" : " / division each"), 0.0, ours,
                              each);
        }
    }
});

}  // namespace
