// Printer device contexts: pages of a PDF file.
#include "platform/gdi/dc.h"
#include "platform/gdi/figures.h"
#include "platform/gdi/mask.h"
#include "platform/gdi/textlayout.h"

#include <cairo-pdf.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

namespace zolgdi {

namespace {

constexpr double pointsPerInch = 72.0;

void setSource(cairo_t* cairo, COLORREF color) {
    cairo_set_source_rgb(cairo, GetRValue(color) / 255.0, GetGValue(color) / 255.0, GetBValue(color) / 255.0);
}

/// Draws with the state saved and restored around, inside an area.
template <typename Draw>
void clipped(cairo_t* cairo, const Area& clip, const Draw& draw) {
    if (clip.empty()) return;
    cairo_save(cairo);
    for (const RECT& rect : clip.rects()) {
        cairo_rectangle(cairo, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top);
    }
    cairo_clip(cairo);
    draw();
    cairo_restore(cairo);
}

/// The colour that a raster operation leaves on white paper when its source is white, too: pages cannot be read back.
COLORREF onPaper(BYTE rop, COLORREF pattern) {
    if (rop == ropIndex(BLACKNESS) || rop == ropIndex(DSTINVERT)) return RGB(0, 0, 0);
    return ropUsesPattern(rop) ? pattern : RGB(255, 255, 255);
}

class PdfCanvas : public Canvas {
public:
    PdfCanvas(cairo_t* cairo, const RECT& page) : cairo_(cairo), page_(page) {}

    [[nodiscard]] RECT bounds() const override { return page_; }

    void paint(const Area& clip, BYTE rop, COLORREF color) override {
        clipped(cairo_, clip, [&] {
            setSource(cairo_, onPaper(rop, color));
            cairo_paint(cairo_);
        });
    }

    /// The pixels go into the file at their own resolution and are scaled where they are shown.
    void picture(const Area& clip, const Picture& picture, BYTE /*rop*/, COLORREF /*pattern*/) override {
        const RECT source = intersection({0, 0, picture.pixels.width, picture.pixels.height},
                                         {picture.x, picture.y, picture.x + picture.width, picture.y + picture.height});
        if (isEmpty(source)) return;
        const CairoSurface image = copyOf(picture, source);
        const RECT& to = picture.destination;
        const double scaleX = static_cast<double>(to.right - to.left) / picture.width;
        const double scaleY = static_cast<double>(to.bottom - to.top) / picture.height;
        clipped(cairo_, clip.intersected(Area(to)), [&] {
            cairo_translate(cairo_, picture.mirrorX ? to.right : to.left, picture.mirrorY ? to.bottom : to.top);
            cairo_scale(cairo_, picture.mirrorX ? -scaleX : scaleX, picture.mirrorY ? -scaleY : scaleY);
            cairo_set_source_surface(cairo_, image.get(), source.left - picture.x, source.top - picture.y);
            cairo_pattern_set_filter(cairo_get_source(cairo_), CAIRO_FILTER_NEAREST);
            cairo_rectangle(cairo_, source.left - picture.x, source.top - picture.y, source.right - source.left,
                            source.bottom - source.top);
            cairo_fill(cairo_);
        });
    }

    void fill(const Area& clip, const Figures& figures, int fillMode, COLORREF color) override {
        clipped(cairo_, clip, [&] {
            setSource(cairo_, color);
            cairo_set_fill_rule(cairo_, fillMode == WINDING ? CAIRO_FILL_RULE_WINDING : CAIRO_FILL_RULE_EVEN_ODD);
            appendPath(cairo_, surfacesWithin(figures, cairoLimit), 0.5);
            cairo_fill(cairo_);
        });
    }

    void stroke(const Area& clip, const Figures& figures, const Stroke& stroke) override {
        if (stroke.style == PS_NULL) return;
        clipped(cairo_, clip, [&] {
            const double width = std::max(stroke.width, 1.0);
            cairo_set_line_cap(cairo_, width > 1.0 ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
            cairo_set_line_join(cairo_, CAIRO_LINE_JOIN_ROUND);
            cairo_set_line_width(cairo_, std::min(width, cairoLimit));
            const Figures lines = linesWithin(figures, cairoLimit);
            if (stroke.style != PS_SOLID && stroke.opaqueGaps) strokePath(lines, stroke.gapColor);
            setDashes(stroke.style);
            strokePath(lines, stroke.color);
        });
    }

    void ellipse(const Area& clip, const RECT& box, const Stroke& stroke, const COLORREF* fillColor) override {
        const Figures figures{ellipseFigure(cornersOf(box))};
        if (fillColor != nullptr) fill(clip, figures, ALTERNATE, *fillColor);
        this->stroke(clip, figures, stroke);
    }

    void text(const Area& clip, const TextRun& run) override {
        const TextLine& line = TextLine::shaped(*run.font, run.dpi, true, run.text);
        const Affine placement = line.placed(run.transform);
        if (isEmpty(intersection(line.extent(placement), clip.bounds()))) return;
        if (run.opaque) fill(clip, {line.cell(placement)}, ALTERNATE, run.background);
        clipped(cairo_, clip, [&] {
            setSource(cairo_, run.color);
            line.draw(cairo_, placement);
        });
    }

private:
    static CairoSurface copyOf(const Picture& picture, const RECT& source) {
        CairoSurface image(
            cairo_image_surface_create(CAIRO_FORMAT_RGB24, source.right - source.left, source.bottom - source.top));
        if (cairo_surface_status(image.get()) != CAIRO_STATUS_SUCCESS) throw std::bad_alloc();
        BYTE* out = cairo_image_surface_get_data(image.get());
        const std::ptrdiff_t stride = cairo_image_surface_get_stride(image.get());
        const int bytes = picture.pixels.bytes;
        for (LONG y = source.top; y < source.bottom; ++y, out += stride) {
            const BYTE* in = picture.pixels.at(source.left, y);
            for (LONG x = 0; x < source.right - source.left; ++x, in += bytes) {
                std::memcpy(out + static_cast<std::ptrdiff_t>(x) * 4, in, 3);
            }
        }
        cairo_surface_mark_dirty(image.get());
        return image;
    }

    void strokePath(const Figures& figures, COLORREF color) {
        setSource(cairo_, color);
        appendPath(cairo_, figures, 0.5);
        cairo_stroke(cairo_);
    }

    /// Only pens of one dot have dashes; on paper their pattern keeps the size that it has on a screen.
    void setDashes(UINT style) {
        const double dot = 3.0;
        const double dash[] = {6 * dot, 2 * dot};
        const double dots[] = {dot, dot};
        const double dashDot[] = {3 * dot, 2 * dot, dot, 2 * dot};
        const double dashDotDot[] = {3 * dot, dot, dot, dot, dot, dot};
        switch (style) {
            case PS_DASH:
                cairo_set_dash(cairo_, dash, 2, 0.0);
                break;
            case PS_DOT:
                cairo_set_dash(cairo_, dots, 2, 0.0);
                break;
            case PS_DASHDOT:
                cairo_set_dash(cairo_, dashDot, 4, 0.0);
                break;
            case PS_DASHDOTDOT:
                cairo_set_dash(cairo_, dashDotDot, 6, 0.0);
                break;
            default:
                break;
        }
    }

    cairo_t* cairo_;
    RECT page_;
};

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

    /// What stands for a device, such as a pipe, stays.
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
