#include "zolcs/ccsimage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <tuple>
#include <vector>

#include "support/report_capture.h"
#include "support/test_data.h"
#include "zolcs/simd/capability.h"

namespace {

using zoltest::errorReport;
using zoltest::ReportCapture;
using Reports = std::vector<zoltest::Report>;

const wchar_t* const module = L"source\\zolcs\\ccsimage";

ZolMemMappedManager& manager() { return *ZolMemMappedManager::getIntance(); }

/// An image whose fields a test can set; its buffer has `bytes` bytes and `guard` more on both sides.
class Image : public CCsImage {
public:
    Image() = default;
    Image(int imageType, int imageWidth, int imageHeight, int imagePitch, std::size_t bytes, std::size_t guard = 64) {
        set(imageType, imageWidth, imageHeight, imagePitch);
        mMemBuffer = manager().allocateMapMemory(static_cast<unsigned int>(bytes), static_cast<unsigned long>(guard),
                                                 false, false);
    }

    void set(int imageType, int imageWidth, int imageHeight, int imagePitch) {
        type = imageType;
        width = imageWidth;
        height = imageHeight;
        pitch = imagePitch;
    }
    void setBuffer(ZolMemMappedBuffer* buffer) { mMemBuffer = buffer; }
    void setRatio(double ratio) { ratioYx = ratio; }
    [[nodiscard]] const unsigned char* lastOrigin() const { return origin; }

    using CCsImage::padding;

    /// Addresses of the fields in declared order.
    [[nodiscard]] std::vector<const void*> fields() const {
        return {&width, &height, &type, &origin, &pitch, &ratioYx, &mMemBuffer};
    }
};

int pixelBytes(int type) {
    const int bytes[] = {0, 1, 2, 1, 8, 4, 3, 2};
    return bytes[type];
}

/// An image of one type with padded lines, a spare line below and sentinels all around, filled with random bytes.
struct Scene {
    Scene(int type, int width, int height, int pitch, std::uint64_t seed)
        : stride(static_cast<std::size_t>(pitch * pixelBytes(type))),
          size(stride * static_cast<std::size_t>(height + 1) + static_cast<std::size_t>(pixelBytes(type))),
          image(type, width, height, pitch, size) {
        zoltest::Random random(seed);
        unsigned char* const data = image.GetMemBuffer()->lock();
        for (std::size_t i = 0; i < size; ++i) data[i] = static_cast<unsigned char>(random.bits());
        std::fill(data - 64, data, static_cast<unsigned char>(0xA5));
        std::fill(data + size, data + size + 64, static_cast<unsigned char>(0x5A));
        image.GetMemBuffer()->unlock(0, 1);
        before = bytes();
    }

    [[nodiscard]] std::vector<unsigned char> bytes() {
        const unsigned char* const data = image.GetMemBuffer()->lock();
        image.GetMemBuffer()->unlock(0, 1);
        return {data, data + size};
    }

    /// Nothing outside the memory changed, and nothing stays locked.
    void expectIntact() {
        const unsigned char* const data = image.GetMemBuffer()->lock();
        image.GetMemBuffer()->unlock(0, 1);
        EXPECT_EQ(std::count(data - 64, data, static_cast<unsigned char>(0xA5)), 64);
        EXPECT_EQ(std::count(data + size, data + size + 64, static_cast<unsigned char>(0x5A)), 64);
        EXPECT_EQ(image.GetMemBuffer()->getLockCount(), 0);
    }

