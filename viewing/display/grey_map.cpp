#include "viewing/display/grey_map.h"

#include "viewing/image/refusal.h"

#include <cmath>
#include <cstdint>
#include <vector>

namespace viewing {

namespace {

using Words = std::vector<std::uint16_t>;

std::uint16_t rounded(double grey) { return static_cast<std::uint16_t>(std::floor(grey + 0.5)); }

/// Whether every level of the map's table comes out within one grey of its definition, and no darker than the level
/// before unless it is defined so.
bool agrees(IGreyMap& map, const GreyTransform& transform) {
    CCsColorMan ramp;
    CCsColorMapT greys;
    ramp.getColorMap(greys);
    map.setColorMapIndex(&greys);
    const auto* const table = static_cast<const std::uint32_t*>(map.getLut());
    bool near = table != nullptr;
    double definedBefore = 0.0;
    for (int level = 0; near && level < transform.levels(); ++level) {
        const double defined = transform.grey(level);
        const auto grey = [table](int at) { return static_cast<int>(table[at] & 0xFFU); };
        const bool falls = level > 0 && grey(level) < grey(level - 1);
        near = std::abs(grey(level) - defined) <= 1.0 && (!falls || defined < definedBefore);
        definedBefore = defined;
    }
    map.setColorMapIndex(nullptr);
    return near;
}

/// Only the 12-bit map takes a presentation table as DICOM means it; the 16-bit one looks stored values up in it.
bool mapPresents(const GreyTransform& transform) { return transform.presentation() && transform.levels() == levels12; }

/// The presentation table in greys.
void setPresentation(IGreyMap& map, const LookupTable& table) {
    Words greys;
    for (const std::uint16_t entry : table.entries) greys.push_back(rounded(255.0 * entry / table.top()));
    map.setPresentationLut(greys.data(), 0, static_cast<int>(greys.size()));
}

/// The table for all levels, one entry each.
void setTable(IGreyMap& map, const GreyTransform& transform) {
    Words table;
    if (mapPresents(transform)) {
        // Of a value of 16 bits, the map takes the presentation table's entry value * count / 65536. One more value, to
        // which no level comes, tells it that there are 16 bits, however low the others are.
        const auto count = static_cast<std::uint32_t>(transform.presentation()->entries.size());
        for (int level = 0; level < transform.levels(); ++level) {
            const auto entry = static_cast<std::uint32_t>(transform.presentationEntry(transform.shown(level)));
            table.push_back(static_cast<std::uint16_t>((entry * 65536U + count - 1U) / count));
        }
        table.push_back(0xFFFF);
    } else {
        for (int level = 0; level < transform.levels(); ++level) table.push_back(rounded(transform.grey(level)));
    }
    const int count = static_cast<int>(table.size());
    map.setNonLinearLut(table.data(), 0, count, false);
    map.setWindow(static_cast<unsigned int>(count / 2), count);
}

}  // namespace

std::unique_ptr<IGreyMap> makeGreyMap(const GreyTransform& transform) {
    const bool deep = transform.levels() == levels16;
    std::unique_ptr<IMap> created(MapFactory::CreateMap(deep ? MapFactory::Grey16 : MapFactory::Grey12));
    std::unique_ptr<IGreyMap> map(dynamic_cast<IGreyMap*>(created.get()));
    if (map == nullptr) throw Refusal("not enough memory");
    static_cast<void>(created.release());

    if (mapPresents(transform)) setPresentation(*map, *transform.presentation());
    if (const auto window = transform.rasterWindow()) {
        if (window->sigmoid) map->enableSigmoid();
        map->setSigmoidBits(deep ? 16 : 12);
        map->setWindow(static_cast<unsigned int>(window->centre), window->width);
        if (agrees(*map, transform)) return map;
    }
    setTable(*map, transform);
    return map;
}

bool fallsFromWhite(IGreyMap& map, int levels) {
    const auto* const table = static_cast<const std::uint32_t*>(map.getLut());
    const auto brightness = [](std::uint32_t pixel) {
        return (pixel & 0xFFU) + ((pixel >> 8U) & 0xFFU) + ((pixel >> 16U) & 0xFFU);
    };
    return table != nullptr && brightness(table[0]) > brightness(table[levels - 1]);
}

}  // namespace viewing
