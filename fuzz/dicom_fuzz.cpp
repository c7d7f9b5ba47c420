// A DICOM file with anything in it: read, described and shown, or refused.
#include "zolview/dicom_input.h"
#include "zolview/render.h"

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "fuzz_input.h"

namespace {

/// A file in memory, which the reader opens by its name.
class MemoryFile {
public:
    explicit MemoryFile(const std::vector<std::uint8_t>& bytes) : descriptor_(memfd_create("dicom", 0)) {
        if (write(descriptor_, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) std::abort();
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(descriptor_); }

    [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
};

zolview::RenderOptions viewOptions(zolfuzz::Bytes& in) {
    zolview::RenderOptions options;
    options.size = zolview::Size{in.ConsumeIntegralInRange(1, 90), in.ConsumeIntegralInRange(1, 90)};
    if (in.ConsumeBool()) options.window = zolview::Window{in.ConsumeFloatingPointInRange(-1e9, 1e9), 400.0};
    options.flip = in.ConsumeBool() ? zolview::Flip::Horizontal : zolview::Flip::None;
    options.degrees = in.ConsumeFloatingPointInRange(-720.0, 720.0);
    options.zoom = in.ConsumeFloatingPointInRange(zolview::minZoom, zolview::maxZoom);
    options.pan.x = in.ConsumeFloatingPointInRange(-zolview::maxPan, zolview::maxPan);
    options.invert = in.ConsumeBool();
    options.background = in.ConsumeIntegralInRange(0, 255);
    return options;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Numbers are taken from the end, so that a sample file without its options is a good seed.
    zolfuzz::Bytes in(data, size);
    const zolview::RenderOptions options = viewOptions(in);
    const MemoryFile file(in.ConsumeRemainingBytes<std::uint8_t>());
    try {
        const zolview::DicomFile dicom(file.path());
        static_cast<void>(dicom.summary());
        std::vector<std::string> notes;
        static_cast<void>(zolview::render(dicom.image(), options, notes));
    } catch (const zolview::Refusal&) {
        return 0;
    }
    return 0;
}
