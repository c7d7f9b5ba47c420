#include "zolmemmap/zolmemmap.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace {

// Pixels start at a multiple of this, whatever the guard's size, so that rows can be read a vector at a time.
constexpr std::size_t alignment = 64;

struct Sizes {
    std::size_t charged = 0;    // pixels and both guards
    std::size_t allocated = 0;  // with room for alignment
};

// False when the sum of all parts does not fit.
bool addUp(std::size_t bytes, std::size_t guard, Sizes& sizes) {
    constexpr std::size_t most = static_cast<std::size_t>(-1) - alignment;
    if (bytes > most || guard > (most - bytes) / 2) return false;
    sizes.charged = bytes + 2 * guard;
    sizes.allocated = sizes.charged + alignment;
    return true;
}

unsigned char* alignedAfter(unsigned char* base, std::size_t guard) {
    const std::uintptr_t first = reinterpret_cast<std::uintptr_t>(base) + guard;
    return base + guard + ((alignment - first % alignment) % alignment);
}

HANDLE createMapping(std::size_t bytes) {
    const std::uint64_t wide = bytes;
    return CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, static_cast<DWORD>(wide >> 32U),
                              static_cast<DWORD>(wide & 0xFFFFFFFFU), nullptr);
}

}  // namespace

ZolMemMappedBuffer::~ZolMemMappedBuffer() { release(); }

unsigned char* ZolMemMappedBuffer::lock() {
    ++lockCount_;
    return data_;
}

void ZolMemMappedBuffer::unlock(int /*first*/, int /*second*/) { --lockCount_; }

void ZolMemMappedBuffer::setHeapBuffer(unsigned char* memory) {
    release();
    data_ = memory;
}

void ZolMemMappedBuffer::Memcpy(unsigned long destinationOffset, ZolMemMappedBuffer* source, unsigned long byteCount) {
    if (source == nullptr || data_ == nullptr || source->data_ == nullptr || destinationOffset >= size_) return;
    const std::size_t room = std::min<std::size_t>(size_ - destinationOffset, source->size_);
    std::memmove(data_ + destinationOffset, source->data_, std::min<std::size_t>(byteCount, room));
}

bool ZolMemMappedBuffer::allocateHeap(std::size_t allocated, std::size_t guard) {
    base_ = static_cast<unsigned char*>(std::calloc(allocated, 1));
    if (base_ == nullptr) return false;
    data_ = alignedAfter(base_, guard);
    return true;
}

bool ZolMemMappedBuffer::allocateMapping(std::size_t allocated, std::size_t guard) {
    mapping_ = createMapping(allocated);
    if (mapping_ == nullptr) return false;
    base_ = static_cast<unsigned char*>(MapViewOfFile(mapping_, FILE_MAP_ALL_ACCESS, 0, 0, 0));
    if (base_ == nullptr) return false;
    data_ = alignedAfter(base_, guard);
    return true;
}

void ZolMemMappedBuffer::release() {
    if (mapping_ == nullptr) {
        std::free(base_);
    } else {
        if (base_ != nullptr) UnmapViewOfFile(base_);
        CloseHandle(mapping_);
    }
    ZolMemMappedManager::getIntance()->refund(charged_);
    mapping_ = nullptr;
    base_ = nullptr;
    data_ = nullptr;
    charged_ = 0;
}

ZolMemMappedManager* ZolMemMappedManager::getIntance() {
    // Never destroyed: images that outlive the library's static objects still give their memory back.
    static auto* const instance = new ZolMemMappedManager;
    return instance;
}

ZolMemMappedBuffer* ZolMemMappedManager::allocateMapMemory(unsigned int bytes, unsigned long guardBytes, bool mapped,
                                                           bool /*reserved*/) {
    return allocate(bytes, guardBytes, mapped ? Kind::mapping : Kind::heap);
}

ZolMemMappedBuffer* ZolMemMappedManager::allocateMemoryOnlyOnMap(unsigned int bytes) {
    return allocate(bytes, 0, useMappings_ ? Kind::mapping : Kind::none);
}

ZolMemMappedBuffer* ZolMemMappedManager::allocate(std::size_t bytes, std::size_t guard, Kind kind) {
    Sizes sizes;
    if (!addUp(bytes, guard, sizes)) return nullptr;
    std::unique_ptr<ZolMemMappedBuffer> buffer(new (std::nothrow) ZolMemMappedBuffer);
    if (buffer == nullptr) return nullptr;
    buffer->size_ = bytes;
    if (kind == Kind::none) return buffer.release();
    if (!charge(sizes.charged)) return nullptr;
    buffer->charged_ = sizes.charged;
    const bool done = kind == Kind::mapping ? buffer->allocateMapping(sizes.allocated, guard)
                                            : buffer->allocateHeap(sizes.allocated, guard);
    return done ? buffer.release() : nullptr;
}

bool ZolMemMappedManager::charge(std::size_t bytes) {
    std::size_t used = bytesInUse_;
    do {
        const std::size_t limit = limit_;
        if (used > limit || bytes > limit - used) return false;
    } while (!bytesInUse_.compare_exchange_weak(used, used + bytes));
    return true;
}

void ZolMemMappedManager::refund(std::size_t bytes) { bytesInUse_ -= bytes; }
