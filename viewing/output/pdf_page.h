// A PDF file of one page, to draw on.
#pragma once

#include "platform/platform.h"
#include "viewing/output/page_settings.h"

#include <string>

namespace viewing {

/// One document of one page. Unless it was finished, no file is left.
class PdfPage {
public:
    /// Starts the page of a paper in the orientation in which it lies. Refuses a file that cannot be written.
    PdfPage(const std::string& path, const Millimetres& paper, int dpi);
    PdfPage(const PdfPage&) = delete;
    PdfPage& operator=(const PdfPage&) = delete;
    ~PdfPage();

    /// A printer's device context whose unit is the dot; it lives as long as the page.
    [[nodiscard]] HDC dc() const { return dc_; }

    /// Writes the file. Refuses a file that cannot be written.
    void finish();

private:
    [[noreturn]] void refuse() const;

    std::string path_;
    HDC dc_;
};

}  // namespace viewing
