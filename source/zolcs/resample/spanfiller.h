// What fills the spans of a display: the seam between the walk over a display and everything that makes its pixels.
#pragma once

#include "zolcs/view/stepping.h"

#include <memory>

namespace zolcs {

/// Fills neighbouring pixels of a display row whose positions all lie on the source.
///
/// A filler depends on positions only, so that the same one serves the rows of a display and, in a quarter turn, its
/// columns. It belongs to one call and one thread.
template <typename Pixel>
class SpanFiller {
public:
    SpanFiller() = default;
    SpanFiller(const SpanFiller&) = delete;
    SpanFiller& operator=(const SpanFiller&) = delete;
    virtual ~SpanFiller() = default;

    /// Before the first row of a view: what follows are rows of `stepping`.
    virtual void beginView(const Stepping& stepping) = 0;

    /// The columns of all fills until the next call lie within `columns`.
    virtual void beginColumns(ColumnRange columns) = 0;

    /// Writes the pixels of `columns` to `out`, which is the place of the first one. False when the call was told to
    /// stop; then any of these pixels may be missing.
    virtual bool fill(const DisplayRow& row, ColumnRange columns, Pixel* out) = 0;
};

template <typename Pixel>
using SpanFillerPtr = std::unique_ptr<SpanFiller<Pixel>>;

/// A filler that changes what another one shows, which it owns.
template <typename Pixel>
class FillerLayer : public SpanFiller<Pixel> {
public:
    void beginView(const Stepping& stepping) override { below_->beginView(stepping); }
    void beginColumns(ColumnRange columns) override { below_->beginColumns(columns); }

protected:
    explicit FillerLayer(SpanFillerPtr<Pixel> below) : below_(std::move(below)) {}

    [[nodiscard]] SpanFiller<Pixel>& below() const { return *below_; }

private:
    SpanFillerPtr<Pixel> below_;
};

}  // namespace zolcs
