#pragma once

#include "zolcs/ccsexport.h"

#include <cstdint>

class CCsImage;

/// Mirror directions.
inline constexpr int CCS_HORIZONTAL = 1;  ///< left and right exchange
inline constexpr int CCS_VERTICAL = 2;    ///< top and bottom exchange

/// The relation between a source image and a destination image.
///
/// View operations act on a normalised matrix in which scale 1 means that the whole image fits the display segment.
/// Every matrix here is six doubles (a, b, c, d, e, f) with x' = a x + c y + e and y' = b x + d y + f; x is the column
/// and y the row, both growing right and down. Pixel matrices are computed when asked for and kept until a mutator.
class ZOLWEBCS_API CCs2dTrafo {
public:
    CCs2dTrafo();
    /// The normalised matrix row by row.
    CCs2dTrafo(double m11, double m12, double m13, double m21, double m22, double m23);
    CCs2dTrafo(const CCs2dTrafo&) = default;
    CCs2dTrafo& operator=(const CCs2dTrafo&) = default;
    virtual ~CCs2dTrafo();

    void reset();

    void setSizes(const CCsImage& source, const CCsImage& destination);
    void setSizes(const CCsImage& source, int width, int height, double ratioYx, int offsetX, int offsetY);
    void setSizes(int sourceWidth, int sourceHeight, int width, int height, double sourceRatioYx, double ratioYx,
                  int offsetX, int offsetY);
    void setDestSizes(int width, int height, double ratioYx, int offsetX, int offsetY);
    void swapSourceDimension(bool flag1, bool flag2);
    void setDstSmallerSide(int on);
    void setFitIntoSegementMode(bool on);
    [[nodiscard]] CSize getSrcSize() const;
    [[nodiscard]] CSize getDstSize() const;
    [[nodiscard]] double getDstMax() const;
    [[nodiscard]] double getSrcMax();
    [[nodiscard]] bool isSourceAspectRatioOtherThanUnity() const;

    void scale(double factor);
    void scale2dMatrix(double factor);
    void translate(double dx, double dy);
    void rotate(double degrees);
    int mirror(int direction);
    void setDspPanFactor(double px, double py);
    void getDspPanFactor(double& px, double& py) const;
    void getTranslation(double& tx, double& ty);

    int getOperations(double& angle, int& mirrored, double& scale, double& tx, double& ty);
    [[nodiscard]] bool isFitIntoSegment();
    [[nodiscard]] bool isTransition() const;
    [[nodiscard]] int isTransposition() const;
    void getTransformation(double& a, double& b, double& c, double& d, double& e, double& f);
    int getImgToDsp(double& a, double& b, double& c, double& d, double& e, double& f);
    int getDspScaleFactor(double& factor);
    int getDspScaleFactorXY(double& fx, double& fy);
    int setDspScaleFactor(double factor);
    [[nodiscard]] bool isAcqisitionSize();

private:
    double userMatrix[6];
    std::int32_t isValid;
    std::int32_t srcWidth;
    std::int32_t srcHeight;
    std::int32_t dstWidth;
    std::int32_t dstHeight;
    std::int32_t dstOffsetX;
    std::int32_t dstOffsetY;
    double srcRatioYx;
    double dstRatioYx;
    double dstMax;
    double imgToDsp[6];
    double dspToImg[6];
    double pi;
    std::int32_t dstSmallerSide;
    bool transition;
    bool fitIntoSegmentMode;
};
