#include "support/drawing.h"
#include "support/overlay_views.h"

#include "zolcs/ccsgroup.h"
#include "zolcs/ccstext.h"

namespace {

using zoltest::calls;
using zoltest::drawn;
using zoltest::GdiRecorder;
using zoltest::identityView;
using zoltest::Rendering;

using Offsets = std::vector<std::pair<int, int>>;

std::string written(const char* text, int x, int y, const Offsets& offsets) {
    std::string out;
    for (const auto& [dx, dy] : offsets) {
        out += "text " + std::to_string(x + dx) + ' ' + std::to_string(y + dy) + " \"" + text + "\"\n";
    }
    return out;
}

const Offsets narrowHalo{{1, -1}, {-1, 1}, {-1, -1}, {1, 1}, {0, -1}, {0, 1}, {-1, 0}, {1, 0}};
const Offsets wideHalo{{2, -2},  {2, -1},  {2, 0},   {2, 1}, {2, 2},   {-2, 2}, {-2, 1}, {-2, 0},
                       {-2, -1}, {-2, -2}, {1, -2},  {1, 2}, {-1, -2}, {-1, 2}, {0, 2},  {0, -2},
                       {1, -1},  {-1, 1},  {-1, -1}, {1, 1}, {0, -1},  {0, 1},  {-1, 0}, {1, 0}};

/// A text with its halo, in red.
std::string haloed(const char* text, int x, int y) {
    return "background transparent\ntext colour 0x000000\n" + written(text, x, y, narrowHalo) +
           "text colour 0x0000ff\n" + written(text, x, y, {{0, 0}});
}

/// A text in a font of 20 pixels that the host makes, by the given calls, and that goes again.
std::string inHostsFont(const char* text, const std::string& making) {
    return std::string("font for \"") + text + "\" type 32 face DejaVu Sans width 9\n" + making +
           "select font -20 400\n" + haloed(text, 10, 20) + "select caller's font\ndelete font -20 400\n";
}

class TextDrawing : public zoltest::DrawingTest {
protected:
    ~TextDrawing() override {
        myCSFontName = nullptr;
        myCSFontWidth = nullptr;
    }

    void setHostFont() {
        myCSFontName = L"DejaVu Sans";
        myCSFontWidth = &width;
    }

