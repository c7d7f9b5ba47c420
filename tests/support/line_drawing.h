// How lines look to the recorder of drawing calls.
#pragma once

#include "support/drawing.h"

#include <string>

namespace zoltest {

/// The pens and brushes of a figure, as names, around what it draws.
struct Look {
    std::string pen = "pen solid 0 0x0000ff";
    std::string brush = "brush 0x0000ff";
    std::string shadowPen = "pen solid 0 0x000000";
    bool shadowSelected = true;
    bool transparent = false;
};

/// The calls that draw a figure: its shadow and its outline inside what its look selects.
inline std::string figure(const Look& look, const std::string& shadow, const std::string& outline) {
    std::string out =
        "create " + look.pen + "\ncreate " + look.brush + "\ncreate " + look.shadowPen + "\ncreate brush 0x000000\n";
    if (look.shadowSelected) out += "select " + look.shadowPen + "\nselect brush 0x000000\n";
    if (look.transparent) out += "background transparent\n";
    out += shadow + "select " + look.pen + "\nselect " + look.brush + '\n' + outline;
    if (look.transparent) out += "background opaque\n";
    out += "select caller's brush\nselect caller's pen\ndelete brush 0x000000\ndelete " + look.shadowPen + "\ndelete " +
           look.brush + "\ndelete " + look.pen + '\n';
    return out;
}

/// On a printer, with a pen of `width` pixels.
inline Look printerLook(int width) {
    const std::string pen = "pen solid " + std::to_string(width);
    return {pen + " 0xffffff", "brush 0xffffff", pen + " 0x000000"};
}

/// Burnt in, with a pen of `width` pixels.
inline Look textLook(int width, const char* shadowColor = "0x000000") {
    const std::string pen = "pen solid " + std::to_string(width);
    return {pen + " 0x00ffff", "brush 0x00ffff", pen + ' ' + shadowColor};
}

class LineDrawing : public DrawingTest {
protected:
    /// Burnt in beside text of this height.
    [[nodiscard]] Rendering text(int height) {
        Rendering out = mode(4);
        out.prepare = [height](GdiRecorder& recorder) { recorder.textHeight = height; };
        return out;
    }
};

}  // namespace zoltest