    std::size_t stride;
    std::size_t size;
    Image image;
    std::vector<unsigned char> before;
};

template <typename Value>
Value load(const std::vector<unsigned char>& bytes, std::size_t offset) {
    Value value;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

template <typename Value>
void save(std::vector<unsigned char>& bytes, std::size_t offset, Value value) {
    std::memcpy(bytes.data() + offset, &value, sizeof value);
}

class CCsImageTest : public testing::Test {
protected:
    void TearDown() override {
        zolcs::setProcessorCapability(0);
        manager().setUseMappings(true);
        EXPECT_EQ(manager().getBytesInUse(), before_);
    }

private:
    std::size_t before_ = manager().getBytesInUse();
};

TEST_F(CCsImageTest, StartsEmpty) {
    const Image image;
    EXPECT_EQ(image.getWidth(), -1);
    EXPECT_EQ(image.getHeight(), -1);
    EXPECT_EQ(image.getType(), -1);
    EXPECT_EQ(image.getPitch(), -1);
    EXPECT_EQ(image.getRatioYx(), 0.0);
    EXPECT_EQ(image.GetMemBuffer(), nullptr);
    EXPECT_EQ(image.lastOrigin(), nullptr);
}

TEST_F(CCsImageTest, FieldsLieInDeclaredOrderAfterTheVirtualTable) {
    const Image image;
    const std::vector<const void*> fields = image.fields();
    const auto offset = [&](std::size_t i) {
        return static_cast<const char*>(fields[i]) - reinterpret_cast<const char*>(&image);
    };
    const std::vector<std::ptrdiff_t> offsets = {offset(0), offset(1), offset(2), offset(3),
                                                 offset(4), offset(5), offset(6)};
    if constexpr (sizeof(void*) == 8) {
        EXPECT_EQ(offsets, (std::vector<std::ptrdiff_t>{8, 12, 16, 24, 32, 40, 48}));
        EXPECT_EQ(sizeof(CCsImage), 56U);
    } else {
        EXPECT_EQ(offsets, (std::vector<std::ptrdiff_t>{4, 8, 12, 16, 20, 24, 32}));
    }
}

TEST_F(CCsImageTest, TypeCodes) {
    static_assert(CCS_INDEX8 == 1 && CCS_GREY12 == 2 && CCS_GREY8 == 3 && CCS_RGB12 == 4 && CCS_RGB8 == 5 &&
                  CCS_RGB24 == 6 && CCS_GREY16 == 7);
}

TEST_F(CCsImageTest, NewInstanceOfAPlainImageIsNull) {
    CCsImage image;
    EXPECT_EQ(image.NewInstance(), nullptr);
}

TEST_F(CCsImageTest, ElemSizeKnowsTypes1To6) {
    const ReportCapture capture;
    const int expected[] = {1, 2, 1, 8, 4, 3};
    Image image;
    for (int type = 1; type <= 6; ++type) {
        image.set(type, 1, 1, 1);
        EXPECT_EQ(image.getElemSize(), expected[type - 1]);
    }
    EXPECT_EQ(ReportCapture::take(), Reports{});
}

TEST_F(CCsImageTest, ElemSizeDeliberatelyRefusesGrey16AndUnknownTypes) {
    const ReportCapture capture;
    Image image;
    for (const int type : {7, 8, 0, -1, 1000}) {
        image.set(type, 1, 1, 1);
        EXPECT_EQ(image.getElemSize(), 0);
        EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown image type", type, module, 495)});
    }
}

TEST_F(CCsImageTest, PaddingRoundsUpToTheMultiple) {
    EXPECT_EQ(Image::padding(0, 8), 0);
    EXPECT_EQ(Image::padding(1, 8), 8);
    EXPECT_EQ(Image::padding(8, 8), 8);
    EXPECT_EQ(Image::padding(9, 8), 16);
    EXPECT_EQ(Image::padding(5, 4), 8);
    EXPECT_EQ(Image::padding(5, 2), 6);
    EXPECT_EQ(Image::padding(5, 1), 5);
    EXPECT_EQ(Image::padding(-1, 8), 0);
    EXPECT_EQ(Image::padding(-9, 8), 0);
    EXPECT_EQ(Image::padding(-15, 8), -8);
    EXPECT_EQ(Image::padding(2147483640, 8), 2147483640);
    EXPECT_EQ(Image::padding(2147483647, 8), 2147483647);
    EXPECT_EQ(Image::padding(2147483647, 1), 2147483647);
    EXPECT_EQ(Image::padding(std::numeric_limits<int>::min(), 8), -2147483640);
}

TEST_F(CCsImageTest, OriginIsTheBuffersAddressOfTheLastLock) {
    Image image(CCS_GREY8, 8, 2, 8, 25);
    EXPECT_EQ(image.lastOrigin(), nullptr);
    unsigned char* const address = image.getOrigin();
    ASSERT_NE(address, nullptr);
    EXPECT_EQ(image.lastOrigin(), address);
    EXPECT_EQ(image.GetMemBuffer()->getLockCount(), 1);
    image.unlock();
    EXPECT_EQ(image.GetMemBuffer()->getLockCount(), 0);
}

TEST_F(CCsImageTest, WithoutABufferThereIsNoOriginAndNothingToUnlock) {
    CCsImage image;
    EXPECT_EQ(image.getOrigin(), nullptr);
    image.unlock();
}

TEST_F(CCsImageTest, CopyConstructionDeliberatelyCopiesNothing) {
    Image image(CCS_GREY8, 8, 2, 8, 25);
    image.setRatio(1.5);
    image.getOrigin();
    const Image copy(image);
    EXPECT_EQ(copy.getWidth(), -1);
    EXPECT_EQ(copy.getHeight(), -1);
    EXPECT_EQ(copy.getType(), -1);
    EXPECT_EQ(copy.getPitch(), -1);
    EXPECT_EQ(copy.getRatioYx(), 0.0);
    EXPECT_EQ(copy.GetMemBuffer(), nullptr);
    EXPECT_EQ(copy.lastOrigin(), nullptr);
    image.unlock();
}

TEST_F(CCsImageTest, AssignmentDeliberatelySharesTheBuffer) {
    Image image(CCS_GREY8, 8, 2, 8, 25);
    image.setRatio(1.5);
    unsigned char* const address = image.getOrigin();
    // Storage in which no destructor runs: the buffer belongs to the source.
    alignas(Image) unsigned char storage[sizeof(Image)];
    auto* const copy = new (storage) Image;
    *copy = image;
    EXPECT_EQ(copy->getWidth(), 8);
    EXPECT_EQ(copy->getHeight(), 2);
    EXPECT_EQ(copy->getType(), CCS_GREY8);
    EXPECT_EQ(copy->getPitch(), 8);
    EXPECT_EQ(copy->getRatioYx(), 1.5);
    EXPECT_EQ(copy->GetMemBuffer(), image.GetMemBuffer());
    EXPECT_EQ(copy->lastOrigin(), address);
    EXPECT_EQ(image.GetMemBuffer()->getLockCount(), 1);
    address[3] = 77;
    EXPECT_EQ(copy->getOrigin()[3], 77);
    copy->unlock();
    image.unlock();
}

TEST_F(CCsImageTest, TheDestructorDestroysTheBuffer) {
    const std::size_t before = manager().getBytesInUse();
    {
        const Image image(CCS_GREY8, 8, 2, 8, 25, 9);
        EXPECT_EQ(manager().getBytesInUse(), before + 25 + 18);
    }
    EXPECT_EQ(manager().getBytesInUse(), before);
}

TEST_F(CCsImageTest, WithoutABufferOnlyShiftRightReports) {
    const ReportCapture capture;
    Image image;
    for (int type = -1; type <= 8; ++type) {
        image.set(type, 4, 4, 4);
        EXPECT_EQ(image.clear(), 0);
        EXPECT_EQ(image.fill(1), 0);
        EXPECT_EQ(image.fill(1, 2, 3), 0);
        EXPECT_EQ(ReportCapture::take(), Reports{});
        image.shiftRight(1);
        EXPECT_EQ(ReportCapture::take(),
                  Reports{errorReport(L"ZolMemMappedBuffer mMemBuffer is NULL", 0, module, 320)});
    }
}

TEST_F(CCsImageTest, ABufferWithoutMemoryIsLeftAlone) {
    const ReportCapture capture;
    manager().setUseMappings(false);
    for (int type = 1; type <= 7; ++type) {
        Image image;
        image.set(type, 4, 4, 4);
        image.setBuffer(manager().allocateMemoryOnlyOnMap(64));
        EXPECT_EQ(image.clear(), 0);
        EXPECT_EQ(image.fill(1), 0);
        EXPECT_EQ(image.fill(1, 2, 3), 0);
        image.shiftRight(1);
        EXPECT_EQ(image.GetMemBuffer()->getLockCount(), 0);
    }
}

// ------------------------------------------------------------------------------------------------ clear

TEST_F(CCsImageTest, ClearZeroesLinesWithTheirPaddingOnly) {
    const ReportCapture capture;
    for (int type = 1; type <= 5; ++type) {
        Scene scene(type, 5, 3, 8, 11);
        EXPECT_EQ(scene.image.clear(), 255);
        std::vector<unsigned char> expected = scene.before;
        std::fill_n(expected.begin(), scene.stride * 3, static_cast<unsigned char>(0));
        EXPECT_EQ(scene.bytes(), expected) << type;
        scene.expectIntact();
    }
    EXPECT_EQ(ReportCapture::take(), Reports{});
}

TEST_F(CCsImageTest, ClearDeliberatelyRefusesRgb24AndGrey16) {
    const ReportCapture capture;
    for (const int type : {6, 7}) {
        Scene scene(type, 5, 3, 8, 12);
        EXPECT_EQ(scene.image.clear(), 0);
        EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown raster type", type, module, 292)});
        EXPECT_EQ(scene.bytes(), scene.before);
        scene.expectIntact();
    }
    for (const int type : {-1, 0, 8}) {
        Scene scene(CCS_GREY8, 5, 3, 8, 12);
        scene.image.set(type, 5, 3, 8);
        EXPECT_EQ(scene.image.clear(), 0);
        EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown raster type", type, module, 292)});
        EXPECT_EQ(scene.bytes(), scene.before);
    }
}

// ------------------------------------------------------------------------------------------------ fill, grey

std::vector<unsigned char> greyFilled(const Scene& scene, int type, int width, int height, long value) {
    std::vector<unsigned char> expected = scene.before;
    const auto v = static_cast<std::uint32_t>(value);
    for (int y = 0; y < height; ++y) {
        const std::size_t line = scene.stride * static_cast<std::size_t>(y);
        const int words = pixelBytes(type) == 1 ? width / 4 : width / 2;
        const std::uint32_t word = pixelBytes(type) == 1 ? (v << 24U) | (v << 16U) | (v << 8U) | v : (v << 16U) | v;
        for (int i = 0; i < words; ++i) save(expected, line + static_cast<std::size_t>(i) * 4, word);
    }
    return expected;
}

TEST_F(CCsImageTest, GreyFillStoresWholeWordsOfEveryLine) {
    const ReportCapture capture;
    for (const int type : {1, 2, 3, 7}) {
        for (int width = 0; width <= 17; ++width) {
            for (const long value : {0L, 7L, 255L, 300L, 4095L, 65535L, 65536L, 70000L, -1L, -2147483647L}) {
                Scene scene(type, width, 3, 24, 13);
                EXPECT_EQ(scene.image.fill(value), 255);
                EXPECT_EQ(scene.bytes(), greyFilled(scene, type, width, 3, value))
                    << type << ' ' << width << ' ' << value;
                scene.expectIntact();
            }
        }
    }
    EXPECT_EQ(ReportCapture::take(), Reports{});
}

TEST_F(CCsImageTest, FillOfWidth10LeavesTheLastTwoPixelsOfABytesLine) {
    Scene scene(CCS_GREY8, 10, 3, 16, 14);
    EXPECT_EQ(scene.image.fill(7), 255);
    const std::vector<unsigned char> after = scene.bytes();
    for (std::size_t y = 0; y < 3; ++y) {
        for (std::size_t x = 0; x < 16; ++x) {
            EXPECT_EQ(after[y * 16 + x], x < 8 ? 7 : scene.before[y * 16 + x]);
        }
    }
}

TEST_F(CCsImageTest, FillOf300StoresTheWordOfShiftedOrs) {
    Scene scene(CCS_GREY8, 4, 1, 8, 15);
    EXPECT_EQ(scene.image.fill(300), 255);
    const std::uint32_t word = ((300U << 8U | 300U) << 8U | 300U) << 8U | 300U;
    EXPECT_EQ(load<std::uint32_t>(scene.bytes(), 0), word);
    EXPECT_EQ(scene.bytes()[0], 0x2C);
    EXPECT_EQ(scene.bytes()[1], 0x2D);
}

TEST_F(CCsImageTest, OddLastPixelOf16BitLinesIsLeft) {
    Scene scene(CCS_GREY12, 5, 2, 8, 16);
    EXPECT_EQ(scene.image.fill(0x123), 255);
    const std::vector<unsigned char> after = scene.bytes();
    for (std::size_t x = 0; x < 8; ++x) {
        EXPECT_EQ(load<std::uint16_t>(after, x * 2), x < 4 ? 0x123 : load<std::uint16_t>(scene.before, x * 2));
    }
}

TEST_F(CCsImageTest, GreyFillRefusesColourAndUnknownTypes) {
    const ReportCapture capture;
    for (const int type : {4, 5, 6}) {
        Scene scene(type, 5, 3, 8, 17);
        EXPECT_EQ(scene.image.fill(7), 0);
        EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown raster type", type, module, 184)});
        EXPECT_EQ(scene.bytes(), scene.before);
        scene.expectIntact();
    }
    for (const int type : {-1, 0, 8}) {
        Scene scene(CCS_GREY8, 5, 3, 8, 17);
        scene.image.set(type, 5, 3, 8);
        EXPECT_EQ(scene.image.fill(7), 0);
        EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown raster type", type, module, 184)});
        EXPECT_EQ(scene.bytes(), scene.before);
        scene.expectIntact();
    }
}

// ------------------------------------------------------------------------------------------------ fill, colour

TEST_F(CCsImageTest, ColourFillOf16BitChannels) {
    for (const int width : {0, 1, 5, 8}) {
        Scene scene(CCS_RGB12, width, 3, 8, 18);
        EXPECT_EQ(scene.image.fill(0x10FFF, 0x234, 0x1), 255);
        std::vector<unsigned char> expected = scene.before;
        for (std::size_t y = 0; y < 3; ++y) {
            for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x) {
                const std::size_t at = y * scene.stride + x * 8;
                save<std::uint16_t>(expected, at, 0x1);
                save<std::uint16_t>(expected, at + 2, 0x234);
                save<std::uint16_t>(expected, at + 4, 0xFFF);
                save<std::uint16_t>(expected, at + 6, 0);
            }
        }
        EXPECT_EQ(scene.bytes(), expected);
        scene.expectIntact();
    }
}

TEST_F(CCsImageTest, ColourFillOf8BitChannels) {
    for (const int width : {0, 1, 5, 8}) {
        Scene scene(CCS_RGB8, width, 3, 8, 19);
        EXPECT_EQ(scene.image.fill(0x11, 0x22, 0x33), 255);
        std::vector<unsigned char> expected = scene.before;
        for (std::size_t y = 0; y < 3; ++y) {
            for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x) {
                const std::size_t at = y * scene.stride + x * 4;
                expected[at] = 0x33;
                expected[at + 1] = 0x22;
                expected[at + 2] = 0x11;
                expected[at + 3] = 0;
            }
        }
        EXPECT_EQ(scene.bytes(), expected);
        scene.expectIntact();
    }
}

