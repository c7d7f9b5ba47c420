// Printer device contexts: pages of a PDF file.
#include "platform/gdi/dc.h"
#include "platform/gdi/pdfcanvas.h"
#include "platform/gdi/textlayout.h"

#include <cairo-pdf.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <string>

namespace zolgdi {

namespace {

constexpr double pointsPerInch = 72.0;

/// The moment that the environment variable SOURCE_DATE_EPOCH states, in seconds since 1970, as in
/// 2026-11-22T06:00:00Z: by it the same pages become the same bytes on every day. Empty where it states none; a
/// document is then of now.
std::string statedDate() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): a host does not change its environment while it prints.
    const char* stated = std::getenv("SOURCE_DATE_EPOCH");
    if (stated == nullptr) return {};
    const char* end = stated + std::strlen(stated);
    std::int64_t seconds = -1;
    const auto [rest, error] = std::from_chars(stated, end, seconds);
    constexpr std::int64_t endOfYear9999 = 253402300799;  // the last moment that a PDF date can say
    if (error != std::errc() || rest != end || seconds < 0 || seconds > endOfYear9999) return {};
    const auto time = static_cast<std::time_t>(seconds);
    std::tm date{};
    std::array<char, sizeof("YYYY-MM-DDThh:mm:ssZ")> text{};
    if (gmtime_r(&time, &date) == nullptr) return {};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &date)};
}

/// The file of a document and what is drawn into it.
class Document {
public:
    static std::unique_ptr<Document> open(const std::string& path, const Capabilities& capabilities) {
        std::unique_ptr<Document> document(new Document(path));
        document->file_ = std::fopen(path.c_str(), "wb");
        if (document->file_ == nullptr) return nullptr;
        const double scale = pointsPerInch / capabilities.dpi;
        document->surface_ = cairo_pdf_surface_create_for_stream(
            &Document::write, document.get(), capabilities.width * scale, capabilities.height * scale);
        const std::string date = statedDate();
        if (!date.empty()) {
            cairo_pdf_surface_set_metadata(document->surface_, CAIRO_PDF_METADATA_CREATE_DATE, date.c_str());
        }
        document->cairo_ = cairo_create(document->surface_);
        cairo_scale(document->cairo_, scale, scale);
        return document;
    }

    ~Document() {
        if (file_ == nullptr) return;
        if (finish()) discard();
    }
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    void setTitle(const std::string& title) {
        cairo_pdf_surface_set_metadata(surface_, CAIRO_PDF_METADATA_TITLE, title.c_str());
    }
    [[nodiscard]] cairo_t* cairo() const { return cairo_; }
    [[nodiscard]] bool good() const { return cairo_status(cairo_) == CAIRO_STATUS_SUCCESS; }

    /// Completes the file, which from then on stays; false when it could not be written in full and is gone.
    bool finish() {
        const bool drawn = good();
        cairo_destroy(std::exchange(cairo_, nullptr));
        cairo_surface_finish(surface_);
        const bool finished = cairo_surface_status(surface_) == CAIRO_STATUS_SUCCESS;
        cairo_surface_destroy(std::exchange(surface_, nullptr));
        const bool closed = std::fclose(std::exchange(file_, nullptr)) == 0;
        const bool complete = drawn && finished && closed;
        if (!complete) discard();
        return complete;
    }

private:
    explicit Document(std::string path) : path_(std::move(path)) {}

    /// Removes the file, but not a pipe or another device of that name.
    void discard() const {
        std::error_code ignored;
        if (std::filesystem::is_regular_file(path_, ignored)) std::remove(path_.c_str());
    }

    static cairo_status_t write(void* document, const unsigned char* data, unsigned int size) {
        std::FILE* file = static_cast<Document*>(document)->file_;
        return std::fwrite(data, 1, size, file) == size ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR;
    }

    std::string path_;
    std::FILE* file_ = nullptr;
    cairo_surface_t* surface_ = nullptr;
    cairo_t* cairo_ = nullptr;
};

