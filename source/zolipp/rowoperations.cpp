#include "zolipp/rowoperations.h"

#include "platform/vectorchoice.h"
#include "zolipp/exchange.h"
#include "zolipp/rowvectors.h"

namespace zolipp {

namespace {

template <typename Format>
void widen(const std::byte* pixels, int count, float* out) {
    using Sample = typename Format::Sample;
    for (std::ptrdiff_t i = 0; i < std::ptrdiff_t{count} * Format::channels; ++i) {
        out[i] = static_cast<float>(loadSample<Sample>(pixels, i));
    }
}

template <typename Format, int taps>
void filterColumns(const float* row, const ColumnTable& columns, float* out) {
    constexpr std::ptrdiff_t channels = Format::channels;
    for (std::ptrdiff_t i = 0; i < columns.count; ++i) {
        const float* pixel = row + columns.first[i] * channels;
        for (std::ptrdiff_t channel = 0; channel < channels; ++channel) {
            float sum = columns.weights[i] * pixel[channel];
            for (int k = 1; k < taps; ++k) {
                sum += columns.weights[k * columns.pitch + i] * pixel[k * channels + channel];
            }
            out[i * channels + channel] = sum;
        }
    }
}

template <typename Format, int taps>
void mixRows(const float* const* rows, const float* weights, int count, std::byte* pixels) {
    using Sample = typename Format::Sample;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        for (std::ptrdiff_t channel = 0; channel < Format::written; ++channel) {
            const std::ptrdiff_t index = i * Format::channels + channel;
            float sum = weights[0] * rows[0][index];
            for (int k = 1; k < taps; ++k) sum += weights[k] * rows[k][index];
            storeSample<Sample>(pixels, index, roundedSample<Sample>(sum));
        }
    }
}

template <int taps>
void locate(const LinePosition& position, int column, int count, AxisSpots& spots) {
    for (int i = 0; i < count; ++i) {
        const auto neighbours = neighboursAt<taps>(position.at(column + i));
        spots.first[i] = static_cast<std::int32_t>(neighbours.first);
        for (std::size_t k = 0; k < taps; ++k) spots.weights[k][i] = neighbours.weights[k];
    }
}

template <typename Format, int taps>
void mixSpots(const SourceImage& source, Spots& spots, int count, std::byte* pixels) {
    for (int i = 0; i < count; ++i) {
        Neighbours<taps> columns{spots.x.first[i], {}};
        Neighbours<taps> rows{spots.y.first[i], {}};
        for (std::size_t k = 0; k < taps; ++k) {
            columns.weights[k] = spots.x.weights[k][i];
            rows.weights[k] = spots.y.weights[k][i];
        }
        samplePixel<Format>(source, columns, rows, pixels);
        pixels += pixelBytes<Format>;
    }
}

template <typename Format>
constexpr FormatOperations portableOf{widen<Format>,
                                      {filterColumns<Format, 2>, filterColumns<Format, 4>},
                                      {mixRows<Format, 2>, mixRows<Format, 4>},
                                      {mixSpots<Format, 2>, mixSpots<Format, 4>},
                                      {exchangeVectors<Format, Straight>, exchangeVectors<Format, Reversed>}};

constexpr RowOperations portableOperations{
    {locate<1>, locate<2>, locate<4>}, portableOf<Grey16>, portableOf<FourBytes>, portableOf<ThreeOfFourBytes>};

constinit zolplatform::VectorChoice choice;

}  // namespace

const RowOperations& RowOperations::chosen() {
#if defined(ZOL_USE_HIGHWAY)
    if (choice.wantsVectors()) return rowvectors::chosen();
#endif
    return portableOperations;
}

const RowOperations& RowOperations::portable() { return portableOperations; }

bool RowOperations::isPlain() { return choice.wantsPlainLoops(); }

std::vector<std::string> RowOperations::variants() { return zolplatform::VectorChoice::names(); }

bool RowOperations::choose(const std::string& variant) { return choice.choose(variant); }

}  // namespace zolipp
