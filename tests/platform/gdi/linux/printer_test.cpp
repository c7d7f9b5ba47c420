// The printer that writes PDF files. What is in the file is looked at with poppler's tools where they are installed.
#include "platform/gdi/device.h"
#include "support/file_limit.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <regex>
#include <sstream>

namespace zoltest {
namespace {

namespace fs = std::filesystem;

DOCINFOW named(const wchar_t* name) {
    DOCINFOW info{};
    info.cbSize = sizeof(info);
    info.lpszDocName = name;
    return info;
}

/// A picture that poppler has made of a page or taken out of it.
class Ppm {
public:
    explicit Ppm(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        std::string magic;
        int most = 0;
        file >> magic >> width_ >> height_ >> most;
        file.get();
        bytes_.assign(std::istreambuf_iterator<char>(file), {});
        if (magic != "P6" || bytes_.size() != static_cast<std::size_t>(width_ * height_ * 3)) width_ = height_ = 0;
    }

    /// Both 0 where there is no such picture.
    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    /// 0xRRGGBB.
    [[nodiscard]] std::uint32_t pixel(int x, int y) const {
        const auto at = static_cast<std::size_t>((y * width_ + x) * 3);
        const auto channel = [&](std::size_t i) {
            return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes_[at + i]));
        };
        return (channel(0) << 16U) | (channel(1) << 8U) | channel(2);
    }

private:
    int width_ = 0;
    int height_ = 0;
    std::string bytes_;
};

class PrinterTest : public GdiTest {
protected:
    PrinterTest() {
        folder_ = fs::temp_directory_path() / ("zolgdi-printer-" + std::to_string(std::random_device{}()));
        fs::create_directories(folder_);
    }
    ~PrinterTest() override { fs::remove_all(folder_); }

    [[nodiscard]] std::string file(const std::string& name = "page.pdf") const { return (folder_ / name).string(); }

    /// What a program of poppler prints about the file; empty where it is not installed.
    [[nodiscard]] std::string ask(const std::string& program, const std::string& arguments) const {
        const std::string out = file("answer.txt");
        const std::string line = program + " " + arguments + " > '" + out + "' 2>/dev/null";
        if (std::system(line.c_str()) != 0) return {};
        std::ifstream in(out);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }

    [[nodiscard]] static bool havePoppler() {
        return std::system("pdfinfo -v >/dev/null 2>&1") == 0 && std::system("pdfimages -v >/dev/null 2>&1") == 0;
    }

    /// Prints one page and completes its document.
    template <typename Draw>
    void printPage(double widthMillimetres, double heightMillimetres, int dpi, const Draw& draw) const {
        HDC dc = ZolCreatePdfPrinterDC(file().c_str(), widthMillimetres, heightMillimetres, dpi);
        const DOCINFOW info = named(L"page");
        ASSERT_GT(StartDocW(dc, &info), 0);
        EXPECT_GT(StartPage(dc), 0);
        draw(dc);
        EXPECT_GT(EndPage(dc), 0);
        EXPECT_GT(EndDoc(dc), 0);
        EXPECT_TRUE(DeleteDC(dc));
    }

    /// The page at 72 dots per inch: one dot is one pixel of the picture.
    [[nodiscard]] Ppm rendered() const {
        const std::string line =
            "pdftoppm -r 72 -aa no -aaVector no '" + file() + "' '" + file("page") + "' >/dev/null 2>&1";
        EXPECT_EQ(std::system(line.c_str()), 0);
        return Ppm(file("page-1.ppm"));
    }

    fs::path folder_;
};

#define REQUIRE_POPPLER() \
    if (!havePoppler()) GTEST_SKIP() << "pdfinfo and pdfimages (poppler-utils) are not installed"

bool startsAsPdf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::array<char, 5> head{};
    in.read(head.data(), head.size());
    return in && std::string(head.data(), head.size()) == "%PDF-";
}

/// The word that follows a label in the tool's answer.
std::string after(const std::string& text, const std::string& label) {
    const std::size_t at = text.find(label);
    if (at == std::string::npos) return {};
    std::istringstream in(text.substr(at + label.size()));
    std::string word;
    in >> word;
    return word;
}

