#pragma once

#include "zolcs/ccsexport.h"
#include "zolmemmap/zolmemmap.h"

/// Image type codes, as they travel through the interfaces.
enum CCsImageType : int {
    CCS_INDEX8 = 1,  ///< 8-bit palette index
    CCS_GREY12 = 2,  ///< 16-bit sample, 12 significant bits
    CCS_GREY8 = 3,   ///< 8-bit grey
    CCS_RGB12 = 4,   ///< four 16-bit words: blue, green, red, 0
    CCS_RGB8 = 5,    ///< four bytes: blue, green, red, 0 (a 32-bit top-down DIB)
    CCS_RGB24 = 6,   ///< three bytes: blue, green, red
    CCS_GREY16 = 7,  ///< 16-bit grey
};

/// The base of every pixel buffer: geometry, type and the memory in which the pixels live.
///
/// Line y starts at origin + y * pitch * bytes per pixel, top line first. The origin is good between getOrigin()
/// (which locks the memory) and unlock().
class ZOLWEBCS_API CCsImage {
public:
    CCsImage() = default;

    /// Deliberately copies nothing: the new image is empty.
    CCsImage(const CCsImage& other);

    /// Deliberately shallow: afterwards both images refer to the same buffer, which both would destroy. Hold such a
    /// copy where its destructor does not run.
    CCsImage& operator=(const CCsImage& other);

    /// A new object of the most derived class; null for a plain image.
    virtual CCsImage* NewInstance();

    /// Destroys the buffer.
    virtual ~CCsImage();

    /// Locks the buffer and returns the first pixel's address; null without a buffer.
    virtual unsigned char* getOrigin();

    /// Ends what getOrigin began. Does nothing without a buffer.
    virtual void unlock();

    [[nodiscard]] int getWidth() const { return width; }
    [[nodiscard]] int getHeight() const { return height; }
    [[nodiscard]] int getType() const { return type; }
    /// Distance between the starts of two lines, in pixels.
    [[nodiscard]] int getPitch() const { return pitch; }
    /// Height of a pixel divided by its width; 0.0 until set.
    [[nodiscard]] double getRatioYx() const { return ratioYx; }
    [[nodiscard]] ZolMemMappedBuffer* GetMemBuffer() const { return mMemBuffer; }

    /// Bytes of a pixel; types other than 1 to 6 (16-bit grey included) are reported and give 0.
    [[nodiscard]] int getElemSize() const;

    /// Zeroes all lines with their padding. 255, or 0 without a buffer or for types 6, 7 and unknown ones.
    int clear();

    /// Fills a grey or index image, whole 32-bit words at a time: what is left of a line beyond the last whole word
    /// stays as it was. 255, or 0 without a buffer or for another type.
    int fill(long value);

    /// Fills a colour image of type 4 or 5. 255, or 0 without a buffer or for another type.
    int fill(long red, long green, long blue);

    /// Shifts every sample right by `bits`.
    void shiftRight(int bits);

protected:
    /// `value` rounded up to the next multiple.
    static int padding(int value, int multiple);

    int width = -1;
    int height = -1;
    int type = -1;
    unsigned char* origin = nullptr;
    int pitch = -1;
    double ratioYx = 0.0;
    ZolMemMappedBuffer* mMemBuffer = nullptr;
};
