// The copy of a look-up table that a host hands to a value map, and where the maps take their memory from.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <utility>

namespace zolcs::mapping {

/// Sources of memory of the value maps. Each gives null when memory is exhausted. Tests put failing ones in their
/// place; nobody may do so while a map is in use.
struct MemorySources {
    /// A chunk as CCsMemoryManager::allocateChunk gives it, returned through CCsMemoryManager::releaseChunk.
    void* (*allocateChunk)();
    /// That many zero bytes, returned through std::free.
    void* (*allocateTable)(std::size_t bytes);
};

/// The sources in use.
MemorySources& memorySources();

struct FreeTable {
    void operator()(void* memory) const { std::free(memory); }
};

template <typename Entry>
using TableMemory = std::unique_ptr<Entry[], FreeTable>;

/// That many entries, all zero; null when memory is exhausted.
template <typename Entry>
TableMemory<Entry> allocateTable(std::size_t entries) {
    if (entries > std::numeric_limits<std::size_t>::max() / sizeof(Entry)) return nullptr;
    return TableMemory<Entry>(static_cast<Entry*>(memorySources().allocateTable(entries * sizeof(Entry))));
}

/// A table of `count` values and one more that repeats the last, so that interpolation has a right neighbour
/// everywhere. An index beyond what is stored takes the last entry.
class StoredTable {
public:
    /// Replaces the contents by a copy of `count` values. A count below 1 stores a single entry 0 and reads nothing.
    /// False when memory is exhausted; the table is empty then.
    bool assign(const std::uint16_t* values, std::uint32_t firstMapped, std::int32_t count) {
        // The values may be this table's own: what it held stays alive until they are copied.
        const TableMemory<std::uint16_t> previous = std::move(entries_);
        *this = StoredTable();
        const std::uint32_t stored = count < 1 ? 0U : static_cast<std::uint32_t>(count);
        entries_ = allocateTable<std::uint16_t>(std::size_t{stored} + 1);
        if (entries_ == nullptr) return false;
        std::copy_n(values, stored, entries_.get());
        if (stored > 0) entries_[stored] = entries_[stored - 1];
        count_ = stored;
        firstMapped_ = firstMapped;
        maximum_ = *std::max_element(entries_.get(), entries_.get() + stored + 1);
        return true;
    }

    /// Replaces the contents by those of another table. False when memory is exhausted; the table is empty then.
    bool copy(const StoredTable& other) {
        if (other.missing()) {
            *this = StoredTable();
            return true;
        }
        return assign(other.entries_.get(), other.firstMapped_, static_cast<std::int32_t>(other.count_));
    }

    /// No table was given, or there was no memory for it.
    [[nodiscard]] bool missing() const { return entries_ == nullptr; }
    /// All entries, the repeated one included; null while missing.
    [[nodiscard]] std::uint16_t* data() const { return entries_.get(); }
    /// Values given; 0 while missing and for a table that was given without values.
    [[nodiscard]] std::uint32_t count() const { return count_; }
    /// First stored value that the table describes.
    [[nodiscard]] std::uint32_t firstMapped() const { return firstMapped_; }
    [[nodiscard]] std::uint16_t maximum() const { return maximum_; }

    /// Not for a missing table.
    [[nodiscard]] std::uint16_t at(std::uint64_t index) const {
        return entries_[static_cast<std::size_t>(std::min<std::uint64_t>(index, count_))];
    }
    [[nodiscard]] std::uint16_t first() const { return at(0); }
    [[nodiscard]] std::uint16_t last() const { return at(count_); }

private:
    TableMemory<std::uint16_t> entries_;
    std::uint32_t count_ = 0;
    std::uint32_t firstMapped_ = 0;
    std::uint16_t maximum_ = 0;
};

}  // namespace zolcs::mapping