TEST_F(PrinterTest, ItsMetricsAreThoseOfThePage) {
    HDC dc = ZolCreatePdfPrinterDC(file().c_str(), 210.0, 297.0, 600);
    ASSERT_NE(dc, nullptr);
    EXPECT_EQ(GetDeviceCaps(dc, TECHNOLOGY), DT_RASPRINTER);
    EXPECT_EQ(GetDeviceCaps(dc, LOGPIXELSX), 600);
    EXPECT_EQ(GetDeviceCaps(dc, LOGPIXELSY), 600);
    EXPECT_EQ(GetDeviceCaps(dc, ASPECTX), GetDeviceCaps(dc, ASPECTY));
    EXPECT_EQ(GetDeviceCaps(dc, HORZRES), 4961);
    EXPECT_EQ(GetDeviceCaps(dc, VERTRES), 7016);
    EXPECT_EQ(GetDeviceCaps(dc, PHYSICALWIDTH), 4961);
    EXPECT_EQ(GetDeviceCaps(dc, PHYSICALHEIGHT), 7016);
    EXPECT_EQ(GetDeviceCaps(dc, PHYSICALOFFSETX), 0);
    EXPECT_EQ(GetDeviceCaps(dc, HORZSIZE), 210);
    EXPECT_EQ(GetDeviceCaps(dc, VERTSIZE), 297);
    EXPECT_TRUE(DeleteDC(dc));
    EXPECT_FALSE(fs::exists(file()));
}

TEST_F(PrinterTest, ImpossiblePagesAreRefused) {
    EXPECT_EQ(ZolCreatePdfPrinterDC(nullptr, 210.0, 297.0, 600), nullptr);
    EXPECT_EQ(ZolCreatePdfPrinterDC(file().c_str(), 0.0, 297.0, 600), nullptr);
    EXPECT_EQ(ZolCreatePdfPrinterDC(file().c_str(), 210.0, -1.0, 600), nullptr);
    EXPECT_EQ(ZolCreatePdfPrinterDC(file().c_str(), 1e12, 297.0, 600), nullptr);
    EXPECT_EQ(ZolCreatePdfPrinterDC(file().c_str(), std::nan(""), 297.0, 600), nullptr);
    EXPECT_EQ(ZolCreatePdfPrinterDC(file().c_str(), 210.0, 297.0, 0), nullptr);
    EXPECT_EQ(ZolCreatePdfPrinterDC(file().c_str(), 210.0, 297.0, 100000), nullptr);
}

TEST_F(PrinterTest, TheOrderOfCallsIsChecked) {
    HDC dc = ZolCreatePdfPrinterDC(file().c_str(), 100.0, 100.0, 300);
    const DOCINFOW info = named(L"order");
    EXPECT_LE(StartPage(dc), 0);
    EXPECT_LE(EndPage(dc), 0);
    EXPECT_LE(EndDoc(dc), 0);
    EXPECT_LE(AbortDoc(dc), 0);
    EXPECT_FALSE(PatBlt(dc, 0, 0, 10, 10, BLACKNESS));
    EXPECT_EQ(StartDocW(dc, nullptr), SP_ERROR);
    EXPECT_GT(StartDocW(dc, &info), 0);
    EXPECT_EQ(StartDocW(dc, &info), SP_ERROR);
    EXPECT_FALSE(LineTo(dc, 5, 5));
    EXPECT_GT(StartPage(dc), 0);
    EXPECT_LE(StartPage(dc), 0);
    EXPECT_TRUE(LineTo(dc, 5, 5));
    EXPECT_GT(EndPage(dc), 0);
    EXPECT_LE(EndPage(dc), 0);
    EXPECT_FALSE(LineTo(dc, 9, 9));
    EXPECT_GT(EndDoc(dc), 0);
    EXPECT_LE(EndDoc(dc), 0);
    EXPECT_EQ(StartDocW(dc, &info), SP_ERROR);
    EXPECT_TRUE(DeleteDC(dc));
    EXPECT_TRUE(startsAsPdf(file()));
}

