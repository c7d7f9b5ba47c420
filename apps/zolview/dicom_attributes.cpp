#include "dicom_attributes.h"

#include <charconv>
#include <cmath>
#include <string_view>

namespace zolview {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks(" \t\r\n\0", 5);
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<double> parse(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
    return value;
}

void addFirstFrameGroups(DcmItem& dataset, const DcmTagKey& groups, std::vector<DcmItem*>& items) {
    DcmItem* frame = nullptr;
    if (dataset.findAndGetSequenceItem(groups, frame, 0).bad() || frame == nullptr) return;
    for (unsigned long i = 0; i < frame->card(); ++i) {
        auto* const sequence = dynamic_cast<DcmSequenceOfItems*>(frame->getElement(i));
        if (sequence != nullptr && sequence->card() > 0) items.push_back(sequence->getItem(0));
    }
}

}  // namespace

Attributes::Attributes(DcmItem& dataset) : items_{&dataset} {
    addFirstFrameGroups(dataset, DCM_PerFrameFunctionalGroupsSequence, items_);
    addFirstFrameGroups(dataset, DCM_SharedFunctionalGroupsSequence, items_);
}

DcmItem* Attributes::find(const DcmTagKey& tag) const {
    for (DcmItem* const item : items_)
        if (item->tagExistsWithValue(tag)) return item;
    return nullptr;
}

bool Attributes::has(const DcmTagKey& tag) const { return find(tag) != nullptr; }

std::string Attributes::text(const DcmTagKey& tag) const {
    OFString value;
    DcmItem* const item = find(tag);
    if (item == nullptr || item->findAndGetOFStringArray(tag, value).bad()) return {};
    return std::string(trimmed({value.c_str(), value.length()}));
}

std::vector<std::string> Attributes::texts(const DcmTagKey& tag) const {
    std::vector<std::string> out;
    const std::string all = text(tag);
    if (all.empty()) return out;
    std::size_t start = 0;
    while (true) {
        const std::size_t end = all.find('\\', start);
        out.emplace_back(trimmed(std::string_view(all).substr(start, end - start)));
        if (end == std::string::npos) return out;
        start = end + 1;
    }
}

std::vector<double> Attributes::numbers(const DcmTagKey& tag) const {
    std::vector<double> out;
    for (const std::string& value : texts(tag)) {
        const std::optional<double> number = parse(value);
        if (!number) return {};
        out.push_back(*number);
    }
    return out;
}

std::optional<double> Attributes::number(const DcmTagKey& tag) const {
    const std::vector<double> all = numbers(tag);
    return all.empty() ? std::nullopt : std::optional(all.front());
}

std::optional<std::uint16_t> Attributes::word(const DcmTagKey& tag) const {
    DcmItem* const item = find(tag);
    if (item == nullptr) return std::nullopt;
    Uint16 asUnsigned = 0;
    if (item->findAndGetUint16(tag, asUnsigned).good()) return asUnsigned;
    Sint16 asSigned = 0;
    if (item->findAndGetSint16(tag, asSigned).good()) return static_cast<std::uint16_t>(asSigned);
    return std::nullopt;
}

bool Attributes::hasItems(const DcmTagKey& tag) const {
    for (DcmItem* const item : items_) {
        DcmSequenceOfItems* sequence = nullptr;
        if (item->findAndGetSequence(tag, sequence).good() && sequence != nullptr && sequence->card() > 0) return true;
    }
    return false;
}

}  // namespace zolview
