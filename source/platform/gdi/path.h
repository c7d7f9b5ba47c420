// The path of a device context: outlines that calls collect, to be drawn at once.
#pragma once

#include "platform/gdi/canvas.h"

#include <optional>

namespace zolgdi {

/// Nothing, a bracket that takes up outlines, or a path that is complete and waits to be drawn. In device pixels.
class Path {
public:
    /// Begins a bracket; a complete path is discarded, an open bracket goes on.
    void begin();
    /// The bracket's path is complete. False without a bracket.
    bool end();
    void discard();
    [[nodiscard]] bool isOpen() const { return phase_ == Phase::open; }

    /// The next line begins a figure of its own.
    void move() { connected_ = false; }
    /// Goes on with the last figure, or begins one at `from`.
    void line(PointD from, PointD to);
    /// Whole figures; the next line begins a figure of its own.
    void append(const Figures& figures);
    /// Joins the last figure's end to its beginning.
    void close();

    /// The complete path, which is gone then; nothing when there is none.
    std::optional<Figures> take();

private:
    enum class Phase { none, open, complete };

    Phase phase_ = Phase::none;
    Figures figures_;
    bool connected_ = false;
};

}  // namespace zolgdi