TEST_F(PrinterTest, OtherContextsPrintNoDocuments) {
    HDC dc = CreateCompatibleDC(nullptr);
    const DOCINFOW info = named(L"memory");
    EXPECT_EQ(StartDocW(dc, &info), SP_ERROR);
    EXPECT_LE(StartPage(dc), 0);
    EXPECT_LE(EndPage(dc), 0);
    EXPECT_LE(EndDoc(dc), 0);
    EXPECT_LE(AbortDoc(nullptr), 0);
    EXPECT_TRUE(DeleteDC(dc));
}

/// SOURCE_DATE_EPOCH while this lives; null: not set.
class StatedDate {
public:
    explicit StatedDate(const char* seconds) {
        if (const char* before = std::getenv(name)) before_ = before;
        set(seconds);
    }
    ~StatedDate() { set(before_ ? before_->c_str() : nullptr); }
    StatedDate(const StatedDate&) = delete;
    StatedDate& operator=(const StatedDate&) = delete;

private:
    static void set(const char* seconds) { seconds != nullptr ? setenv(name, seconds, 1) : unsetenv(name); }

    static constexpr const char* name = "SOURCE_DATE_EPOCH";
    std::optional<std::string> before_;
};

TEST_F(PrinterTest, TheDateCanBeStatedSoThatTheBytesAreTheSameOnEveryDay) {
    const auto printed = [this](const char* seconds) {
        const StatedDate date(seconds);
        printPage(100.0, 100.0, 300, [](HDC dc) {
            EXPECT_TRUE(LineTo(dc, 500, 500));
            EXPECT_TRUE(TextOutW(dc, 100, 100, L"page", 4));
        });
        std::ifstream in(file(), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    // Some versions of Cairo leave out the D: that marks dates when they are told one.
    const auto creation = [](const std::string& document) {
        std::smatch found;
        const std::regex date(R"(/CreationDate \((?:D:)?(\d{14}\S*)\))");
        return std::regex_search(document, found, date) ? found[1].str() : std::string();
    };

    EXPECT_EQ(creation(printed("0")), "19700101000000Z");
    EXPECT_EQ(creation(printed("1795327445")), "20261122060405Z");
    EXPECT_EQ(creation(printed("253402300799")), "99991231235959Z");
    EXPECT_EQ(printed("1795327445"), printed("1795327445"));
    // What is no such moment is as good as nothing: the document is of now.
    const std::string year = creation(printed(nullptr)).substr(0, 4);
    EXPECT_GE(year, "2024");
    EXPECT_LT(year, "9999");
    for (const char* wrong : {"", "-1", "yesterday", "12 ", "1.5", "253402300800", "99999999999999999999"}) {
        EXPECT_GE(creation(printed(wrong)), year) << wrong;
        EXPECT_LT(creation(printed(wrong)), "9999") << wrong;
    }
}

TEST_F(PrinterTest, AFileThatCannotBeMadeFailsAtTheStart) {
    HDC dc = ZolCreatePdfPrinterDC(file("missing/page.pdf").c_str(), 100.0, 100.0, 300);
    ASSERT_NE(dc, nullptr);
    const DOCINFOW info = named(L"nowhere");
    EXPECT_EQ(StartDocW(dc, &info), SP_ERROR);
    EXPECT_LE(StartPage(dc), 0);
    EXPECT_TRUE(DeleteDC(dc));
}

TEST_F(PrinterTest, AFullDiskFailsAtTheEnd) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
    fs::create_symlink("/dev/full", file("full.pdf"));
    HDC dc = ZolCreatePdfPrinterDC(file("full.pdf").c_str(), 100.0, 100.0, 300);
    const DOCINFOW info = named(L"full");
    ASSERT_GT(StartDocW(dc, &info), 0);
    EXPECT_GT(StartPage(dc), 0);
    EXPECT_TRUE(PatBlt(dc, 0, 0, 10, 10, BLACKNESS));
    EndPage(dc);
    EXPECT_EQ(EndDoc(dc), SP_ERROR);
    EXPECT_TRUE(DeleteDC(dc));
    // A device is no file to be taken away.
    EXPECT_TRUE(fs::is_symlink(file("full.pdf")));
}

TEST_F(PrinterTest, AFileThatCannotBeCompletedIsGone) {
    const DOCINFOW info = named(L"too long");
    HDC dc = ZolCreatePdfPrinterDC(file().c_str(), 100.0, 100.0, 300);
    ASSERT_GT(StartDocW(dc, &info), 0);
    EXPECT_GT(StartPage(dc), 0);
    EXPECT_TRUE(PatBlt(dc, 0, 0, 10, 10, BLACKNESS));
    EXPECT_GT(EndPage(dc), 0);
    {
        const FileLimit limit(16);
        EXPECT_EQ(EndDoc(dc), SP_ERROR);
    }
    EXPECT_FALSE(fs::exists(file()));
    EXPECT_TRUE(DeleteDC(dc));
}

TEST_F(PrinterTest, AnAbortedDocumentLeavesNoFile) {
    const DOCINFOW info = named(L"gone");
    HDC dc = ZolCreatePdfPrinterDC(file().c_str(), 100.0, 100.0, 300);
    EXPECT_GT(StartDocW(dc, &info), 0);
    EXPECT_GT(StartPage(dc), 0);
    EXPECT_GT(AbortDoc(dc), 0);
    EXPECT_TRUE(DeleteDC(dc));
    EXPECT_FALSE(fs::exists(file()));
    dc = ZolCreatePdfPrinterDC(file().c_str(), 100.0, 100.0, 300);
    EXPECT_GT(StartDocW(dc, &info), 0);
    EXPECT_GT(StartPage(dc), 0);
    EXPECT_TRUE(DeleteDC(dc));
    EXPECT_FALSE(fs::exists(file()));
}

TEST_F(PrinterTest, TheDocumentMayNameItsOwnFile) {
    HDC dc = ZolCreatePdfPrinterDC(file("unused.pdf").c_str(), 100.0, 100.0, 300);
    DOCINFOW info = named(L"elsewhere");
    const std::string name = file("own \u00E4.pdf");
    std::wstring wide;
    for (std::size_t i = 0; i < name.size(); ++i) wide += static_cast<wchar_t>(static_cast<unsigned char>(name[i]));
    wide.replace(wide.find(L"own ") + 4, 2, L"\u00E4");
    info.lpszOutput = wide.c_str();
    EXPECT_GT(StartDocW(dc, &info), 0);
    EXPECT_GT(StartPage(dc), 0);
    EXPECT_GT(EndPage(dc), 0);
    EXPECT_GT(EndDoc(dc), 0);
    EXPECT_TRUE(DeleteDC(dc));
    EXPECT_TRUE(startsAsPdf(name));
    EXPECT_FALSE(fs::exists(file("unused.pdf")));
}

TEST_F(PrinterTest, PagesHaveTheirSizeAndNumber) {
    REQUIRE_POPPLER();
    HDC dc = ZolCreatePdfPrinterDC(file().c_str(), 254.0, 127.0, 300);
    const DOCINFOW info = named(L"Pr\u00FCfbild");
    ASSERT_GT(StartDocW(dc, &info), 0);
    for (int page = 0; page < 3; ++page) {
        EXPECT_GT(StartPage(dc), 0);
        EXPECT_TRUE(Rectangle(dc, 100, 100, 200, 300));
        EXPECT_GT(EndPage(dc), 0);
    }
    EXPECT_GT(EndDoc(dc), 0);
    EXPECT_TRUE(DeleteDC(dc));
    const std::string answer = ask("pdfinfo -enc UTF-8", "'" + file() + "'");
    EXPECT_EQ(after(answer, "Pages:"), "3");
    EXPECT_EQ(after(answer, "Page size:"), "720");
    EXPECT_NE(answer.find("720 x 360 pts"), std::string::npos) << answer;
    EXPECT_EQ(after(answer, "Title:"), "Pr\u00FCfbild");
}

TEST_F(PrinterTest, ImagesKeepTheirOwnPixels) {
    REQUIRE_POPPLER();
    Device image(37, 21);
    fillPattern(image);
    printPage(254.0, 254.0, 300, [&](HDC dc) {
        EXPECT_NE(SetStretchBltMode(dc, COLORONCOLOR), 0);
        EXPECT_EQ(
            StretchDIBits(dc, 100, 200, 2000, 1000, 0, 0, 37, 21, image.bits(), &image.info(), DIB_RGB_COLORS, SRCCOPY),
            21);
    });
    const std::string list = ask("pdfimages -list", "'" + file() + "'");
    EXPECT_NE(list.find("37    21  rgb     3   8"), std::string::npos) << list;
    ASSERT_EQ(std::system(("pdfimages '" + file() + "' '" + file("image") + "'").c_str()), 0);
    const Ppm picture(file("image-000.ppm"));
    ASSERT_EQ(picture.width(), 37);
    ASSERT_EQ(picture.height(), 21);
    for (int y = 0; y < 21; ++y) {
        for (int x = 0; x < 37; ++x) ASSERT_EQ(picture.pixel(x, y), image.pixel(x, y) & 0xFFFFFFU) << x << ", " << y;
    }
}

TEST_F(PrinterTest, WhatIsDrawnStandsWhereItWasDrawn) {
    REQUIRE_POPPLER();
    printPage(25.4, 25.4, 72, [&](HDC dc) {
        Device image(2, 2);
        image.setPixel(0, 0, 0xFF0000);
        image.setPixel(1, 0, 0x00FF00);
        image.setPixel(0, 1, 0x0000FF);
        image.setPixel(1, 1, 0x00FFFF);
        SetStretchBltMode(dc, COLORONCOLOR);
        StretchDIBits(dc, 10, 10, 20, 20, 0, 0, 2, 2, image.bits(), &image.info(), DIB_RGB_COLORS, SRCCOPY);
        StretchDIBits(dc, 59, 10, -20, 20, 0, 0, 2, 2, image.bits(), &image.info(), DIB_RGB_COLORS, SRCCOPY);
        {
            const Using brush(dc, CreateSolidBrush(RGB(0, 128, 0)));
            HRGN region = CreateRectRgn(5, 40, 15, 50);
            EXPECT_TRUE(PaintRgn(dc, region));
            DeleteObject(region);
            EXPECT_TRUE(PatBlt(dc, 20, 40, 10, 10, PATCOPY));
            SelectObject(dc, GetStockObject(NULL_PEN));
            EXPECT_TRUE(Ellipse(dc, 35, 40, 55, 60));
        }
        {
            const Using pen(dc, CreatePen(PS_SOLID, 4, RGB(200, 0, 0)));
            MoveToEx(dc, 5, 65, nullptr);
            EXPECT_TRUE(LineTo(dc, 60, 65));
        }
    });
    const Ppm page = rendered();
    ASSERT_GT(page.width(), 0);
    EXPECT_EQ(page.pixel(2, 2), 0xFFFFFFU);
    EXPECT_EQ(page.pixel(15, 15), 0xFF0000U);
    EXPECT_EQ(page.pixel(25, 15), 0x00FF00U);
    EXPECT_EQ(page.pixel(15, 25), 0x0000FFU);
    EXPECT_EQ(page.pixel(25, 25), 0x00FFFFU);
    EXPECT_EQ(page.pixel(45, 15), 0x00FF00U);
    EXPECT_EQ(page.pixel(55, 15), 0xFF0000U);
    EXPECT_EQ(page.pixel(10, 45), 0x008000U);
    EXPECT_EQ(page.pixel(25, 45), 0x008000U);
    EXPECT_EQ(page.pixel(17, 45), 0xFFFFFFU);
    EXPECT_EQ(page.pixel(45, 50), 0x008000U);
    EXPECT_EQ(page.pixel(36, 41), 0xFFFFFFU);
    EXPECT_EQ(page.pixel(30, 65), 0xC80000U);
    EXPECT_EQ(page.pixel(30, 69), 0xFFFFFFU);
}

TEST_F(PrinterTest, ADocumentThatEndsWithinAPageEndsThePage) {
    HDC dc = ZolCreatePdfPrinterDC(file().c_str(), 25.4, 25.4, 72);
    const DOCINFOW info = named(L"unfinished");
    ASSERT_GT(StartDocW(dc, &info), 0);
    EXPECT_GT(StartPage(dc), 0);
    EXPECT_TRUE(LineTo(dc, 5, 5));
    EXPECT_GT(EndDoc(dc), 0);
    EXPECT_FALSE(LineTo(dc, 9, 9));
    EXPECT_TRUE(DeleteDC(dc));
    EXPECT_TRUE(startsAsPdf(file()));
}

TEST_F(PrinterTest, PaperTakesWhatPixelsDo) {
    REQUIRE_POPPLER();
    constexpr COLORREF green = RGB(0, 255, 0);
    printPage(25.4, 25.4, 72, [&](HDC dc) {
        Device image(1, 2);
        image.setPixel(0, 0, 0xFF0000);
        image.setPixel(0, 1, 0x0000FF);
        StretchDIBits(dc, 2, 21, 20, -20, 0, 0, 1, 2, image.bits(), &image.info(), DIB_RGB_COLORS, SRCCOPY);
        EXPECT_TRUE(PatBlt(dc, 30, 2, 10, 10, DSTINVERT));
        SetBkColor(dc, green);
        {
            const Using pen(dc, CreatePen(PS_DASH, 1, RGB(255, 0, 0)));
            for (const int y : {30, 34}) {
                SetBkMode(dc, y == 30 ? OPAQUE : TRANSPARENT);
                MoveToEx(dc, 0, y, nullptr);
                LineTo(dc, 60, y);
            }
        }
        {
            const Using pen(dc, CreatePen(PS_SOLID, 10, RGB(255, 0, 0)));
            MoveToEx(dc, 20, 50, nullptr);
            LineTo(dc, 50, 50);
        }
        const Using font(dc,
                         CreateFontW(-10, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, L"DejaVu Sans"));
        SetBkMode(dc, OPAQUE);
        EXPECT_TRUE(TextOutW(dc, 45, 2, L"     ", 5));
        SetBkMode(dc, TRANSPARENT);
        EXPECT_TRUE(TextOutW(dc, 45, 17, L"     ", 5));
    });
    const Ppm page = rendered();
    ASSERT_GT(page.width(), 0);
    EXPECT_EQ(page.pixel(10, 5), 0x0000FFU);  // upside down
    EXPECT_EQ(page.pixel(10, 17), 0xFF0000U);
    EXPECT_EQ(page.pixel(35, 7), 0U);  // the inverse of paper
    EXPECT_EQ(page.pixel(50, 8), 0x00FF00U);
    EXPECT_EQ(page.pixel(50, 23), 0xFFFFFFU);
    const auto inRow = [&](int y, std::uint32_t colour) {
        int count = 0;
        for (int x = 0; x < 60; ++x) count += page.pixel(x, y) == colour ? 1 : 0;
        return count;
    };
    EXPECT_GT(inRow(30, 0xFF0000), 20);
    EXPECT_GT(inRow(30, 0x00FF00), 5);  // the gaps
    EXPECT_GT(inRow(34, 0xFF0000), 20);
    EXPECT_GT(inRow(34, 0xFFFFFF), 5);
    EXPECT_EQ(page.pixel(16, 50), 0xFF0000U);  // wide pens have round ends
    EXPECT_EQ(page.pixel(15, 46), 0xFFFFFFU);
}

TEST_F(PrinterTest, FarCoordinatesKeepTheirDirection) {
    REQUIRE_POPPLER();
    constexpr int far = 130000000;
    printPage(25.4, 25.4, 72, [&](HDC dc) {
        {
            const Using pen(dc, CreatePen(PS_SOLID, 3, RGB(255, 0, 0)));
            const Using brush(dc, CreateSolidBrush(RGB(0, 128, 0)));
            EXPECT_TRUE(MoveToEx(dc, -far, -far, nullptr));
            EXPECT_TRUE(LineTo(dc, far, far));
            const POINT corners[] = {{-far, 50}, {far, 50}, {far, far}, {-far, far}};
            EXPECT_TRUE(Polygon(dc, corners, 4));
            const POINT curve[] = {{20, -far}, {20, -10}, {20, 10}, {20, far}};
            EXPECT_TRUE(PolyBezier(dc, curve, 4));
            for (const int x : {-far, far}) EXPECT_TRUE(TextOutW(dc, x, 10, L"far away", 8));
        }
    });
    const Ppm page = rendered();
    ASSERT_GT(page.width(), 0);
    EXPECT_EQ(page.pixel(36, 36), 0xFF0000U);
    EXPECT_EQ(page.pixel(10, 10), 0xFF0000U);
    EXPECT_EQ(page.pixel(60, 20), 0xFFFFFFU);
    EXPECT_EQ(page.pixel(5, 45), 0xFFFFFFU);
    EXPECT_EQ(page.pixel(40, 50), 0xFF0000U);
    EXPECT_EQ(page.pixel(5, 60), 0x008000U);
    EXPECT_EQ(page.pixel(65, 68), 0x008000U);
    EXPECT_EQ(page.pixel(20, 5), 0xFF0000U);
    EXPECT_EQ(page.pixel(20, 68), 0xFF0000U);
}

TEST_F(PrinterTest, PathsAreVectorsAndLettersInThemAreOutlines) {
    REQUIRE_POPPLER();
    printPage(50.8, 25.4, 72, [&](HDC dc) {
        {
            const Using pen(dc, CreatePen(PS_SOLID, 3, RGB(255, 0, 0)));
            const Using brush(dc, CreateSolidBrush(RGB(0, 128, 0)));
            const Using font(dc,
                             CreateFontW(-60, 0, 0, 0, FW_BOLD, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, L"DejaVu Sans"));
            SetBkMode(dc, TRANSPARENT);
            EXPECT_TRUE(BeginPath(dc));
            EXPECT_TRUE(Ellipse(dc, 10, 10, 60, 60));
            EXPECT_TRUE(TextOutW(dc, 75, 0, L"I", 1));
            EXPECT_TRUE(EndPath(dc));
            EXPECT_TRUE(StrokeAndFillPath(dc));
        }
    });
    EXPECT_EQ(ask("pdffonts", "'" + file() + "'").find("DejaVu"), std::string::npos);
    const Ppm page = rendered();
    ASSERT_GT(page.width(), 0);
    EXPECT_EQ(page.pixel(35, 35), 0x008000U);
    EXPECT_EQ(page.pixel(10, 35), 0xFF0000U);
    EXPECT_EQ(page.pixel(35, 59), 0xFF0000U);
    EXPECT_EQ(page.pixel(12, 12), 0xFFFFFFU);
    int stem = 0;
    for (int x = 70; x < 110; ++x) stem += page.pixel(x, 36) == 0x008000U ? 1 : 0;
    EXPECT_GT(stem, 5);
}

TEST_F(PrinterTest, TextStaysText) {
    REQUIRE_POPPLER();
    printPage(100.0, 50.0, 600, [&](HDC dc) {
        {
            const Using font(
                dc, CreateFontW(-100, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, L"DejaVu Sans"));
            SetBkMode(dc, TRANSPARENT);
            SIZE size{};
            EXPECT_TRUE(GetTextExtentPoint32W(dc, L"Left kidney", 11, &size));
            EXPECT_GT(size.cx, 300);
            EXPECT_LT(size.cx, 1000);
            EXPECT_TRUE(TextOutW(dc, 100, 100, L"Left kidney", 11));
        }
    });
    EXPECT_NE(ask("pdftotext", "'" + file() + "' -").find("Left kidney"), std::string::npos);
}

TEST_F(PrinterTest, APageCannotBeCopiedFrom) {
    printPage(100.0, 100.0, 300, [&](HDC dc) {
        Device image(2, 2);
        EXPECT_FALSE(BitBlt(image, 0, 0, 2, 2, dc, 0, 0, SRCCOPY));
        EXPECT_TRUE(BitBlt(dc, 0, 0, 2, 2, image, 0, 0, SRCCOPY));
    });
}

}  // namespace
}  // namespace zoltest
