// A DICOM file with anything in it: read, described and shown, or refused; and its tables and palette for another
// image.
#include "viewing/describe.h"
#include "viewing/open.h"
#include "viewing/render.h"

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

viewing::DisplaySettings viewOptions(zolfuzz::Bytes& in) {
    viewing::DisplaySettings settings;
    settings.size = viewing::Size{in.ConsumeIntegralInRange(1, 90), in.ConsumeIntegralInRange(1, 90)};
    if (in.ConsumeBool()) settings.window = viewing::Window{in.ConsumeFloatingPointInRange(-1e9, 1e9), 400.0};
    settings.flip = in.ConsumeBool() ? viewing::Flip::Horizontal : viewing::Flip::None;
    settings.degrees = in.ConsumeFloatingPointInRange(-720.0, 720.0);
    settings.zoom = in.ConsumeFloatingPointInRange(viewing::minZoom, viewing::maxZoom);
    settings.pan.x = in.ConsumeFloatingPointInRange(-viewing::maxPan, viewing::maxPan);
    settings.invert = in.ConsumeBool();
    settings.background = in.ConsumeIntegralInRange(0, 255);
    if (in.ConsumeBool()) settings.palette = viewing::wellKnownPalette("PET");
    return settings;
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
    // Numbers are taken from the end, so that a sample file without its settings is a good seed.
    zolfuzz::Bytes in(data, size);
    const viewing::DisplaySettings settings = viewOptions(in);
    viewing::OpenSettings load;
    load.frame = in.ConsumeIntegralInRange(0, 3);
    if (in.ConsumeBool()) load.voi = in.ConsumeIntegralInRange(0, 4);
    const bool lends = in.ConsumeBool();
    const MemoryFile file(in.ConsumeRemainingBytes<std::uint8_t>());
    const auto show = [](const viewing::StoredImage& image, const viewing::DisplaySettings& wanted) {
        std::vector<std::string> notes;
        static_cast<void>(viewing::render(image, wanted, notes));
    };
    attempt([&] { static_cast<void>(viewing::describe(file.path())); });
    attempt([&] { show(viewing::openImage(file.path(), load), settings); });
    // Whether or not it is an image, its tables and its palette may serve another one.
    if (!lends) return 0;
    attempt([&] { show(viewing::openImage("phantom", {1, {}, file.path(), "", ""}), settings); });
    attempt([&] { show(viewing::openImage("phantom", {1, load.voi, "", file.path(), ""}), settings); });
    attempt([&] { show(viewing::openImage("phantom", {1, {}, "", "", file.path()}), settings); });
    attempt([&] {
        viewing::DisplaySettings coloured = settings;
        coloured.palette = viewing::openPalette(file.path());
        show(viewing::openImage("phantom", {}), coloured);
    });
    return 0;
}
