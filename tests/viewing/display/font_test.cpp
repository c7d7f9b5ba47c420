// Texts in the scripts of the world: from the annotation to the picture and to the letters of a PDF.
#include "support/dicom_writer.h"
#include "support/foreign_leaks.h"
#include "support/gdi_count.h"
#include "support/test_data.h"
#include "viewing/annotations/annotations.h"
#include "viewing/image/phantom.h"
#include "viewing/print.h"
#include "viewing/render.h"

#include <dcmtk/dcmdata/dctk.h>
#include <gtest/gtest.h>
#include <iconv.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using namespace viewing;

struct Script {
    const char* name;
    const char* text;
};

// PrintTo gives tests readable names.
void PrintTo(const Script& script, std::ostream* out) { *out << script.name; }

const Script scripts[] = {
    {"German", "Größe 12,5 mm, Äußeres"},
    {"Greek", "διάμετρος 12 mm"},
    {"Cyrillic", "диаметр 12 мм"},
    {"Arabic", "قطر الدائرة 12"},
    {"Hebrew", "קוטר העיגול 12"},
    {"Japanese", "直径はここ、ﾔﾏﾀﾞ"},
    {"Korean", "지름 洪 12"},
    {"Chinese", "直径，毫米"},
    {"Thai", "ภาพ"},
    {"Vietnamese", "Nguyễn"},
    {"Mixed", "A: קוטר, диаметр, 直径"},
};

/// The characters that are seen, without their order and spacing: extraction guesses both from where letters stand.
std::u32string lettersOf(const std::string& utf8) {
    std::u32string out;
    for (std::size_t i = 0; i < utf8.size();) {
        const auto lead = static_cast<unsigned char>(utf8[i]);
        const std::size_t length = lead < 0x80U ? 1 : lead < 0xE0U ? 2 : lead < 0xF0U ? 3 : 4;
        char32_t point = length == 1 ? lead : lead & (0x7FU >> length);
        for (std::size_t k = 1; k < length && i + k < utf8.size(); ++k)
            point = (point << 6U) | (static_cast<unsigned char>(utf8[i + k]) & 0x3FU);
        const bool direction = (point >= 0x200E && point <= 0x200F) || (point >= 0x202A && point <= 0x202E);
        if (point > 0x20 && !direction) out += point;
        i += length;
    }
    std::sort(out.begin(), out.end());
    return out;
}

/// A red text; it must not need JSON's escapes.
std::vector<Annotation> textAt(const std::string& text, int x, int y) {
    return parseAnnotations(R"({"annotations": [{"figure": "text", "colour": "#FF0000", "points": [[)" +
                            std::to_string(x) + "," + std::to_string(y) + R"(]], "text": ")" + text + "\"}]}");
}

/// Fails the test where a text is not drawn in letters of its own. Glyphs that no font has are drawn as boxes with
/// their number, of which no letters come back from a document.
void expectLegible(const std::string& text, const std::string& what) {
    const unsigned int objects = zoltest::gdiObjectCount();
    DisplaySettings settings;
    settings.overlays = false;
    settings.shutters = false;
    settings.annotations = textAt(text, 20, 400);
    std::vector<std::string> notes;

    const Picture picture = render(makePhantom(), settings, notes);
    int ink = 0;
    int left = picture.width;
    int right = 0;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            if (picture.at(x, y) != 0xFF0000U) continue;
            ++ink;
            left = std::min(left, x);
            right = std::max(right, x);
            EXPECT_TRUE(y >= 398 && y < 426) << what << ": " << y;
        }
    }
    EXPECT_GT(ink, 5) << what;
    EXPECT_GE(left, 18) << what;
    EXPECT_LT(right, picture.width - 1) << what;

    const zoltest::TemporaryFolder folder;
    {
        // Cairo loses a table of each font with cubic outlines (Noto's ideographs) that it writes into a PDF.
        const zoltest::ForeignLeaks inCairo;
        print(makePhantom(), settings, {}, folder.file("page.pdf"), notes);
    }
    ASSERT_EQ(std::system(("pdftotext '" + folder.file("page.pdf") + "' '" + folder.file("text") + "'").c_str()), 0);
    std::ostringstream extracted;
    extracted << std::ifstream(folder.file("text")).rdbuf();
    EXPECT_EQ(lettersOf(extracted.str()), lettersOf(text)) << what << ": " << extracted.str() << " for " << text;
    EXPECT_EQ(zoltest::gdiObjectCount(), objects) << what;
}

class ScriptsTest : public ::testing::TestWithParam<Script> {
protected:
    void SetUp() override {
        if (std::system("pdftotext -v >/dev/null 2>&1") != 0) GTEST_SKIP() << "no poppler-utils";
    }
};

TEST_P(ScriptsTest, AreDrawnInLettersOnScreenAndPaper) { expectLegible(GetParam().text, GetParam().name); }

INSTANTIATE_TEST_SUITE_P(Texts, ScriptsTest, ::testing::ValuesIn(scripts),
                         [](const auto& script) { return std::string(script.param.name); });

std::string converted(const std::string& bytes, const char* from) {
    std::string out(4 * bytes.size() + 16, '\0');
    std::string in = bytes;
    char* source = in.data();
    char* target = out.data();
    std::size_t left = in.size();
    std::size_t room = out.size();
    iconv_t converter = iconv_open("UTF-8", from);
    EXPECT_NE(iconv(converter, &source, &left, &target, &room), static_cast<std::size_t>(-1)) << from;
    iconv_close(converter);
    out.resize(out.size() - room);
    return out;
}

/// In UTF-8. Of the Japanese character sets that the reader may not know, those parts of a name that switch the set
/// are ISO 2022 and the others single bytes.
std::string patientName(const std::filesystem::path& path) {
    DcmFileFormat file;
    OFString name;
    EXPECT_TRUE(file.loadFile(path.c_str()).good()) << path;
    if (file.getDataset()->convertToUTF8().good()) {
        EXPECT_TRUE(file.getDataset()->findAndGetOFStringArray(DCM_PatientName, name).good()) << path;
        return name.c_str();
    }
    EXPECT_TRUE(file.loadFile(path.c_str()).good()) << path;
    EXPECT_TRUE(file.getDataset()->findAndGetOFStringArray(DCM_PatientName, name).good()) << path;
    std::istringstream parts(name.c_str());
    std::string out;
    for (std::string part; std::getline(parts, part, '=');) {
        const bool switches = part.find('\x1B') != std::string::npos;
        out += (out.empty() ? "" : "=") + converted(part, switches ? "ISO-2022-JP" : "SHIFT_JIS");
    }
    return out;
}

TEST(PatientNames, AreDrawnInLettersOnScreenAndPaper) {
    const std::filesystem::path folder = zoltest::sampleFolder() / "charset";
    if (!std::filesystem::is_directory(folder)) GTEST_SKIP() << "no sample folder";
    if (std::system("pdftotext -v >/dev/null 2>&1") != 0) GTEST_SKIP() << "no poppler-utils";
    OFLog::configure(OFLogger::OFF_LOG_LEVEL);
    int names = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string name = patientName(entry.path());
        EXPECT_FALSE(name.empty()) << entry.path();
        expectLegible(name, entry.path().filename().string());
        ++names;
    }
    EXPECT_GE(names, 12);
}

}  // namespace
