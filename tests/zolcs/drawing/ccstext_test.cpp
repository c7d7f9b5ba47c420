#include "zolcs/ccstext.h"

#include "support/gdi_canvas.h"
#include "support/overlay_views.h"
#include "support/vtable_slots.h"

#include "zolcs/ccsgroup.h"
#include "zolcs/ccsline.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <type_traits>

namespace {

using zoltest::identityView;
using zoltest::mirroredView;
using zoltest::quarterTurnedView;
using zoltest::zoomedView;

static_assert(!std::is_copy_assignable_v<CCsText>);
static_assert(CCsImageTextFont::Plain == 0 && CCsImageTextFont::Large == 1 && CCsImageTextFont::LargerBold == 2 &&
              CCsImageTextFont::Bold == 3);

/// A text that shows its fields.
class OpenText : public CCsText {
public:
    using CCsText::CCsText;
    using CCsText::transformToOutput;

    using CCsText::alignment;
    using CCsText::charsetSupport;
    using CCsText::dicomPrintFlag;
    using CCsText::displayAuthoritative;
    using CCsText::displayX;
    using CCsText::displayY;
    using CCsText::font;
    using CCsText::imageX;
    using CCsText::imageY;
    using CCsText::normalised;
    using CCsText::normalisedX;
    using CCsText::normalisedY;
    using CCsText::selected;
    using CCsText::text;
    using CCsText::transformable;
};

using Numbers = std::vector<double>;

Numbers displayOf(const OpenText& text) { return {1.0 * text.displayX, 1.0 * text.displayY}; }

Numbers imageOf(const CCsText& text) {
    double x = 0.0;
    double y = 0.0;
    text.getImagePts(x, y);
    return {x, y};
}

Numbers normalisedOf(const CCsText& text) {
    double x = 0.0;
    double y = 0.0;
    text.getNormEndPts(x, y);
    return {x, y};
}

// ---------------------------------------------------------------------------------------------------- interface

TEST(CCsTextInterface, ItsOwnVirtualOperationsFollowTheBase) {
    const std::size_t last = zoltest::tableEntry(&CCsOverlay::renderEllipse);
    using Move = void (CCsText::*)(CCs2dTrafo*, int, int, CCsRegion*);
    EXPECT_EQ(zoltest::tableEntry(&CCsText::setTransformable), last + 1);
    EXPECT_EQ(zoltest::tableEntry(static_cast<Move>(&CCsText::move)), last + 2);
    EXPECT_EQ(zoltest::tableEntry(static_cast<void (CCsText::*)()>(&CCsText::select)), last + 3);
    EXPECT_EQ(zoltest::tableEntry(static_cast<int (CCsText::*)()>(&CCsText::unselect)), last + 4);
}

TEST(CCsTextInterface, FieldsHaveTheirDeclaredOrderAndWidth) {
    const OpenText text(nullptr, 0, 0, L"", 0, false);
    const auto* const begin = reinterpret_cast<const char*>(&text.displayX);
    const auto offset = [&](const auto& field) { return reinterpret_cast<const char*>(&field) - begin; };
    constexpr std::ptrdiff_t pointer = sizeof(void*);
    EXPECT_EQ(offset(text.displayY), 4);
    const std::ptrdiff_t normalised = offset(text.normalisedX);
    EXPECT_TRUE(normalised == 8 || normalised == 12) << normalised;
    EXPECT_EQ(offset(text.normalisedY), normalised + 8);
    EXPECT_EQ(offset(text.imageX), normalised + 16);
    EXPECT_EQ(offset(text.imageY), normalised + 24);
    EXPECT_EQ(offset(text.text), normalised + 32);
    EXPECT_EQ(offset(text.alignment), normalised + 32 + pointer);
    EXPECT_EQ(offset(text.displayAuthoritative), normalised + 36 + pointer);
    EXPECT_EQ(offset(text.font), normalised + 40 + pointer);
    EXPECT_GT(offset(text.charsetSupport), offset(text.font));
    EXPECT_GT(offset(text.normalised), offset(text.charsetSupport));
}

TEST(CCsTextInterface, TheHostsFontIsUnsetAtFirst) {
    EXPECT_EQ(myCSFontName, nullptr);
    EXPECT_EQ(myCSFontWidth, nullptr);
}

// ---------------------------------------------------------------------------------------------------- construction

TEST(CCsTextConstruction, AnchorsFromDisplayPixels) {
    CCs2dTrafo view = zoomedView(1.0);  // image = display / 2
    const OpenText text(&view, 10.75, -20.75, L"note", 2, false);
    EXPECT_EQ(displayOf(text), (Numbers{10, -20}));
    EXPECT_EQ(imageOf(text), (Numbers{5.25, -9.75}));  // of the pixel's centre
    EXPECT_EQ(normalisedOf(text), (Numbers{0, 0}));
    EXPECT_STREQ(text.text, L"note");
    EXPECT_EQ(text.alignment, 2);
    EXPECT_EQ(text.displayAuthoritative, 0);
    EXPECT_FALSE(text.normalised);
    EXPECT_EQ(text.transformable, 1);
    EXPECT_FALSE(text.dicomPrintFlag);
    EXPECT_EQ(static_cast<HFONT>(text.font), nullptr);
}

TEST(CCsTextConstruction, WithoutATransformationItStaysOnTheScreen) {
    OpenText text(nullptr, 10, 20, L"note", 0, false);
    EXPECT_EQ(displayOf(text), (Numbers{10, 20}));
    EXPECT_EQ(imageOf(text), (Numbers{0, 0}));
    EXPECT_EQ(text.transformable, 0);
    EXPECT_EQ(text.isTransformable(), 0);
}

TEST(CCsTextConstruction, NormalisedAnchorsToo) {
    CCs2dTrafo view = identityView();
    const OpenText text(&view, 0.25, 0.75, L"note", 0, true);
    EXPECT_TRUE(text.normalised);
    EXPECT_EQ(normalisedOf(text), (Numbers{0.25, 0.75}));
    EXPECT_EQ(displayOf(text), (Numbers{0, 0}));
    EXPECT_EQ(imageOf(text), (Numbers{0.5, 0.5}));
}

TEST(CCsTextConstruction, ClonesShareTheStringButNotTheFont) {
    CCs2dTrafo view = identityView();
    const wchar_t* const string = L"note";
    CCsGroup group;
    auto* const text = new OpenText(&view, 10, 20, string, 1, true);
    group.append(*text);
    text->setDicomPrintFlag(true);
    text->move(&view, 1, 1, 0, 0, nullptr);
    LOGFONTW description{};
    text->font.CreateFontIndirectW(&description);
    const OpenText copy(*text);
    EXPECT_EQ(copy.text, string);
    EXPECT_EQ(displayOf(copy), (Numbers{11, 21}));
    EXPECT_EQ(imageOf(copy), imageOf(*text));
    EXPECT_EQ(normalisedOf(copy), (Numbers{10, 20}));
    EXPECT_EQ(copy.alignment, 1);
    EXPECT_EQ(copy.displayAuthoritative, 1);
    EXPECT_TRUE(copy.normalised);
    EXPECT_TRUE(copy.dicomPrintFlag);
    EXPECT_EQ(static_cast<HFONT>(copy.font), nullptr);
    EXPECT_EQ(group.getGroupSize(), 1);
    const std::unique_ptr<CCsOverlay> clone(text->NewInstance());
    auto* const plain = dynamic_cast<CCsText*>(clone.get());
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(imageOf(*plain), imageOf(*text));
    EXPECT_STREQ(plain->getClassName(), L"CCsOverlay");
}

TEST(CCsTextConstruction, AFontGoesWithItsText) {
    if (!zoltest::canCountGdiObjects()) GTEST_SKIP() << "this system does not count GDI objects";
    const unsigned int before = zoltest::gdiObjectCount();
    {
        OpenText text(nullptr, 0, 0, L"", 0, false);
        LOGFONTW description{};
        EXPECT_TRUE(text.font.CreateFontIndirectW(&description));
        EXPECT_EQ(zoltest::gdiObjectCount(), before + 1);
    }
    EXPECT_EQ(zoltest::gdiObjectCount(), before);
}

// ---------------------------------------------------------------------------------------------------- changes

TEST(CCsTextSetText, AtANewPlaceAsTheConstructorDoes) {
    CCs2dTrafo view = zoomedView(1.0);
    OpenText text(&view, 0, 0, L"old", 0, false);
    text.move(&view, 5, 5, 0, 0, nullptr);
    text.setText(&view, 10.75, -20.75, L"new", 1);
    EXPECT_STREQ(text.text, L"new");
    EXPECT_EQ(text.alignment, 1);
    EXPECT_EQ(displayOf(text), (Numbers{10, -20}));
    EXPECT_EQ(imageOf(text), (Numbers{5.25, -9.75}));
    EXPECT_EQ(text.displayAuthoritative, 0);
    EXPECT_EQ(text.transformable, 1);
    text.setText(nullptr, 3, 4, L"third", 2);
    EXPECT_EQ(displayOf(text), (Numbers{3, 4}));
    EXPECT_EQ(imageOf(text), (Numbers{5.25, -9.75}));
    EXPECT_EQ(text.transformable, 0);

    OpenText fractions(&view, 0.25, 0.75, L"note", 0, true);
    fractions.setText(&view, 0.5, 0.125, L"note", 0);
    EXPECT_EQ(normalisedOf(fractions), (Numbers{0.5, 0.125}));
}

TEST(CCsTextSetText, AStringAlone) {
    CCs2dTrafo view = identityView();
    OpenText text(&view, 10, 20, L"old", 2, false);
    const wchar_t* const string = L"new";
    text.setText(string);
    EXPECT_EQ(text.text, string);
    EXPECT_EQ(text.alignment, 2);
    EXPECT_EQ(displayOf(text), (Numbers{10, 20}));
}

TEST(CCsTextChanges, FlagsAndSelection) {
    CCs2dTrafo view = identityView();
    OpenText text(&view, 10, 20, L"note", 0, false);
    text.setTransformable(0);
    EXPECT_EQ(text.isTransformable(), 0);
    text.setTransformable(3);
    EXPECT_EQ(text.isTransformable(), 3);
    text.setDicomPrintFlag(true);
    EXPECT_TRUE(text.dicomPrintFlag);
    text.select();
    EXPECT_EQ(text.isSelected(), &text);
    EXPECT_EQ(text.unselect(), 0);
    EXPECT_EQ(text.isSelected(), nullptr);
    RECT rect{};
    text.select(rect);
    EXPECT_EQ(text.isSelected(), &text);
    EXPECT_EQ(text.unselect(rect), 0);
    EXPECT_EQ(text.pick(10, 20), nullptr);
}

TEST(CCsTextMove, MakesTheDisplayAnchorAuthoritative) {
    CCs2dTrafo view = zoomedView(1.0);
    OpenText text(&view, 10, 20, L"note", 0, false);
    CCsRegion region;
    text.move(&view, 3, -4, 100, 200, &region);
    EXPECT_EQ(displayOf(text), (Numbers{13, 16}));
    EXPECT_EQ(imageOf(text), (Numbers{5.25, 10.25}));
    EXPECT_EQ(text.displayAuthoritative, 1);
    EXPECT_EQ(region.width, 0);
    text.dspToImg(&view);
    EXPECT_EQ(text.displayAuthoritative, 0);
    EXPECT_EQ(imageOf(text), (Numbers{6.75, 8.25}));

    text.move(nullptr, 50, 60, &region);
    EXPECT_EQ(displayOf(text), (Numbers{50, 60}));
    EXPECT_EQ(text.displayAuthoritative, 1);
    EXPECT_EQ(region.width, 0);
    text.dspToImg(nullptr);
    EXPECT_EQ(text.displayAuthoritative, 1);
}

TEST(CCsTextMove, NothingWhileNotMovable) {
    CCs2dTrafo view = identityView();
    OpenText text(&view, 10, 20, L"note", 0, false);
    text.setMoveStatus_(false);
    text.move(&view, 3, -4, 100, 200, nullptr);
    text.move(&view, 3, -4, nullptr);
    EXPECT_EQ(displayOf(text), (Numbers{10, 20}));
    EXPECT_EQ(text.displayAuthoritative, 0);
}

TEST(CCsTextMove, SaturatesAtTheEndsOfTheIntegers) {
    OpenText text(nullptr, 1e300, -std::numeric_limits<double>::infinity(), L"note", 0, false);
    EXPECT_EQ(displayOf(text), (Numbers{2147483647.0, -2147483648.0}));
    text.move(nullptr, 5, -5, 0, 0, nullptr);
    EXPECT_EQ(displayOf(text), (Numbers{2147483647.0, -2147483648.0}));
    const OpenText nowhere(nullptr, std::numeric_limits<double>::quiet_NaN(), 0, L"note", 0, false);
    EXPECT_EQ(displayOf(nowhere), (Numbers{0, 0}));
}

TEST(CCsTextConversions, ThereAndBackUnderZoomTurnAndMirror) {
    for (CCs2dTrafo view : {identityView(), zoomedView(4.0), quarterTurnedView(), mirroredView()}) {
        OpenText text(&view, 16, 32, L"note", 0, false);
        const Numbers image = imageOf(text);
        text.imgToDsp(&view);
        EXPECT_EQ(displayOf(text), (Numbers{16, 32}));
        text.dspToImg(&view);
        EXPECT_EQ(imageOf(text), image);
        text.imgToDsp(nullptr);
        EXPECT_EQ(displayOf(text), (Numbers{16, 32}));
    }
}

TEST(CCsTextConversions, ImgToDspTruncates) {
    CCs2dTrafo view = identityView();
    OpenText text(&view, 16, 32, L"note", 0, false);
    text.imageX = 10.9;
    text.imageY = -10.9;
    text.imgToDsp(&view);
    EXPECT_EQ(displayOf(text), (Numbers{10, -10}));
}

TEST(CCsTextSize, OverwritesTheRectangle) {
    CCs2dTrafo view = identityView();
    OpenText text(&view, 16, 32, L"note", 0, false);
    RECT rect{-5, -6, 700, 800};
    text.getSize(rect);
    EXPECT_EQ((std::vector<LONG>{rect.left, rect.top, rect.right, rect.bottom}), (std::vector<LONG>{16, 32, 0, 0}));
}

TEST(CCsTextSize, OverwritesWhatTheGroupsEarlierMembersMade) {
    CCs2dTrafo view = identityView();
    CCsGroup group;
    group.append(*new CCsLine(&view, 100, 110, 120, 130, PS_SOLID));
    group.append(*new OpenText(&view, 16, 32, L"note", 0, false));
    RECT rect{};
    group.getSize(rect);
    EXPECT_EQ((std::vector<LONG>{rect.left, rect.top, rect.right, rect.bottom}), (std::vector<LONG>{16, 32, 0, 0}));
}

// ---------------------------------------------------------------------------------------------------- output positions

struct Position {
    bool known;
    double x;
    double y;
    bool operator==(const Position&) const = default;
};

Position positionOf(OpenText& text, CCs2dTrafo* image, CCs2dTrafo* output, int mode) {
    Position out{false, -7.0, -7.0};
    out.known = text.transformToOutput(image, output, out.x, out.y, mode);
    return out;
}

constexpr Position nowhere{false, -7.0, -7.0};

TEST(CCsTextOutput, NormalisedAnchorsAreFractionsOfTheOutputInEveryMode) {
    CCs2dTrafo view = zoomedView(3.0);
    view.setDestSizes(400, 300, 1.0, 50, 60);
    OpenText text(&view, 0.25, 0.5, L"note", 0, true);
    for (const int mode : {0, 1, 2, 3, 4, 5, -1}) {
        EXPECT_EQ(positionOf(text, &view, nullptr, mode), (Position{true, 100, 150})) << mode;
        EXPECT_EQ(positionOf(text, nullptr, &view, mode), nowhere) << mode;
    }
}

TEST(CCsTextOutput, TheScreenTruncatesAndStores) {
    CCs2dTrafo view = zoomedView(1.0);
    OpenText text(&view, 11, 20, L"note", 0, false);
    CCs2dTrafo closer = zoomedView(1.125);                                        // x' = 2.25 x - 32
    EXPECT_EQ(positionOf(text, &closer, nullptr, 1), (Position{true, -19, -8}));  // -19.0625, -8.9375
    EXPECT_EQ(displayOf(text), (Numbers{-19, -8}));
    EXPECT_EQ(positionOf(text, nullptr, &view, 1), nowhere);
    text.move(nullptr, 100, 100, nullptr);
    EXPECT_EQ(positionOf(text, &closer, nullptr, 1), (Position{true, 100, 100}));
    EXPECT_EQ(positionOf(text, nullptr, nullptr, 1), (Position{true, 100, 100}));
    OpenText fixed(nullptr, 5, 6, L"note", 0, false);
    EXPECT_EQ(positionOf(fixed, &closer, nullptr, 1), (Position{true, 5, 6}));
}

TEST(CCsTextOutput, PrintersNeitherTruncateNorStore) {
    CCs2dTrafo view = zoomedView(1.0);
    CCs2dTrafo print = zoomedView(1.125);
    for (const int mode : {2, 3}) {
        OpenText text(&view, 11, 20, L"note", 0, false);
        EXPECT_EQ(positionOf(text, &print, nullptr, mode), (Position{true, 2.25 * 5.75 - 32, 2.25 * 10.25 - 32}));
        EXPECT_EQ(displayOf(text), (Numbers{11, 20}));
        EXPECT_EQ(positionOf(text, nullptr, &print, mode), nowhere);
        text.move(&view, 1, 1, 0, 0, nullptr);
        EXPECT_EQ(positionOf(text, nullptr, &print, mode), (Position{true, 2.25 * 12 - 32, 2.25 * 21 - 32}));
        EXPECT_EQ(positionOf(text, &print, nullptr, mode), nowhere);
        OpenText fixed(nullptr, 5, 6, L"note", 0, false);
        EXPECT_EQ(positionOf(fixed, nullptr, &print, mode), (Position{true, 2.25 * 5 - 32, 2.25 * 6 - 32}));
    }
}

TEST(CCsTextOutput, ModeFourGoesByTheImageAnchorUnrounded) {
    CCs2dTrafo view = zoomedView(1.0);
    CCs2dTrafo closer = zoomedView(1.125);
    OpenText text(&view, 11, 20, L"note", 0, false);
    text.move(&view, 1, 1, 0, 0, nullptr);
    EXPECT_EQ(positionOf(text, &closer, nullptr, 4), (Position{true, 2.25 * 5.75 - 32, 2.25 * 10.25 - 32}));
    EXPECT_EQ(displayOf(text), (Numbers{12, 21}));
    EXPECT_EQ(positionOf(text, nullptr, &view, 4), nowhere);
    for (const int mode : {0, 5, -1}) EXPECT_EQ(positionOf(text, &view, &view, mode), nowhere);
}

// ---------------------------------------------------------------------------------------------------- pictures

std::size_t changedPixels(const zoltest::Canvas& canvas, std::uint32_t color) {
    std::size_t count = 0;
    for (const std::uint32_t pixel : canvas.pixels()) count += (pixel & 0xFFFFFFU) == color ? 1U : 0U;
    return count;
}

TEST(CCsTextPicture, IsReadableOnAnyBackground) {
    CCs2dTrafo view = identityView();
    const zoltest::TestFont font(-24);
    zoltest::Canvas canvas(128, 64, 0x00808080);
    const HGDIOBJ previous = SelectObject(canvas.dc(), font.get());
    OpenText text(&view, 10, 10, L"HE", 0, false);
    text.render(&view, nullptr, 0x0000FF, canvas.dc(), 1, 128, 64, 0, 0);
    EXPECT_GT(changedPixels(canvas, 0xFF0000), 20U);  // red, as a pixel
    EXPECT_GT(changedPixels(canvas, 0x000000), 20U);  // its halo
    SelectObject(canvas.dc(), previous);
}

TEST(CCsTextPicture, FontsThatDoNotExistAndHostsNonsenseAreNoHarm) {
    const unsigned int before = zoltest::gdiObjectCount();
    {
        zoltest::Canvas canvas(64, 64, 0x00808080);
        int width = 9;
        const std::wstring longName(500, L'x');
        for (const wchar_t* const name : {L"No Such Face", L"", longName.c_str()}) {
            for (const int w : {9, 0, -5, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
                width = w;
                myCSFontName = name;
                myCSFontWidth = &width;
                for (const wchar_t* const string : {L"note", L"", static_cast<const wchar_t*>(nullptr)}) {
                    OpenText text(nullptr, 10, 10, string, 2, false);
                    text.render(nullptr, nullptr, 0xFF, canvas.dc(), 1, 64, 64, 0, 0);
                    for (const int type : {0, 1, 2, 3, 4, -1}) {
                        text.render(nullptr, nullptr, 0xFF, canvas.dc(),
                                    static_cast<CCsImageTextFont::CCsImageTextFontType>(type), 1, 64, 64, 0, 0);
                    }
                    EXPECT_EQ(static_cast<HFONT>(text.font), nullptr);
                }
            }
        }
        myCSFontName = nullptr;
        myCSFontWidth = nullptr;
    }
    EXPECT_EQ(zoltest::gdiObjectCount(), before);
}

TEST(CCsTextPicture, FarAnchorsDrawNothing) {
    zoltest::Canvas canvas(64, 64, 0x00808080);
    const std::vector<std::uint32_t> before = canvas.pixels();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double distant : {1e6, -1e6, 65536.0, 2147483647.0, 1e12, -1e300, infinity, -infinity}) {
        for (const int alignment : {0, 1, 2}) {
            OpenText text(nullptr, distant, 10, L"note", alignment, false);
            text.render(nullptr, nullptr, 0xFF, canvas.dc(), 1, 64, 64, 0, std::numeric_limits<int>::max());
            text.render(nullptr, nullptr, 0xFF, canvas.dc(), 1, 64, 64, 0, 0);
            CCs2dTrafo view = identityView();
            text.render(nullptr, &view, 0xFF, canvas.dc(), 2, 64, 64, 0, 0);
            OpenText moving(&view, 10, 10, L"note", alignment, false);
            moving.imageX = distant;
            for (const int mode : {1, 2, 3, 4}) moving.render(&view, &view, 0xFF, canvas.dc(), mode, 64, 64, 0, 0);
            moving.imageX = std::numeric_limits<double>::quiet_NaN();
            for (const int mode : {1, 2, 3, 4}) moving.render(&view, &view, 0xFF, canvas.dc(), mode, 64, 64, 0, 0);
        }
    }
    EXPECT_EQ(canvas.pixels(), before);
}

}  // namespace
