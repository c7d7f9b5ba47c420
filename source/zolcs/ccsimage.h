#pragma once

#include "zolcs/ccsexport.h"
#include "zolcs/ccsresults.h"
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

    /// Destroys the buffer. The origin is no longer good.
    virtual ~CCsImage();

    /// Locks the buffer and returns the first pixel's address; null without a buffer. Every call is followed by
    /// unlock().
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

    /// Bytes of a pixel. Deliberately knows types 1 to 6 only: 16-bit grey (7) and unknown types are reported and give
    /// 0, so callers that handle 16-bit grey count its 2 bytes themselves.
    [[nodiscard]] int getElemSize() const;

    // The whole-buffer operations below lock the memory, work from the top line down and unlock it on every path. None
    // passes the end of the memory, however small an adopted buffer is. Without memory they do nothing and give 0.

    /// Zeroes all lines with their padding. 255; 0 without a buffer (not reported), or, reported, for types 6, 7 and
    /// unknown ones.
    int clear();

    /// Fills a grey or index image, whole 32-bit words at a time: what is left of a line beyond the last whole word
    /// (up to 3 pixels of a byte image, 1 of a 16-bit one) stays as it was. A value beyond the pixel's range is not
    /// clamped: it runs into the next pixel of the word. 255; 0 without a buffer (not reported), or, reported, for
    /// colour and unknown types.
    int fill(long value);

    /// Fills the pixels of a colour image of type 4 (the low 16 bits of each argument) or 5 (the arguments joined to
    /// red << 16 | green << 8 | blue). 255; 0 without a buffer (not reported), or, reported, for another type.
    int fill(long red, long green, long blue);

    /// Shifts every sample right by `bits`. Types 2, 4 and 7 shift the whole memory, line padding included, when the
    /// packed paths are switched on (a count outside 0 to 15 gives 0); otherwise the pixels of each line by `bits` mod
    /// 32, and of type 4, deliberately, the lines from the second one to the guard line below the last. Types 3 and 5
    /// shift the pixels' bytes by `bits` mod 32. Reported, without effect: no buffer, types 1, 6 and unknown ones.
    void shiftRight(int bits);

protected:
    /// `value` rounded up to the next multiple (towards zero below 1): padding(0, 8) is 0. Never beyond the largest
    /// int.
    static int padding(int value, int multiple);

    int width = -1;
    int height = -1;
    int type = -1;
    unsigned char* origin = nullptr;
    int pitch = -1;
    double ratioYx = 0.0;
    ZolMemMappedBuffer* mMemBuffer = nullptr;
};
