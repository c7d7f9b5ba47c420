#include "viewing/output/pdf_page.h"

#include "viewing/image/refusal.h"

namespace viewing {

PdfPage::PdfPage(const std::string& path, const Millimetres& paper, int dpi)
    : path_(path), dc_(ZolCreatePdfPrinterDC(path.c_str(), paper.width, paper.height, dpi)) {
    DOCINFOW info{};
    info.cbSize = sizeof info;
    info.lpszDocName = L"zolview";
    if (dc_ != nullptr && StartDocW(dc_, &info) > 0 && StartPage(dc_) > 0) return;
    DeleteDC(dc_);
    refuse();
}

PdfPage::~PdfPage() { DeleteDC(dc_); }

void PdfPage::finish() {
    if (EndPage(dc_) <= 0 || EndDoc(dc_) <= 0) refuse();
}

void PdfPage::refuse() const { throw Refusal("cannot write " + path_); }

}  // namespace viewing
