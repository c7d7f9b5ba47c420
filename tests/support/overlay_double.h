// An overlay for tests: it writes down what is asked of it and answers as it is told.
#pragma once

#include "zolcs/ccsgroup.h"
#include "zolcs/ccsoverlay.h"

#include <functional>
#include <string>
#include <vector>

namespace zoltest {

/// What a plain render was called with.
struct RenderCall {
    CCs2dTrafo* imageTrafo = nullptr;
    CCs2dTrafo* outputTrafo = nullptr;
    unsigned long color = 0;
    HDC dc = nullptr;
    int mode = 0;
    int width = 0;
    int height = 0;
    int offsetX = 0;
    int offsetY = 0;

    bool operator==(const RenderCall&) const = default;
};

/// Calls of all doubles that share a log, in order: the double's name, a point, the operation and its numbers.
using CallLog = std::vector<std::string>;

class OverlayDouble : public CCsOverlay {
public:
    explicit OverlayDouble(std::string itsName = {}, CallLog* itsLog = nullptr)
        : name(std::move(itsName)), log(itsLog) {
        ++living;
    }
    OverlayDouble(const OverlayDouble& other)
        : CCsOverlay(other), name(other.name), log(other.log), hit(other.hit), onRender(other.onRender) {
        ++living;
    }
    OverlayDouble& operator=(const OverlayDouble& other) = default;
    ~OverlayDouble() override { --living; }

    CCsOverlay* NewInstance() override { return new OverlayDouble(*this); }
    CCsOverlay* pick(int x, int y) override {
        write("pick " + std::to_string(x) + ' ' + std::to_string(y));
        return hit ? this : nullptr;
    }
    int unselect(RECT& rect) override {
        write("unselect");
        rect.left = 77;
        return CCsOverlay::unselect(rect);
    }
    void move(CCs2dTrafo* trafo, int x0, int y0, int x1, int y1, CCsRegion* region) override {
        lastTrafo = trafo;
        write("move " + std::to_string(x0) + ' ' + std::to_string(y0) + ' ' + std::to_string(x1) + ' ' +
              std::to_string(y1));
        if (region != nullptr) region->join(CCsRegion(x1, y1, 1, 1));
    }
    using CCsOverlay::render;
    void render(CCs2dTrafo* imageTrafo, CCs2dTrafo* outputTrafo, unsigned long color, HDC dc, int mode, int width,
                int height, int offsetX, int offsetY) override {
        write("render");
        renders.push_back({imageTrafo, outputTrafo, color, dc, mode, width, height, offsetX, offsetY});
        if (onRender) onRender(renders.back());
    }
    void dspToImg(CCs2dTrafo* trafo) override {
        lastTrafo = trafo;
        write("dspToImg");
    }
    void getSize(RECT& rect) override {
        write("getSize");
        ++rect.right;
    }
    void size(unsigned int what, int dx, int dy, CCs2dTrafo* trafo) override {
        lastTrafo = trafo;
        write("size " + std::to_string(what) + ' ' + std::to_string(dx) + ' ' + std::to_string(dy));
    }
    int isTransformable() override {
        write("isTransformable");
        return CCsOverlay::isTransformable();
    }
    void updateTrafo(CCs2dTrafo* trafo, bool flag) override {
        lastTrafo = trafo;
        write(flag ? "updateTrafo 1" : "updateTrafo 0");
    }
    void setDicomPrintFlag(bool on) override {
        write(on ? "print flag 1" : "print flag 0");
        dicomPrintFlag = on;
    }

    // The base's own fields, for a look.
    [[nodiscard]] CCsOverlay* previousLink() const { return previous; }
    [[nodiscard]] CCsOverlay* nextLink() const { return next; }
    [[nodiscard]] CCsGroup* owner() const { return group; }
    [[nodiscard]] bool isBurnt() const { return burntToImage; }
    [[nodiscard]] bool isMovable() const { return movable; }
    [[nodiscard]] int pickFlag() const { return groupPickFlag; }

    std::string name;
    CallLog* log;
    bool hit = false;
    std::function<void(const RenderCall&)> onRender;
    std::vector<RenderCall> renders;
    CCs2dTrafo* lastTrafo = nullptr;

    static inline int living = 0;

private:
    void write(const std::string& call) {
        if (log != nullptr) log->push_back(name + '.' + call);
    }
};

}  // namespace zoltest