TEST_F(CCsImageTest, ColourFillJoinsTheArgumentsWithoutClamping) {
    Scene scene(CCS_RGB8, 1, 1, 2, 20);
    EXPECT_EQ(scene.image.fill(300, 300, 300), 255);
    EXPECT_EQ(load<std::uint32_t>(scene.bytes(), 0), (300U << 16U) | (300U << 8U) | 300U);
    EXPECT_EQ(scene.image.fill(-1, 0, 0), 255);
    EXPECT_EQ(load<std::uint32_t>(scene.bytes(), 0), 0xFFFF0000U);
}

TEST_F(CCsImageTest, ColourFillRefusesOtherTypes) {
    const ReportCapture capture;
    for (const int type : {1, 2, 3, 6, 7}) {
        Scene scene(type, 5, 3, 8, 21);
        EXPECT_EQ(scene.image.fill(1, 2, 3), 0);
        EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown raster type", type, module, 248)});
        EXPECT_EQ(scene.bytes(), scene.before);
        scene.expectIntact();
    }
    Scene scene(CCS_RGB8, 5, 3, 8, 21);
    scene.image.set(0, 5, 3, 8);
    EXPECT_EQ(scene.image.fill(1, 2, 3), 0);
    EXPECT_EQ(ReportCapture::take(), Reports{errorReport(L"Unknown raster type", 0, module, 248)});
    scene.expectIntact();
}

