#include "platform/gdi/handles.h"

#include <utility>
#include <vector>

namespace zolgdi {

// A handle's bits: the slot's index plus one, above it the slot's generation, and two low bits that make it an address
// that nothing lives at. Generations make a slot's old handles stale.
namespace {

constexpr unsigned int tagBits = 2;
constexpr unsigned int indexBits = 20;
constexpr std::uintptr_t tag = 2;
constexpr std::uintptr_t indexMask = (std::uintptr_t{1} << indexBits) - 1;
constexpr std::uintptr_t generationMask = ~std::uintptr_t{0} >> (indexBits + tagBits);
constexpr std::size_t maximumSlots = indexMask;

}  // namespace

struct HandleTable::Slot {
    std::shared_ptr<Object> object;
    std::uintptr_t generation = 0;
};

struct HandleTable::Slots {
    std::vector<Slot> all;
    std::vector<std::size_t> free;
    unsigned int living = 0;
};

HandleTable::HandleTable() : slots_(std::make_unique<Slots>()) {}
HandleTable::~HandleTable() = default;

HandleTable& HandleTable::instance() {
    static HandleTable& table = *new HandleTable;
    return table;
}

HANDLE HandleTable::add(std::shared_ptr<Object> object, bool stock) {
    const std::lock_guard lock(mutex_);
    if (slots_->free.empty()) {
        if (slots_->all.size() >= maximumSlots) return nullptr;
        slots_->free.reserve(slots_->all.size() + 1);
        slots_->all.emplace_back();
        slots_->free.push_back(slots_->all.size() - 1);
    }
    const std::size_t index = slots_->free.back();
    slots_->free.pop_back();
    Slot& slot = slots_->all[index];
    slot.generation = (slot.generation + 1) & generationMask;
    slot.object = std::move(object);
    slot.object->stock_ = stock;
    if (!stock) ++slots_->living;
    const std::uintptr_t bits = (((slot.generation << indexBits) | (index + 1)) << tagBits) | tag;
    return reinterpret_cast<HANDLE>(bits);
}

HandleTable::Slot* HandleTable::slotOf(HANDLE handle) {
    const auto bits = reinterpret_cast<std::uintptr_t>(handle);
    const std::uintptr_t index = (bits >> tagBits) & indexMask;
    if ((bits & ((1U << tagBits) - 1)) != tag || index == 0 || index > slots_->all.size()) return nullptr;
    Slot& slot = slots_->all[index - 1];
    return slot.object && slot.generation == bits >> (tagBits + indexBits) ? &slot : nullptr;
}

std::shared_ptr<Object> HandleTable::findAny(HANDLE handle) {
    const std::lock_guard lock(mutex_);
    const Slot* slot = slotOf(handle);
    return slot != nullptr ? slot->object : nullptr;
}

std::shared_ptr<Object> HandleTable::release(Slot& slot) {
    --slots_->living;
    slots_->free.push_back(static_cast<std::size_t>(&slot - slots_->all.data()));  // reserved by add: cannot throw
    return std::exchange(slot.object, nullptr);
}

bool HandleTable::remove(HANDLE handle) {
    std::shared_ptr<Object> gone;  // destroyed after the lock is given back
    const std::lock_guard lock(mutex_);
    Slot* slot = slotOf(handle);
    if (slot == nullptr || slot->object->stock_) return false;
    gone = release(*slot);
    return true;
}

bool HandleTable::select(HANDLE handle) {
    const std::lock_guard lock(mutex_);
    Slot* slot = slotOf(handle);
    if (slot == nullptr) return false;
    ++slot->object->selections_;
    return true;
}

void HandleTable::deselect(HANDLE handle) {
    std::shared_ptr<Object> gone;
    const std::lock_guard lock(mutex_);
    Slot* slot = slotOf(handle);
    if (slot == nullptr) return;
    if (--slot->object->selections_ == 0 && slot->object->deletePending_) gone = release(*slot);
}

HandleTable::Deletion HandleTable::removeUnlessSelected(HANDLE handle) {
    std::shared_ptr<Object> gone;
    const std::lock_guard lock(mutex_);
    Slot* slot = slotOf(handle);
    if (slot == nullptr || slot->object->deletePending_) return Deletion::invalid;
    if (slot->object->stock_) return Deletion::ignored;
    if (slot->object->selections_ > 0) {
        slot->object->deletePending_ = true;
        return Deletion::deferred;
    }
    gone = release(*slot);
    return Deletion::done;
}

bool HandleTable::isSelected(HANDLE handle) {
    const std::lock_guard lock(mutex_);
    const Slot* slot = slotOf(handle);
    return slot != nullptr && slot->object->selections_ > 0;
}

unsigned int HandleTable::count() {
    const std::lock_guard lock(mutex_);
    return slots_->living;
}

}  // namespace zolgdi
