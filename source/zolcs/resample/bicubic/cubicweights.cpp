#include "zolcs/resample/bicubic/cubicweights.h"

#include <cassert>
#include <new>
#include <utility>

namespace zolcs {

namespace {

struct Tables {
    CubicWeights* fine = nullptr;
    CubicWeights* coarse = nullptr;
    bool freed = false;

    /// The pointers stay: nothing is built again after this. A host's own clean-up may come after ours, and the other
    /// way round.
    void free() {
        if (std::exchange(freed, true)) return;
        delete[] fine;
        delete[] coarse;
    }
};

constinit Tables tables;

/// Apart from the tables, so that these can still be asked once it has run.
struct FreesAtUnload {
    constexpr FreesAtUnload() = default;
    FreesAtUnload(const FreesAtUnload&) = delete;
    FreesAtUnload& operator=(const FreesAtUnload&) = delete;
    ~FreesAtUnload() { tables.free(); }
};

constinit FreesAtUnload freesAtUnload;

/// Cubic convolution with the parameter -0.75, at the fraction t. All terms are exact in double.
CubicWeights weightsAt(double t) {
    constexpr double a = -0.75;
    const auto outer = [](double s) {
        return static_cast<std::int32_t>(65536.0 * a * (s * s * s - 5.0 * s * s + 8.0 * s - 4.0));
    };
    const std::int32_t w0 = outer(1.0 + t);
    const auto w1 = static_cast<std::int32_t>(65536.0 * ((a + 2.0) * t * t * t - (a + 3.0) * t * t + 1.0));
    const std::int32_t w3 = outer(2.0 - t);
    // What rounding lost goes here, so that a flat image stays flat.
    return {w0, w1, 65536 - w0 - w1 - w3, w3};
}

CubicWeights* makeTable(int steps) {
    auto* table = new (std::nothrow) CubicWeights[static_cast<std::size_t>(steps)];
    if (table == nullptr) throw 1;
    for (int i = 0; i < steps; ++i) table[i] = weightsAt(static_cast<double>(i) / steps);
    return table;
}

}  // namespace

void buildCubicWeights() {
    if (tables.fine == nullptr) tables.fine = makeTable(fineCubicSteps);
    if (tables.coarse == nullptr) tables.coarse = makeTable(coarseCubicSteps);
}

void freeCubicWeights() { tables.free(); }

const CubicWeights* fineCubicWeights() {
    assert(!tables.freed);
    return tables.fine;
}

const CubicWeights* coarseCubicWeights() {
    assert(!tables.freed);
    return tables.coarse;
}

}  // namespace zolcs
