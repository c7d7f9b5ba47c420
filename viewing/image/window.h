// Windows: the range of values that is shown from black to white (DICOM PS3.3 C.11.2.1.2 and C.11.2.1.3).
#pragma once

namespace viewing {

/// How a window turns values into grey: DICOM's VOI LUT Functions. LINEAR counts the values of the window, both ends
/// included; LINEAR_EXACT takes the width as a length.
enum class WindowFunction { Linear, LinearExact, Sigmoid };

/// Centre and width in output units, those of the image after slope and intercept or the Modality LUT: Hounsfield
/// units, for one.
struct Window {
    double centre = 0.0;
    double width = 1.0;
    bool operator==(const Window&) const = default;
};

/// A window with the function by which it is applied.
struct VoiWindow {
    Window window;
    WindowFunction function = WindowFunction::Linear;
    bool operator==(const VoiWindow&) const = default;
};

/// The straight line from black to white, in output units. A value at or below `black` is black, one above `white` is
/// white, also where both are the same.
struct GreyLine {
    double black = 0.0;
    double white = 0.0;
};

/// True when the window can be applied: both numbers are finite, and the width is at least 1 for LINEAR and above 0 for
/// the other functions.
bool isUsable(const VoiWindow& voi);

/// The line of a usable window: C.11.2.1.2.1 for LINEAR, C.11.2.1.3.2 for LINEAR_EXACT; for SIGMOID that of
/// LINEAR_EXACT, which the curve follows around its centre.
GreyLine lineOf(const VoiWindow& voi);

}  // namespace viewing
