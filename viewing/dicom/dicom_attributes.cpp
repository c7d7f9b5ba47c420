#include "viewing/dicom/dicom_attributes.h"

#include "viewing/text/numbers.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace viewing {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks(" \t\r\n\0", 5);
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

void addGroups(DcmItem& dataset, const DcmTagKey& groups, int frame, std::vector<DcmItem*>& items) {
    DcmItem* item = nullptr;
    if (dataset.findAndGetSequenceItem(groups, item, frame).bad() || item == nullptr) return;
    for (unsigned long i = 0; i < item->card(); ++i) {
        auto* const sequence = dynamic_cast<DcmSequenceOfItems*>(item->getElement(i));
        if (sequence != nullptr && sequence->card() > 0) items.push_back(sequence->getItem(0));
    }
}

}  // namespace

Attributes::Attributes(DcmItem& dataset, int frame) : items_{&dataset} {
    addGroups(dataset, DCM_PerFrameFunctionalGroupsSequence, frame, items_);
    addGroups(dataset, DCM_SharedFunctionalGroupsSequence, 0, items_);
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
        const std::optional<double> number = parseAs<double>(value);
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

std::vector<std::uint16_t> Attributes::words(const DcmTagKey& tag) const {
    DcmItem* const item = find(tag);
    DcmElement* element = nullptr;
    if (item == nullptr || item->findAndGetElement(tag, element).bad()) return {};
    std::vector<std::uint16_t> out;
    const std::size_t length = element->getLength();
    Uint8* bytes = nullptr;
    if (element->ident() == EVR_OB && element->getUint8Array(bytes).good() && bytes != nullptr) {
        for (std::size_t i = 0; i + 1 < length; i += 2)
            out.push_back(static_cast<std::uint16_t>(bytes[i] | (bytes[i + 1] << 8)));
        return out;
    }
    Uint16* words = nullptr;
    if (element->getUint16Array(words).good() && words != nullptr) return {words, words + length / 2};
    Sint16* numbers = nullptr;
    if (element->getSint16Array(numbers).good() && numbers != nullptr)
        std::transform(numbers, numbers + length / 2, std::back_inserter(out),
                       [](Sint16 number) { return static_cast<std::uint16_t>(number); });
    return out;
}

bool Attributes::isSigned(const DcmTagKey& tag) const {
    DcmItem* const item = find(tag);
    DcmElement* element = nullptr;
    return item != nullptr && item->findAndGetElement(tag, element).good() && element->ident() == EVR_SS;
}

std::vector<DcmItem*> Attributes::items(const DcmTagKey& tag) const {
    std::vector<DcmItem*> out;
    for (DcmItem* const item : items_) {
        DcmSequenceOfItems* sequence = nullptr;
        if (item->findAndGetSequence(tag, sequence).bad() || sequence == nullptr) continue;
        for (unsigned long i = 0; i < sequence->card(); ++i) out.push_back(sequence->getItem(i));
        return out;
    }
    return out;
}

}  // namespace viewing