// ------------------------------------------------------------------------------------------------ shiftRight

/// The defined result, sample by sample.
std::vector<unsigned char> shifted(const Scene& scene, int type, int width, int height, int pitch, int bits,
                                   bool packed) {
    std::vector<unsigned char> out = scene.before;
    const bool words = type == 2 || type == 7 || type == 4;
    const int samples = type == 4 || type == 5 ? 4 : 1;
    if (words && packed) {
        const std::size_t all = static_cast<std::size_t>(type == 4 ? pitch * height * 4 : pitch * height / 4 * 4);
        for (std::size_t i = 0; i < all; ++i) {
            const std::uint16_t sample = load<std::uint16_t>(out, i * 2);
            save(out, i * 2, static_cast<std::uint16_t>(bits < 0 || bits >= 16 ? 0 : sample >> bits));
        }
        return out;
    }
    const unsigned int count = static_cast<unsigned int>(bits) & 31U;
    const int first = type == 4 ? 1 : 0;
    for (int y = first; y < first + height; ++y) {
        for (int i = 0; i < width * samples; ++i) {
            const std::size_t line = scene.stride * static_cast<std::size_t>(y);
            if (words) {
                const std::size_t at = line + static_cast<std::size_t>(i) * 2;
                save(out, at, static_cast<std::uint16_t>(std::uint32_t{load<std::uint16_t>(out, at)} >> count));
            } else {
                const std::size_t at = line + static_cast<std::size_t>(i);
                out[at] = static_cast<unsigned char>(std::uint32_t{out[at]} >> count);
            }
        }
    }
    return out;
}

