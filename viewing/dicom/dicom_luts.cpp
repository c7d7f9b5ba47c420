#include "viewing/dicom/dicom_luts.h"

#include "viewing/dicom/segmented_table.h"
#include "viewing/image/window.h"
#include "viewing/text/numbers.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace viewing {

namespace {

const TableTags lutTags{DCM_LUTDescriptor, DCM_LUTData, DCM_LUTData};

/// Entries of 8 bits come one to a word, or two.
std::vector<std::uint16_t> unpack(std::vector<std::uint16_t> words, std::size_t count, int bits,
                                  const std::string& name) {
    if (bits <= 8 && words.size() < count && words.size() * 2 >= count) {
        std::vector<std::uint16_t> bytes;
        for (const std::uint16_t word : words) {
            bytes.push_back(static_cast<std::uint16_t>(word & 0xFF));
            bytes.push_back(static_cast<std::uint16_t>(word >> 8));
        }
        words = std::move(bytes);
    }
    if (words.size() < count)
        throw Refusal("has a " + name + " with " + std::to_string(words.size()) + " of " + std::to_string(count) +
                      " entries");
    words.resize(count);
    return words;
}

VoiChoice windowChoice(const std::string& name, const std::string& centre, const std::string& width,
                       WindowFunction function) {
    VoiChoice choice{name, VoiWindow{{}, function}, {}, {}};
    const auto middle = parseAs<double>(centre);
    const auto length = parseAs<double>(width);
    if (middle && length) {
        const VoiWindow window{{*middle, *length}, function};
        choice.voi = window;
        if (!isUsable(window)) choice.flaw = "has a width of " + width;
    } else {
        choice.flaw = "cannot be read";
    }
    return choice;
}

std::optional<WindowFunction> functionOf(const std::string& name) {
    if (name.empty() || name == "LINEAR") return WindowFunction::Linear;
    if (name == "LINEAR_EXACT") return WindowFunction::LinearExact;
    if (name == "SIGMOID") return WindowFunction::Sigmoid;
    return std::nullopt;
}

/// The number that a data set gives, `otherwise` where it gives none; a NaN where what it gives is no number.
double numberOr(const Attributes& attributes, const DcmTagKey& tag, double otherwise) {
    if (!attributes.has(tag)) return otherwise;
    return attributes.number(tag).value_or(std::numeric_limits<double>::quiet_NaN());
}

}  // namespace

LookupTable readTable(const Attributes& attributes, const TableTags& tags, const std::string& name, bool signedInputs) {
    const std::vector<std::uint16_t> descriptor = attributes.words(tags.descriptor);
    if (descriptor.size() != 3) throw Refusal("has a " + name + " without a descriptor of three numbers");
    // All 16 bits cannot count 65536 entries: 0 stands for them.
    const std::size_t count = descriptor[0] == 0 ? 65536 : descriptor[0];
    LookupTable table;
    table.first = descriptor[1];
    if (signedInputs || attributes.isSigned(tags.descriptor)) table.first = static_cast<std::int16_t>(descriptor[1]);
    table.bits = descriptor[2];
    if (table.bits < 1 || table.bits > 16)
        throw Refusal("has a " + name + " with entries of " + std::to_string(table.bits) + " bits");
    const bool segmented = !attributes.has(tags.data) && attributes.has(tags.segmented);
    const std::vector<std::uint16_t> words = attributes.words(segmented ? tags.segmented : tags.data);
    table.entries = segmented ? expandSegments(words, count, table.bits, name) : unpack(words, count, table.bits, name);
    // Some writers declare fewer bits than they use.
    const std::uint16_t largest = *std::max_element(table.entries.begin(), table.entries.end());
    table.bits = std::max(table.bits, static_cast<int>(std::bit_width(largest)));
    return table;
}

LookupTable readLutItem(DcmItem& item, const std::string& name, bool signedInputs) {
    return readTable(Attributes(item), lutTags, name, signedInputs);
}

std::optional<Modality> readModality(const Attributes& attributes, bool signedInputs, std::vector<std::string>& notes) {
    Modality modality;
    const std::vector<DcmItem*> items = attributes.items(DCM_ModalityLUTSequence);
    if (!items.empty()) {
        modality.table = readLutItem(*items.front(), "Modality LUT", signedInputs);
        return modality;
    }
    if (!attributes.has(DCM_RescaleSlope) && !attributes.has(DCM_RescaleIntercept)) return std::nullopt;
    const double slope = numberOr(attributes, DCM_RescaleSlope, 1.0);
    const double intercept = numberOr(attributes, DCM_RescaleIntercept, 0.0);
    // False for NaN, too.
    const bool sensible = std::abs(slope) >= 1e-9 && std::abs(slope) <= 1e9 && std::abs(intercept) <= 1e9;
    if (!sensible) {
        notes.emplace_back("the rescale slope or intercept makes no sense; shown without them");
        return modality;
    }
    modality.slope = slope;
    modality.intercept = intercept;
    return modality;
}

std::vector<VoiChoice> readVoi(const Attributes& attributes, bool signedInputs) {
    std::vector<VoiChoice> out;
    const std::vector<std::string> centres = attributes.texts(DCM_WindowCenter);
    const std::vector<std::string> widths = attributes.texts(DCM_WindowWidth);
    const std::vector<std::string> names = attributes.texts(DCM_WindowCenterWidthExplanation);
    const auto at = [](const std::vector<std::string>& texts, std::size_t i) {
        return i < texts.size() ? texts[i] : std::string();
    };
    const std::string functionName = attributes.text(DCM_VOILUTFunction);
    const std::optional<WindowFunction> function = functionOf(functionName);
    for (std::size_t i = 0; i < std::max(centres.size(), widths.size()); ++i) {
        out.push_back(
            windowChoice(at(names, i), at(centres, i), at(widths, i), function.value_or(WindowFunction::Linear)));
        if (!function) out.back().note = "the VOI LUT function '" + functionName + "' is not known; taken as LINEAR";
    }
    for (DcmItem* const item : attributes.items(DCM_VOILUTSequence)) {
        VoiChoice choice;
        choice.name = Attributes(*item).text(DCM_LUTExplanation);
        try {
            choice.voi = readLutItem(*item, "VOI LUT", signedInputs);
        } catch (const Refusal& refusal) {
            choice.voi = LookupTable();
            choice.flaw = refusal.what();
        }
        out.push_back(std::move(choice));
    }
    return out;
}

std::optional<Presentation> readPresentation(const Attributes& attributes) {
    Presentation presentation;
    const std::vector<DcmItem*> items = attributes.items(DCM_PresentationLUTSequence);
    if (!items.empty()) {
        presentation.table = readLutItem(*items.front(), "Presentation LUT", false);
        return presentation;
    }
    const std::string shape = attributes.text(DCM_PresentationLUTShape);
    if (shape != "IDENTITY" && shape != "INVERSE") return std::nullopt;
    presentation.inverse = shape == "INVERSE";
    return presentation;
}

}  // namespace viewing
