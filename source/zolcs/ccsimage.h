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

/// The base of every pixel buffer: geometry, type and the memory that holds the pixels.
///
/// Row y starts at origin + y * pitch * bytes per pixel, top row first. The origin is valid between getOrigin(), which
/// locks the memory, and unlock().
class ZOLWEBCS_API CCsImage {
public:
    CCsImage() = default;

    /// Deliberately copies nothing: the new image is empty.
    CCsImage(const CCsImage& other);

    /// Deliberately shallow: afterwards both images refer to the same buffer, which both would destroy. Hold such a
    /// copy where its destructor does not run.
    CCsImage& operator=(const CCsImage& other);

    /// Returns a new object of the most derived class, which the caller owns; null for a plain image.
    virtual CCsImage* NewInstance();

    /// Destroys the buffer. The origin is no longer valid.
    virtual ~CCsImage();

    /// Locks the buffer and returns the first pixel's address; null without a buffer. Follow every call by unlock().
    virtual unsigned char* getOrigin();

    /// Ends what getOrigin began. Does nothing without a buffer.
    virtual void unlock();

    [[nodiscard]] int getWidth() const { return width; }
    [[nodiscard]] int getHeight() const { return height; }
    [[nodiscard]] int getType() const { return type; }
    /// Distance between the starts of two rows, in pixels.
    [[nodiscard]] int getPitch() const { return pitch; }
    /// Height of a pixel divided by its width; 0.0 until set.
    [[nodiscard]] double getRatioYx() const { return ratioYx; }
    [[nodiscard]] ZolMemMappedBuffer* GetMemBuffer() const { return mMemBuffer; }

    /// Bytes per pixel. Deliberately knows types 1 to 6 only: 16-bit grey (7) and unknown types are reported and give
    /// 0, so callers that handle 16-bit grey count its 2 bytes themselves.
    [[nodiscard]] int getElemSize() const;

    // The operations on the whole buffer, below, lock the memory, work from the top row down and unlock it on every
    // path. None passes the end of the memory, however small an adopted buffer is. Without memory they do nothing and
    // return 0.

    /// Zeroes all rows with their padding. Returns CCS_DONE; or CCS_FAILED without a buffer (not reported) and for
    /// types 6, 7 and unknown types (reported).
    int clear();

    /// Fills a grey or index image in whole 32-bit words: the rest of a row beyond the last whole word (up to 3 pixels
    /// of a byte image, 1 of a 16-bit image) stays unchanged. A value beyond the pixel's range is not clamped: its
    /// upper bits run into the next pixel of the word. Returns CCS_DONE; or CCS_FAILED without a buffer (not reported)
    /// and for colour and unknown types (reported).
    int fill(long value);

    /// Fills the pixels of a colour image: of type 4 with the low 16 bits of each argument, of type 5 with
    /// red << 16 | green << 8 | blue. Returns CCS_DONE; or CCS_FAILED without a buffer (not reported) and for other
    /// types (reported).
    int fill(long red, long green, long blue);

    /// Shifts every sample right by `bits`.
    /// - Types 2, 4 and 7, packed paths switched on: the whole memory, row padding included; a count outside 0 to 15
    ///   gives 0.
    /// - Types 2, 4 and 7, otherwise: the pixels of each row by `bits` mod 32; of type 4, deliberately, the rows from
    ///   the second one to the guard row below the last.
    /// - Types 3 and 5: the pixels' bytes by `bits` mod 32.
    ///
    /// Without a buffer, and for types 1, 6 and unknown ones, it only reports.
    void shiftRight(int bits);

protected:
    /// `value` rounded up to the next multiple (towards zero below 1): padding(0, 8) is 0. Limited to the largest int.
    static int padding(int value, int multiple);

    int width = -1;
    int height = -1;
    int type = -1;
    unsigned char* origin = nullptr;
    int pitch = -1;
    double ratioYx = 0.0;
    ZolMemMappedBuffer* mMemBuffer = nullptr;
};
