// What a render call draws, as the recorder's text.
#pragma once

#include "support/gdi_canvas.h"
#include "support/gdi_recorder.h"
#include "support/overlay_views.h"

#include "zolcs/ccsoverlay.h"

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <string>

namespace zoltest {

/// The arguments of a render call that tests vary.
struct Rendering {
    CCs2dTrafo* image = nullptr;
    CCs2dTrafo* output = nullptr;
    int mode = 1;
    unsigned long color = 0x0000FF;
    int offsetX = 0;
    int offsetY = 0;
    std::function<void(GdiRecorder&)> prepare = nullptr;
};

/// The calls of `draw` on a device context. Fails the test when one of them leaves a GDI object behind or the device
/// context with other objects.
template <typename Draw>
std::string drawn(const Rendering& rendering, const Draw& draw) {
    const Canvas canvas(64, 64);
    const HGDIOBJ pen = GetCurrentObject(canvas.dc(), OBJ_PEN);
    const HGDIOBJ brush = GetCurrentObject(canvas.dc(), OBJ_BRUSH);
    const HGDIOBJ font = GetCurrentObject(canvas.dc(), OBJ_FONT);
    const unsigned int before = gdiObjectCount();
    std::string calls;
    {
        GdiRecorder recorder(canvas.dc());
        if (rendering.prepare) rendering.prepare(recorder);
        draw(canvas.dc());
        calls = recorder.take();
    }
    EXPECT_EQ(gdiObjectCount(), before);
    EXPECT_EQ(GetCurrentObject(canvas.dc(), OBJ_PEN), pen);
    EXPECT_EQ(GetCurrentObject(canvas.dc(), OBJ_BRUSH), brush);
    EXPECT_EQ(GetCurrentObject(canvas.dc(), OBJ_FONT), font);
    return calls;
}

inline std::string drawn(CCsOverlay& overlay, const Rendering& rendering) {
    return drawn(rendering, [&](HDC dc) {
        overlay.render(rendering.image, rendering.output, rendering.color, dc, rendering.mode, 64, 64,
                       rendering.offsetX, rendering.offsetY);
    });
}

/// Renders through views whose matrices are exact.
class DrawingTest : public ::testing::Test {
protected:
    [[nodiscard]] Rendering mode(int mode) { return {&view, &output, mode}; }
    [[nodiscard]] Rendering screen() { return mode(1); }
    [[nodiscard]] Rendering printer(int dotsPerInch) {
        Rendering out = mode(2);
        out.prepare = [dotsPerInch](GdiRecorder& recorder) { recorder.dotsPerInch = dotsPerInch; };
        return out;
    }

    CCs2dTrafo view = identityView();
    CCs2dTrafo output = identityView();
};

/// Calls as the recorder writes them.
inline std::string calls(std::initializer_list<const char*> lines) {
    std::string out;
    for (const char* line : lines) out += std::string(line) + '\n';
    return out;
}

/// A square painted as a region.
inline std::string square(int left, int top) {
    const std::string region = "region " + std::to_string(left) + ' ' + std::to_string(top) + ' ' +
                               std::to_string(left + 5) + ' ' + std::to_string(top + 5) + '\n';
    return "create " + region + "paint " + region + "delete " + region;
}

}  // namespace zoltest