TEST_F(CCsImageTest, ShiftRightOnBothPaths) {
    const ReportCapture capture;
    for (const int capability : {0, 1}) {
        zolcs::setProcessorCapability(capability);
        for (const int type : {2, 3, 4, 5, 7}) {
            for (const int width : {0, 1, 5, 16, 17}) {
                for (const int bits : {0, 1, 4, 7, 8, 12, 15, 16, 17, 31, 32, 33, 48, -1, -31, -32,
                                       std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
                    for (const int pitch : {17, 20}) {
                        Scene scene(type, width, 3, pitch, 22);
                        scene.image.shiftRight(bits);
                        EXPECT_EQ(scene.bytes(), shifted(scene, type, width, 3, pitch, bits, capability != 0))
                            << type << ' ' << width << ' ' << bits << ' ' << pitch << ' ' << capability;
                        scene.expectIntact();
                    }
                }
            }
        }
    }
    EXPECT_EQ(ReportCapture::take(), Reports{});
}

TEST_F(CCsImageTest, ShiftOf16IsZeroOnBothPathsAndOf33OnlyOnThePackedOne) {
    for (const int capability : {0, 1}) {
        zolcs::setProcessorCapability(capability);
        Scene scene(CCS_GREY12, 8, 2, 8, 23);
        scene.image.shiftRight(16);
        const std::vector<unsigned char> after = scene.bytes();
        EXPECT_EQ(std::count(after.begin(), after.begin() + 32, static_cast<unsigned char>(0)), 32);

        Scene other(CCS_GREY12, 8, 2, 8, 24);
        other.image.shiftRight(33);
        for (std::size_t i = 0; i < 16; ++i) {
            const int expected = capability != 0 ? 0 : load<std::uint16_t>(other.before, i * 2) >> 1;
            EXPECT_EQ(load<std::uint16_t>(other.bytes(), i * 2), expected);
        }
    }
}

TEST_F(CCsImageTest, PlainShiftOfRgb12DeliberatelyStartsAtTheSecondLineAndEndsInTheGuardLine) {
    Scene scene(CCS_RGB12, 3, 2, 4, 25);
    scene.image.shiftRight(4);
    const std::vector<unsigned char> after = scene.bytes();
    for (std::size_t line = 0; line < 3; ++line) {
        for (std::size_t i = 0; i < 16; ++i) {
            const std::size_t at = line * 32 + i * 2;
            const auto before = load<std::uint16_t>(scene.before, at);
            EXPECT_EQ(load<std::uint16_t>(after, at), line == 0 || i >= 12 ? before : before >> 4) << line << ' ' << i;
        }
    }
    scene.expectIntact();
}

TEST_F(CCsImageTest, ShiftRightRefusesIndexRgb24AndUnknownTypes) {
    const ReportCapture capture;
    for (const int capability : {0, 1}) {
        zolcs::setProcessorCapability(capability);
        for (const int type : {-1, 0, 1, 6, 8}) {
            Scene scene(CCS_GREY8, 5, 3, 8, 26);
            scene.image.set(type, 5, 3, 8);
            scene.image.shiftRight(1);
            EXPECT_EQ(ReportCapture::take(),
                      Reports{type == 1 ? errorReport(L"raster type not allowed", 1, module, 327)
                                        : errorReport(L"Unknown raster type", type, module, 459)});
            EXPECT_EQ(scene.bytes(), scene.before);
            scene.expectIntact();
        }
    }
}

// ------------------------------------------------------------------------------------------------ never beyond memory

TEST_F(CCsImageTest, NothingPassesTheEndOfABufferThatIsTooSmall) {
    for (const int capability : {0, 1}) {
        zolcs::setProcessorCapability(capability);
        for (int type = 1; type <= 7; ++type) {
            for (std::size_t bytes = 0; bytes <= 200; bytes += bytes < 40 ? 1 : 7) {
                for (const std::size_t shift : {0U, 1U}) {  // an adopted buffer may start anywhere
                    std::vector<unsigned char> memory(bytes + 64 + shift, 0xC3);
                    Image image(type, 5, 6, 7, bytes);
                    image.GetMemBuffer()->setHeapBuffer(memory.data() + shift);
                    const auto rest = [&] {
                        return std::count(memory.begin() + static_cast<std::ptrdiff_t>(bytes + shift), memory.end(),
                                          0xC3);
                    };
                    image.fill(0x01020304);
                    EXPECT_EQ(rest(), 64) << type << ' ' << bytes;
                    image.fill(1, 2, 3);
                    EXPECT_EQ(rest(), 64) << type << ' ' << bytes;
                    image.shiftRight(3);
                    EXPECT_EQ(rest(), 64) << type << ' ' << bytes;
                    image.clear();
                    EXPECT_EQ(rest(), 64) << type << ' ' << bytes;
                    EXPECT_EQ(image.GetMemBuffer()->getLockCount(), 0);
                }
            }
        }
    }
}

TEST_F(CCsImageTest, WhatFitsOfATooSmallBufferIsDone) {
    Image image(CCS_GREY8, 8, 4, 8, 20);
    EXPECT_EQ(image.fill(9), 255);
    const unsigned char* const data = image.getOrigin();
    EXPECT_EQ(std::count(data, data + 20, 9), 20);
    EXPECT_EQ(image.clear(), 255);
    EXPECT_EQ(std::count(data, data + 20, 0), 20);
    image.unlock();
}

TEST_F(CCsImageTest, ExtremeGeometriesStayInsideTheMemory) {
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int least = std::numeric_limits<int>::min();
    for (const int capability : {0, 1}) {
        zolcs::setProcessorCapability(capability);
        for (int type = 1; type <= 7; ++type) {
            for (const auto& [width, height, pitch] :
                 {std::tuple(most, most, most), std::tuple(most, most, 1), std::tuple(1, most, most),
                  std::tuple(least, 3, 8), std::tuple(5, least, 8), std::tuple(5, 3, least), std::tuple(-1, -1, -1),
                  std::tuple(5, 3, 0), std::tuple(5, most, -8), std::tuple(least, least, least)}) {
                Scene scene(CCS_GREY8, 5, 3, 8, 27);
                scene.image.set(type, width, height, pitch);
                scene.image.fill(7);
                scene.image.fill(7, 8, 9);
                scene.image.shiftRight(2);
                scene.image.clear();
                scene.expectIntact();
            }
        }
    }
}

TEST_F(CCsImageTest, NegativeAndZeroGeometriesChangeNothing) {
    for (const int capability : {0, 1}) {
        zolcs::setProcessorCapability(capability);
        for (int type = 1; type <= 7; ++type) {
            for (const auto& [width, height, pitch] :
                 {std::tuple(5, 0, 8), std::tuple(5, -3, 8), std::tuple(5, 3, -8), std::tuple(-1, -1, -8)}) {
                Scene scene(CCS_GREY8, 5, 3, 8, 28);
                scene.image.set(type, width, height, pitch);
                scene.image.fill(7);
                scene.image.fill(7, 8, 9);
                scene.image.shiftRight(2);
                scene.image.clear();
                EXPECT_EQ(scene.bytes(), scene.before) << type << ' ' << width << ' ' << height << ' ' << pitch;
            }
        }
    }
}

}  // namespace