class PrinterDc : public DeviceContext {
public:
    PrinterDc(const Capabilities& capabilities, std::string path)
        : DeviceContext(capabilities), path_(std::move(path)) {}

    Canvas* canvas() override { return page_.get(); }

    int startDocument(const DOCINFOW& info) {
        if (started_) return SP_ERROR;
        document_ = Document::open(info.lpszOutput != nullptr ? toUtf8(info.lpszOutput) : path_, capabilities);
        if (!document_) return SP_ERROR;
        if (info.lpszDocName != nullptr) document_->setTitle(toUtf8(info.lpszDocName));
        started_ = true;
        return 1;
    }

    int startPage() {
        if (!document_ || page_) return SP_ERROR;
        page_ = std::make_unique<PdfCanvas>(document_->cairo(), RECT{0, 0, capabilities.width, capabilities.height});
        return 1;
    }

    int endPage() {
        if (!page_) return SP_ERROR;
        page_ = nullptr;
        cairo_show_page(document_->cairo());
        return document_->good() ? 1 : SP_ERROR;
    }

    int endDocument() {
        if (!document_) return SP_ERROR;
        if (page_) endPage();
        const bool done = document_->finish();
        document_ = nullptr;
        return done ? 1 : SP_ERROR;
    }

    int abort() {
        if (!document_) return SP_ERROR;
        page_ = nullptr;
        document_ = nullptr;
        return 1;
    }

private:
    std::string path_;
    bool started_ = false;
    std::unique_ptr<Document> document_;
    std::unique_ptr<PdfCanvas> page_;
};

/// Runs a call on a printer's device context.
template <typename Call>
int withPrinter(HDC dc, const Call& call) {
    return guarded(SP_ERROR, [&] {
        const auto printer = find<PrinterDc>(dc);
        if (!printer) return SP_ERROR;
        const std::lock_guard lock(printer->mutex);
        return call(*printer);
    });
}

/// The dots of a length; 0 where it is less than one or beyond what a page may have.
int dots(double millimetres, int dpi) {
    constexpr double most = 32767.0;
    const double count = millimetres / 25.4 * dpi;
    return count >= 1.0 && count <= most ? static_cast<int>(std::lround(count)) : 0;
}

}  // namespace

}  // namespace zolgdi

using zolgdi::PrinterDc;
using zolgdi::withPrinter;

HDC ZolCreatePdfPrinterDC(const char* path, double pageWidthMillimetres, double pageHeightMillimetres, int dpi) {
    return zolgdi::guarded(nullptr, [&]() -> HDC {
        if (path == nullptr || dpi < 36 || dpi > 9600) return nullptr;
        zolgdi::Capabilities capabilities;
        capabilities.technology = DT_RASPRINTER;
        capabilities.width = zolgdi::dots(pageWidthMillimetres, dpi);
        capabilities.height = zolgdi::dots(pageHeightMillimetres, dpi);
        capabilities.dpi = dpi;
        if (capabilities.width == 0 || capabilities.height == 0) return nullptr;
        return zolgdi::publish<HDC>(std::make_shared<PrinterDc>(capabilities, path));
    });
}

int StartDocW(HDC dc, const DOCINFOW* info) {
    return withPrinter(dc,
                       [&](PrinterDc& printer) { return info != nullptr ? printer.startDocument(*info) : SP_ERROR; });
}

int StartPage(HDC dc) {
    return withPrinter(dc, [](PrinterDc& printer) { return printer.startPage(); });
}
int EndPage(HDC dc) {
    return withPrinter(dc, [](PrinterDc& printer) { return printer.endPage(); });
}
int EndDoc(HDC dc) {
    return withPrinter(dc, [](PrinterDc& printer) { return printer.endDocument(); });
}
int AbortDoc(HDC dc) {
    return withPrinter(dc, [](PrinterDc& printer) { return printer.abort(); });
}