    int width = 9;
};

std::string drawnAs(CCsOverlay& overlay, CCsImageTextFont::CCsImageTextFontType type, const Rendering& rendering) {
    return drawn(rendering, [&](HDC dc) {
        overlay.render(rendering.image, rendering.output, rendering.color, dc, type, rendering.mode, 64, 64,
                       rendering.offsetX, rendering.offsetY);
    });
}

// ---------------------------------------------------------------------------------------------------- halo

TEST_F(TextDrawing, EightCopiesAroundTheText) {
    CCsText text(&view, 10, 20, L"ROI", 0, false);
    EXPECT_EQ(drawn(text, screen()), calls({
                                         "background transparent",
                                         "text colour 0x000000",
                                         "text 11 19 \"ROI\"",
                                         "text 9 21 \"ROI\"",
                                         "text 9 19 \"ROI\"",
                                         "text 11 21 \"ROI\"",
                                         "text 10 19 \"ROI\"",
                                         "text 10 21 \"ROI\"",
                                         "text 9 20 \"ROI\"",
                                         "text 11 20 \"ROI\"",
                                         "text colour 0x0000ff",
                                         "text 10 20 \"ROI\"",
                                     }));
    EXPECT_EQ(drawnAs(text, CCsImageTextFont::Bold, screen()), haloed("ROI", 10, 20));
}

TEST_F(TextDrawing, TwentyFourCopiesInNearlyBlackForPrintsInModeFour) {
    CCsText text(&view, 10, 20, L"ROI", 0, false);
    text.setDicomPrintFlag(true);
    const std::string expected = "background transparent\ntext colour 0x000000\ntext colour 0x010101\n" +
                                 written("ROI", 10, 20, wideHalo) + "text colour 0x0000ff\ntext 10 20 \"ROI\"\n";
    EXPECT_EQ(drawn(text, mode(4)), expected);
    EXPECT_EQ(drawnAs(text, CCsImageTextFont::Large, mode(4)), expected);
    for (const int other : {1, 2, 3}) EXPECT_EQ(drawn(text, mode(other)), haloed("ROI", 10, 20)) << other;
    text.setDicomPrintFlag(false);
    EXPECT_EQ(drawn(text, mode(4)), haloed("ROI", 10, 20));
}

/// A text whose shadow can be turned off.
class ShadowText : public CCsText {
public:
    using CCsText::CCsText;
    using CCsText::shadow;
};

TEST_F(TextDrawing, OnceWithoutShadow) {
    ShadowText text(&view, 10, 20, L"ROI", 0, false);
    text.shadow = 0;
    text.setDicomPrintFlag(true);
    const std::string expected = calls({"background transparent", "text colour 0x0000ff", "text 10 20 \"ROI\""});
    EXPECT_EQ(drawn(text, screen()), expected);
    EXPECT_EQ(drawn(text, mode(4)), expected);
}

// ---------------------------------------------------------------------------------------------------- places

TEST_F(TextDrawing, AlignmentGoesByTheWidth) {
    Rendering rendering = screen();
    rendering.prepare = [](GdiRecorder& recorder) { recorder.textExtent = SIZE{41, 12}; };
    CCsText centred(&view, 100, 20, L"ROI", 2, false);
    EXPECT_EQ(drawn(centred, rendering), "measure \"ROI\"\n" + haloed("ROI", 80, 20));
    CCsText ending(&view, 100, 20, L"ROI", 1, false);
    EXPECT_EQ(drawn(ending, rendering), "measure \"ROI\"\n" + haloed("ROI", 58, 20));
    for (const int other : {0, 3, -1}) {
        CCsText starting(&view, 100, 20, L"ROI", other, false);
        EXPECT_EQ(drawn(starting, rendering), haloed("ROI", 100, 20)) << other;
    }
}

TEST_F(TextDrawing, TruncatesAfterAligning) {
    CCs2dTrafo print = identityView();
    print.setDspPanFactor(0.25 / 512, -0.75 / 512);
    Rendering rendering{&print, nullptr, 2};
    rendering.prepare = [](GdiRecorder& recorder) { recorder.textExtent = SIZE{41, 12}; };
    CCsText text(&view, 100, 20, L"ROI", 2, false);  // at 100.75, 19.75 in print
    EXPECT_EQ(drawn(text, rendering), "measure \"ROI\"\n" + haloed("ROI", 80, 19));
    CCsText left(&view, 10, 20, L"ROI", 2, false);  // 10.75 - 20 = -9.25
    EXPECT_EQ(drawn(left, rendering), "measure \"ROI\"\n" + haloed("ROI", -9, 19));
}

TEST_F(TextDrawing, TruncatesAfterEndingAtTheAnchor) {
    CCs2dTrafo print = identityView();
    print.setDspPanFactor(0.25 / 512, 0.0);
    Rendering rendering{&print, nullptr, 2};
    rendering.prepare = [](GdiRecorder& recorder) { recorder.textExtent = SIZE{41, 12}; };
    CCsText text(&view, 10, 20, L"ROI", 1, false);  // 10.75 - 42 = -31.25
    EXPECT_EQ(drawn(text, rendering), "measure \"ROI\"\n" + haloed("ROI", -31, 20));
}

TEST_F(TextDrawing, TruncatesAfterAddingTheOffset) {
    CCs2dTrafo print = identityView();
    print.setDspPanFactor(0.0, -20.75 / 512);
    CCsText text(&view, 10, 20, L"ROI", 0, false);  // at -0.25 in print
    Rendering rendering{&print, nullptr, 2};
    EXPECT_EQ(drawn(text, rendering), haloed("ROI", 10, 0));
    rendering.offsetY = 7;
    EXPECT_EQ(drawn(text, rendering), haloed("ROI", 10, 6));
    rendering.offsetY = -7;
    EXPECT_EQ(drawn(text, rendering), haloed("ROI", 10, -7));
}

TEST_F(TextDrawing, ATextThatCannotBeMeasuredHasNoWidth) {
    Rendering rendering = screen();
    rendering.prepare = [](GdiRecorder& recorder) { recorder.failing = "measure"; };
    CCsText centred(&view, 100, 20, L"ROI", 2, false);
    EXPECT_EQ(drawn(centred, rendering), "fail to measure \"ROI\"\n" + haloed("ROI", 100, 20));
    CCsText ending(&view, 100, 20, L"ROI", 1, false);
    EXPECT_EQ(drawn(ending, rendering), "fail to measure \"ROI\"\n" + haloed("ROI", 99, 20));
}

TEST_F(TextDrawing, OnlyTheVerticalOffsetCounts) {
    CCsText text(&view, 10, 20, L"ROI", 0, false);
    Rendering rendering = screen();
    rendering.offsetX = 100;
    rendering.offsetY = 7;
    EXPECT_EQ(drawn(text, rendering), haloed("ROI", 10, 27));
    EXPECT_EQ(drawnAs(text, CCsImageTextFont::Plain, rendering), haloed("ROI", 10, 27));
}

TEST_F(TextDrawing, FollowsTheImageWhileTransformable) {
    CCsText text(&view, 100, 200, L"ROI", 0, false);
    CCs2dTrafo half = identityView();
    half.scale(0.5);
    EXPECT_EQ(drawn(text, {&half, nullptr, 1}), haloed("ROI", 178, 228));
    CCs2dTrafo mirrored = zoltest::mirroredView();
    EXPECT_EQ(drawn(text, {&mirrored, nullptr, 1}), haloed("ROI", 411, 200));
    text.setTransformable(0);
    EXPECT_EQ(drawn(text, {&half, nullptr, 1}), haloed("ROI", 411, 200));
    text.setTransformable(1);
    text.move(nullptr, 5, 6, nullptr);
    EXPECT_EQ(drawn(text, {&half, nullptr, 1}), haloed("ROI", 5, 6));
    EXPECT_EQ(drawn(text, {nullptr, &half, 2}), haloed("ROI", 130, 131));
}

TEST_F(TextDrawing, NothingAtAll) {
    CCsText text(&view, 10, 20, L"ROI", 0, false);
    for (const int m : {0, 5, -1}) EXPECT_EQ(drawn(text, mode(m)), "") << m;
    for (const int m : {1, 2, 3, 4}) EXPECT_EQ(drawn(text, {nullptr, &output, m}), "") << m;
    text.setTransformable(0);
    EXPECT_EQ(drawn(text, mode(4)), "");
    EXPECT_EQ(drawnAs(text, CCsImageTextFont::Plain, mode(4)), "");
    EXPECT_EQ(drawn(text, {&view, nullptr, 2}), "");
    text.setRenderFlag(false);
    EXPECT_EQ(drawn(text, screen()), "");
    EXPECT_EQ(drawnAs(text, CCsImageTextFont::Plain, screen()), "");
    CCsText none(&view, 10, 20, nullptr, 2, false);
    EXPECT_EQ(drawn(none, screen()), "");
    EXPECT_EQ(drawnAs(none, CCsImageTextFont::Plain, screen()), "");
    const unsigned int before = zoltest::gdiObjectCount();
    CCsText fixed(nullptr, 10, 20, L"ROI", 2, false);
    setHostFont();
    const HDC gone = CreateCompatibleDC(nullptr);
    DeleteDC(gone);
    for (const HDC wrong : {static_cast<HDC>(nullptr), gone}) {
        fixed.render(&view, &output, 0, wrong, 1, 64, 64, 0, 0);
        fixed.render(&view, &output, 0, wrong, CCsImageTextFont::Large, 1, 64, 64, 0, 0);
    }
    EXPECT_EQ(zoltest::gdiObjectCount(), before);
}

// ---------------------------------------------------------------------------------------------------- fonts

TEST_F(TextDrawing, TextsThatDoNotFollowTheImageHaveTheHostsFont) {
    setHostFont();
    CCsText text(nullptr, 10, 20, L"ROI", 0, false);
    Rendering rendering = screen();
    rendering.prepare = [](GdiRecorder& recorder) { recorder.hostFont = -20; };
    const std::string expected = inHostsFont("ROI", "create font -20 400\n");
    EXPECT_EQ(drawn(text, rendering), expected);
    EXPECT_EQ(drawnAs(text, CCsImageTextFont::Plain, rendering), expected);
    EXPECT_EQ(drawn(text, rendering), expected);  // a new one each time
}

TEST_F(TextDrawing, FontTypesDeriveFromTheHostsFont) {
    setHostFont();
    CCsText text(nullptr, 10, 20, L"ROI", 0, false);
    const auto expected = [](const std::string& made, const std::string& derived) {
        return "font for \"ROI\" type 32 face DejaVu Sans width 9\ncreate font " + made + "\ncreate font " + derived +
               "\nselect font " + derived + '\n' + haloed("ROI", 10, 20) + "select caller's font\ndelete font " +
               derived + "\ndelete font " + made + '\n';
    };
    const auto drawnWith = [&](LONG height, CCsImageTextFont::CCsImageTextFontType type) {
        Rendering rendering = screen();
        rendering.prepare = [height](GdiRecorder& recorder) { recorder.hostFont = height; };
        return drawnAs(text, type, rendering);
    };
    EXPECT_EQ(drawnWith(-20, CCsImageTextFont::Large), expected("-20 400", "-30 400"));
    EXPECT_EQ(drawnWith(-21, CCsImageTextFont::Large), expected("-21 400", "-31 400"));
    EXPECT_EQ(drawnWith(21, CCsImageTextFont::Large), expected("21 400", "31 400"));
    EXPECT_EQ(drawnWith(-20, CCsImageTextFont::LargerBold), expected("-20 400", "-18 700"));
    EXPECT_EQ(drawnWith(-20, CCsImageTextFont::Bold), expected("-20 400", "-20 700"));
    EXPECT_EQ(drawnWith(-20, static_cast<CCsImageTextFont::CCsImageTextFontType>(9)),
              drawnWith(-20, CCsImageTextFont::Plain));
}

TEST_F(TextDrawing, LargeMultipliesInSinglePrecision) {
    setHostFont();
    CCsText blank(nullptr, 10, 20, L" ", 0, false);
    Rendering rendering = screen();
    rendering.prepare = [](GdiRecorder& recorder) {
        recorder.hostFont =
            16777213;  // one and a half times that is 25165819.5, of which single precision makes an even number
        recorder.failing = "create font 25165820";
    };
    const std::string all = drawnAs(blank, CCsImageTextFont::Large, rendering);
    EXPECT_NE(all.find("fail to create font 25165820 400\n"), std::string::npos) << all;
}

TEST_F(TextDrawing, TheHostsFontIsReadEachTime) {
    setHostFont();
    CCsText text(nullptr, 10, 20, L"ROI", 0, false);
    Rendering rendering = screen();
    rendering.prepare = [](GdiRecorder& recorder) { recorder.hostFont = 0; };
    EXPECT_NE(drawn(text, rendering).find("face DejaVu Sans width 9\n"), std::string::npos);
    width = 12;
    myCSFontName = L"Another Face";
    EXPECT_NE(drawn(text, rendering).find("face Another Face width 12\n"), std::string::npos);
}

TEST_F(TextDrawing, AFontThatCannotBeMeasuredHasTheUsualShape) {
    setHostFont();
    CCsText text(nullptr, 10, 20, L"ROI", 0, false);
    Rendering rendering = screen();
    rendering.prepare = [](GdiRecorder& recorder) { recorder.failing = "create device context"; };
    EXPECT_EQ(drawn(text, rendering), inHostsFont("ROI", "fail to create device context\ncreate font -20 400\n"));
}

TEST_F(TextDrawing, WithoutADerivedFontTheHostsIsUsed) {
    setHostFont();
    CCsText text(nullptr, 10, 20, L"ROI", 0, false);
    Rendering rendering = screen();
    rendering.prepare = [](GdiRecorder& recorder) {
        recorder.hostFont = -20;
        recorder.failing = "create font -30";
    };
    EXPECT_EQ(drawnAs(text, CCsImageTextFont::Large, rendering),
              inHostsFont("ROI", "create font -20 400\nfail to create font -30 400\n"));
}

TEST_F(TextDrawing, OtherwiseTheCallersFontStays) {
    CCsText fixed(nullptr, 10, 20, L"ROI", 0, false);
    CCsText following(&view, 10, 20, L"ROI", 0, false);
    const std::string plain = haloed("ROI", 10, 20);
    EXPECT_EQ(drawnAs(fixed, CCsImageTextFont::Bold, screen()), plain);
    myCSFontName = L"DejaVu Sans";
    EXPECT_EQ(drawnAs(fixed, CCsImageTextFont::Bold, screen()), plain);
    myCSFontName = nullptr;
    myCSFontWidth = &width;
    EXPECT_EQ(drawn(fixed, screen()), plain);
    setHostFont();
    EXPECT_EQ(drawn(following, screen()), plain);
    EXPECT_EQ(drawnAs(following, CCsImageTextFont::Bold, screen()), plain);
    // A host without a font for this string.
    Rendering rendering = screen();
    rendering.prepare = [](GdiRecorder& recorder) { recorder.hostFont = 0; };
    EXPECT_EQ(drawnAs(fixed, CCsImageTextFont::Bold, rendering),
              "font for \"ROI\" type 32 face DejaVu Sans width 9\n" + plain);
    // A system without objects.
    rendering.prepare = [](GdiRecorder& recorder) { recorder.objectsFail = true; };
    EXPECT_NE(drawn(fixed, rendering).find(plain), std::string::npos);
}

TEST_F(TextDrawing, AnEmptyTextMakesNoFontInTheRenderWithAFontType) {
    setHostFont();
    CCsText text(nullptr, 10, 20, L"", 0, false);
    EXPECT_EQ(drawnAs(text, CCsImageTextFont::Large, screen()), haloed("", 10, 20));
    Rendering rendering = screen();
    rendering.prepare = [](GdiRecorder& recorder) { recorder.hostFont = -20; };
    EXPECT_EQ(drawn(text, rendering), inHostsFont("", "create font -20 400\n"));
}

TEST_F(TextDrawing, TheRealHostsFontTakesPart) {
    setHostFont();
    CCsText text(nullptr, 30, 20, L"ROI", 2, false);
    const std::string recorded = drawnAs(text, CCsImageTextFont::LargerBold, screen());
    EXPECT_EQ(recorded.substr(0, recorded.find('\n')), "font for \"ROI\" type 32 face DejaVu Sans width 9");
    EXPECT_NE(recorded.find(" 700\nselect font "), std::string::npos);
    EXPECT_NE(recorded.find("measure \"ROI\""), std::string::npos);
}

TEST_F(TextDrawing, TextsOfAGroupFollowTheirMembersOrder) {
    CCsGroup group;
    group.append(*new CCsText(&view, 10, 20, L"a", 0, false));
    group.append(*new CCsText(&view, 30, 40, L"b", 0, false));
    EXPECT_EQ(drawn(group, screen()), haloed("a", 10, 20) + haloed("b", 30, 40));
    EXPECT_EQ(drawnAs(group, CCsImageTextFont::Plain, screen()), "");  // a group hands the plain render on only
}

}  // namespace
