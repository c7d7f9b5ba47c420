#pragma once

#include "zolcs/ccsexport.h"
#include "zolcs/ccsresults.h"

#include <cstdint>

class CCsImage;

/// Directions of CCs2dTrafo::mirror.
inline constexpr int CCS_HORIZONTAL = 1;  ///< left and right exchange
inline constexpr int CCS_VERTICAL = 2;    ///< top and bottom exchange

/// The relation between a source image and a destination image (the display).
///
/// Every matrix here is six doubles (a, b, c, d, e, f) with x' = a x + c y + e and y' = b x + d y + f. x counts columns
/// to the right and y rows downwards, in pixels from the upper left corner of the first pixel, whose centre is (0.5,
/// 0.5). There are three matrices:
/// - The view matrix, on which the view operations act. It is normalised: scale 1 means that the whole image fits the
///   display segment, and a pan of 1 moves the image by the display's extent in the direction that limits the fit.
/// - Image to display, in pixels. It maps the image's centre to the display's centre, plus offset and pan.
/// - Display to image, its inverse.
///
/// The two pixel matrices are computed when they are read and kept until the next change.
///
/// Everything is computed in double, without rounding to pixels, and has the same bits on every platform. Sizes, ratios
/// and factors are used as given: a size or ratio of 0 gives infinities or NaN in the pixel matrices, and nothing
/// worse. Operations that return int return CCS_DONE (255) unless they say otherwise.
class ZOLWEBCS_API CCs2dTrafo {
public:
    /// The identity between two images of one square pixel.
    CCs2dTrafo();

    /// The view matrix row by row: x' = m11 x + m12 y + m13, y' = m21 x + m22 y + m23.
    CCs2dTrafo(double m11, double m12, double m13, double m21, double m22, double m23);

    CCs2dTrafo(const CCs2dTrafo&) = default;
    CCs2dTrafo& operator=(const CCs2dTrafo&) = default;
    virtual ~CCs2dTrafo();

    /// Resets the view matrix to the identity; sizes, ratios and modes stay.
    void reset();

    /// Sets width, height and pixel ratio of both images. The display segment is the whole destination, without offset.
    void setSizes(const CCsImage& source, const CCsImage& destination);

    /// Sizes are in pixels; a ratio is the height of a pixel divided by its width. The offset, in destination pixels,
    /// is added to the image's position.
    void setSizes(const CCsImage& source, int width, int height, double ratioYx, int offsetX, int offsetY);

    /// As above, with the source's size and ratio given too.
    void setSizes(int sourceWidth, int sourceHeight, int width, int height, double sourceRatioYx, double ratioYx,
                  int offsetX, int offsetY);

    /// Sets destination and offset only. Deliberately leaves getDstMax unchanged.
    void setDestSizes(int width, int height, double ratioYx, int offsetX, int offsetY);

    /// Call this when the source has been transposed: exchanges its extents, inverts its ratio, clears the offset,
    /// recomputes getDstMax and turns the pan (px, py): to (-py, px) when the flags are equal, to (py, -px) when they
    /// differ.
    void swapSourceDimension(bool flag1, bool flag2);

    /// Not 0 (the default): at scale 1 the whole image fits the destination. 0: the source's larger extent fills the
    /// destination's larger extent.
    void setDstSmallerSide(int on);

    /// Sets whether a fit-sized view is fitted again after a quarter turn. Deliberately not a change by itself: the
    /// mode takes effect with the next change.
    void setFitIntoSegementMode(bool on);

    /// Source width and height in pixels.
    [[nodiscard]] CSize getSrcSize() const;

    /// Destination width and height in pixels.
    [[nodiscard]] CSize getDstSize() const;

    /// The destination's extent in the direction that limited the fit when the sizes were set: its width in pixels,
    /// or its height times its ratio.
    [[nodiscard]] double getDstMax() const;

    /// The source extent that the fit compares: its width in pixels, or its height times its ratio. Deliberately treats
    /// a fit-sized quarter turn as fitted again even where that mode is off. Reports a singular view matrix.
    [[nodiscard]] double getSrcMax();

