#include "platform/gdi/path.h"

#include "platform/gdi/dc.h"

#include <utility>

namespace zolgdi {

void Path::begin() {
    if (isOpen()) return;
    discard();
    phase_ = Phase::open;
}

bool Path::end() {
    if (!isOpen()) return false;
    phase_ = Phase::complete;
    return true;
}

void Path::discard() { *this = Path(); }

void Path::line(PointD from, PointD to) {
    if (!connected_) figures_.push_back({{from}, false, false});
    connected_ = true;
    figures_.back().points.push_back(to);
}

void Path::append(const Figures& figures) {
    figures_.insert(figures_.end(), figures.begin(), figures.end());
    connected_ = false;
}

void Path::close() {
    if (!figures_.empty()) figures_.back().closed = true;
    connected_ = false;
}

std::optional<Figures> Path::take() {
    if (phase_ != Phase::complete) return std::nullopt;
    Figures out = std::move(figures_);
    discard();
    return out;
}

}  // namespace zolgdi

using zolgdi::DeviceContext;
using zolgdi::withDc;

BOOL BeginPath(HDC dc) {
    return withDc(dc, FALSE, [](DeviceContext& context) {
        context.path.begin();
        return TRUE;
    });
}

BOOL EndPath(HDC dc) {
    return withDc(dc, FALSE, [](DeviceContext& context) { return context.path.end() ? TRUE : FALSE; });
}

BOOL AbortPath(HDC dc) {
    return withDc(dc, FALSE, [](DeviceContext& context) {
        context.path.discard();
        return TRUE;
    });
}

BOOL CloseFigure(HDC dc) {
    return withDc(dc, FALSE, [](DeviceContext& context) {
        if (!context.path.isOpen()) return FALSE;
        context.path.close();
        return TRUE;
    });
}
