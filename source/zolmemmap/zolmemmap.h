// The host's pixel memory: zeroed buffers on shared file mappings or on the heap.
#pragma once

#include "platform/platform.h"

#include <atomic>
#include <cstddef>

#if defined(ZOLMEMMAP_BUILDING)
#define ZOLMEMMAP_API ZOL_EXPORT
#else
#define ZOLMEMMAP_API ZOL_IMPORT
#endif

class ZolMemMappedManager;

/// One block of pixel memory. ZolMemMappedManager makes it; whoever asked for it owns and destroys it.
class ZOLMEMMAP_API ZolMemMappedBuffer {
public:
    virtual ~ZolMemMappedBuffer();

    /// Makes the memory accessible and returns the address of its first byte; null while a buffer without a mapping has
    /// no memory yet (see setHeapBuffer).
    virtual unsigned char* lock();

    /// Ends an access. The address stays valid for the buffer's life. The arguments have no effect.
    virtual void unlock(int first, int second);

    ZolMemMappedBuffer(const ZolMemMappedBuffer&) = delete;
    ZolMemMappedBuffer& operator=(const ZolMemMappedBuffer&) = delete;

    /// The file mapping that a DIB section can be created on, or null when the buffer is plain memory.
    [[nodiscard]] HANDLE getMapHandle() const { return mapping_; }

    /// Makes the buffer refer to memory of another owner, who keeps it for the buffer's life: at least getSize() bytes
    /// from `memory` on, without guards. Releases the buffer's own memory, mappings included, first.
    void setHeapBuffer(unsigned char* memory);

    /// Copies byteCount bytes from the start of `source` to destinationOffset in this buffer, clipped to both sizes.
    /// Does nothing for a null source or where either buffer has no memory.
    void Memcpy(unsigned long destinationOffset, ZolMemMappedBuffer* source, unsigned long byteCount);

    /// Bytes that were asked for, without guards.
    [[nodiscard]] std::size_t getSize() const { return size_; }

    /// Number of locks minus number of unlocks.
    [[nodiscard]] int getLockCount() const { return lockCount_; }

private:
    friend class ZolMemMappedManager;
    ZolMemMappedBuffer() = default;
    bool allocateHeap(std::size_t allocated, std::size_t guard);
    bool allocateMapping(std::size_t allocated, std::size_t guard);
    void release();

    unsigned char* data_ = nullptr;  // first pixel byte
    unsigned char* base_ = nullptr;  // what was allocated or mapped; null when the memory is not ours
    HANDLE mapping_ = nullptr;
    std::size_t size_ = 0;
    std::size_t charged_ = 0;  // bytes counted against the manager's limit
    int lockCount_ = 0;
};

/// The process-wide source of pixel memory. All members may be called from any thread.
class ZOLMEMMAP_API ZolMemMappedManager {
public:
    static ZolMemMappedManager* getIntance();

    /// Returns a zeroed buffer of `bytes` with at least `guardBytes` more before and after it, which can be read and
    /// written; on a file mapping when `mapped` is set, else on the heap. The first byte lies at a multiple of 64. The
    /// caller owns the buffer. Null when the sizes overflow, the limit is reached, memory is exhausted or the mapping
    /// cannot be made (the heap does not replace a mapping: whoever asks for one means to share it). `reserved` has no
    /// effect.
    ZolMemMappedBuffer* allocateMapMemory(unsigned int bytes, unsigned long guardBytes, bool mapped, bool reserved);

    /// Returns a zeroed buffer of `bytes` on a file mapping for a DIB section, without guards, which the caller owns.
    /// With mappings switched off the buffer has no memory and a null map handle until setHeapBuffer. Null on failure.
    ZolMemMappedBuffer* allocateMemoryOnlyOnMap(unsigned int bytes);

    /// Sets whether allocateMemoryOnlyOnMap makes file mappings (initially true).
    void setUseMappings(bool on) { useMappings_ = on; }

    /// Sets the upper limit of getBytesInUse(); an allocation that would exceed it fails. Initially there is no limit.
    void setLimit(std::size_t bytes) { limit_ = bytes; }

    /// Bytes of own memory of all existing buffers, guards included.
    [[nodiscard]] std::size_t getBytesInUse() const { return bytesInUse_; }

    ZolMemMappedManager(const ZolMemMappedManager&) = delete;
    ZolMemMappedManager& operator=(const ZolMemMappedManager&) = delete;

private:
    friend class ZolMemMappedBuffer;
    enum class Kind { none, heap, mapping };

    ZolMemMappedManager() = default;
    ZolMemMappedBuffer* allocate(std::size_t bytes, std::size_t guard, Kind kind);
    bool charge(std::size_t bytes);
    void refund(std::size_t bytes);

    std::atomic<bool> useMappings_{true};
    std::atomic<std::size_t> limit_{static_cast<std::size_t>(-1)};
    std::atomic<std::size_t> bytesInUse_{0};
};
