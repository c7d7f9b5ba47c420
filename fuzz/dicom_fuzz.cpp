// A DICOM file with anything in it: read, described and shown, or refused; and its tables and palette for another
// image.
#include "viewing/display/render.h"
#include "viewing/input.h"

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

viewing::RenderOptions viewOptions(zolfuzz::Bytes& in) {
    viewing::RenderOptions options;
    options.size = viewing::Size{in.ConsumeIntegralInRange(1, 90), in.ConsumeIntegralInRange(1, 90)};
    if (in.ConsumeBool()) options.window = viewing::Window{in.ConsumeFloatingPointInRange(-1e9, 1e9), 400.0};
    options.flip = in.ConsumeBool() ? viewing::Flip::Horizontal : viewing::Flip::None;
    options.degrees = in.ConsumeFloatingPointInRange(-720.0, 720.0);
    options.zoom = in.ConsumeFloatingPointInRange(viewing::minZoom, viewing::maxZoom);
    options.pan.x = in.ConsumeFloatingPointInRange(-viewing::maxPan, viewing::maxPan);
    options.invert = in.ConsumeBool();
    options.background = in.ConsumeIntegralInRange(0, 255);
    if (in.ConsumeBool()) options.palette = viewing::wellKnownPalette("PET");
    return options;
}

/// Refusals are as good as pictures.
template <typename Action>
void attempt(Action action) {
    try {
        action();
    } catch (const viewing::Refusal&) {
        return;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Numbers are taken from the end, so that a sample file without its options is a good seed.
    zolfuzz::Bytes in(data, size);
    const viewing::RenderOptions options = viewOptions(in);
    viewing::LoadOptions load;
    load.frame = in.ConsumeIntegralInRange(0, 3);
    if (in.ConsumeBool()) load.voi = in.ConsumeIntegralInRange(0, 4);
    const bool lends = in.ConsumeBool();
    const MemoryFile file(in.ConsumeRemainingBytes<std::uint8_t>());
    const auto show = [](const viewing::StoredImage& image, const viewing::RenderOptions& wanted) {
        std::vector<std::string> notes;
        static_cast<void>(viewing::render(image, wanted, notes));
    };
    attempt([&] { static_cast<void>(viewing::describeInput(file.path())); });
    attempt([&] { show(viewing::loadInput(file.path(), load), options); });
    // Whether or not it is an image, its tables and its palette may serve another one.
    if (!lends) return 0;
    attempt([&] { show(viewing::loadInput("phantom", {1, {}, file.path(), "", ""}), options); });
    attempt([&] { show(viewing::loadInput("phantom", {1, load.voi, "", file.path(), ""}), options); });
    attempt([&] { show(viewing::loadInput("phantom", {1, {}, "", "", file.path()}), options); });
    attempt([&] {
        viewing::RenderOptions coloured = options;
        coloured.palette = viewing::loadPalette(file.path());
        show(viewing::loadInput("phantom", {}), coloured);
    });
    return 0;
}