    /// Whether the source's ratio differs from 1 by more than 1e-6.
    [[nodiscard]] bool isSourceAspectRatioOtherThanUnity() const;

    /// Zooms about the display's centre: the pan is scaled, too.
    void scale(double factor);

    /// Zooms about the image's centre: the pan stays as it is.
    void scale2dMatrix(double factor);

    /// Adds to the pan.
    void translate(double dx, double dy);

    /// Turns the view, pan included, clockwise as seen.
    void rotate(double degrees);

    /// Mirrors the view, pan included. Returns CCS_DONE; or CCS_INVALID, reported, for anything but CCS_HORIZONTAL and
    /// CCS_VERTICAL, and changes nothing then.
    int mirror(int direction);

    void setDspPanFactor(double px, double py);
    void getDspPanFactor(double& px, double& py) const;

    /// Gives the pan. Deliberately counts as a change, although it changes nothing.
    void getTranslation(double& tx, double& ty);

    /// Decomposes the view matrix into the angle in degrees in [0, 360], mirrored (0 or 1), scale (above 0) and pan.
    /// Returns CCS_DONE; or CCS_FAILED, reported, for a singular matrix, and sets only the pan then. When rounding
    /// carries the cosine beyond 1, the angle is NaN: treat it as an oblique angle.
    int getOperations(double& angle, int& mirrored, double& scale, double& tx, double& ty);

    /// Whether the view's scale is within 0.01 of 1.
    [[nodiscard]] bool isFitIntoSegment();

    /// Whether setDspScaleFactor is just leaving a fit-sized view.
    [[nodiscard]] bool isTransition() const;

    /// 1 when the view maps axes onto axes (quarter turns, mirrored or not), else 0.
    [[nodiscard]] int isTransposition() const;

    /// Gives the matrix from display pixels to image pixels.
    void getTransformation(double& a, double& b, double& c, double& d, double& e, double& f);

    /// Gives the matrix from image pixels to display pixels.
    int getImgToDsp(double& a, double& b, double& c, double& d, double& e, double& f);

    /// Gives display pixels per source pixel: the square root of the factor of areas.
    int getDspScaleFactor(double& factor);

    /// Gives display pixels per source pixel along the display's axes, where the view is within a degree of a multiple
    /// of 90 degrees, mirrored or not. At any other angle, and deliberately also just below a full turn, both arguments
    /// stay unchanged.
    int getDspScaleFactorXY(double& fx, double& fy);

    /// Zooms, pan included, to `factor` display pixels per source pixel.
    int setDspScaleFactor(double factor);

    /// Whether one display pixel shows one source pixel, within 0.01.
    [[nodiscard]] bool isAcqisitionSize();

private:
    struct Extents {
        double source;
        double destination;
    };
    struct Operations {
        double angle = 0.0;
        int mirrored = 0;
        double scale = 1.0;
    };

    void setSource_(int width, int height, double ratioYx);
    void computeDstMax_();
    Operations operations_();
    Extents fitExtents_(bool refitQuarterTurns);
    void adaptTransformation_();
    [[nodiscard]] double meanScale_() const;

    double userMatrix[6] = {1.0, 0.0, 0.0, 1.0, 0.0, 0.0};
    std::int32_t isValid = 0;
    std::int32_t srcWidth = 1;
    std::int32_t srcHeight = 1;
    std::int32_t dstWidth = 1;
    std::int32_t dstHeight = 1;
    std::int32_t dstOffsetX = 0;
    std::int32_t dstOffsetY = 0;
    double srcRatioYx = 1.0;
    double dstRatioYx = 1.0;
    double dstMax = 1.0;
    double imgToDsp[6] = {1.0, 0.0, 1.0, 0.0, 0.0, 0.0};  // computed before it is read
    double dspToImg[6] = {1.0, 1.0, 0.0, 0.0, 0.0, 0.0};  // likewise
    double pi;
    std::int32_t dstSmallerSide = 1;
    bool transition = false;
    bool fitIntoSegmentMode = true;
};
