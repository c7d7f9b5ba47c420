// What the 16-bit grey map has of its own; the rest is what grey maps share.
#include "zolcs/ccsraster.h"
#include "zolcs/mapping/greymap.h"
#include "zolcs/support/clone.h"

namespace {

constexpr const wchar_t* module = L"source\\zolcs\\ccsmap16";

constexpr zolcs::mapping::GreyMapKind grey16 = {
    .entries = 65536,
    // Deliberate: a sigmoid leaves the very last entry as it was.
    .sigmoidEntries = 65535,
    .presentsStoredValues = true,
    .presentationMissing = {L"Memory not allocated for origNonLinearPreLut16_", module, 417},
    .nonLinearMissing = {L"Memory not allocated for origNonLinearLut16_", module, 461},
    .windowedMissing = {L"Memory not allocated for windowedNonLinearLut16_", module, 484},
    .images = zolcs::mapping::mapRasterRules(CCS_GREY16, L"Source type must be CCS_GREY16, is", module, 602),
    .reports = zolcs::mapping::greyMapReports(module),
};

}  // namespace

CCsGrey16Map::CCsGrey16Map() : GreyMap(grey16) {}

IMap* CCsGrey16Map::clone() { return zolcs::cloneOf(*this); }
