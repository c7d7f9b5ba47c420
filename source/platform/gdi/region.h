// The objects that handles of regions name.
#pragma once

#include "platform/gdi/area.h"
#include "platform/gdi/handles.h"

#include <mutex>
#include <utility>

namespace zolgdi {

/// An area that calls combine and move, from any thread.
class Region : public DrawingObject {
public:
    explicit Region(Area area) : area_(std::move(area)) {}
    [[nodiscard]] Area area() const {
        const std::lock_guard lock(mutex_);
        return area_;
    }
    void set(Area area) {
        const std::lock_guard lock(mutex_);
        area_ = std::move(area);
    }

private:
    mutable std::mutex mutex_;
    Area area_;
};

}  // namespace zolgdi
