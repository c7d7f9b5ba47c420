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

/// One block of pixel memory. Made by ZolMemMappedManager and destroyed by whoever asked for it.
class ZOLMEMMAP_API ZolMemMappedBuffer {
public:
    virtual ~ZolMemMappedBuffer();

    /// Makes the memory accessible and returns the address of its first byte
    /// (null while a buffer without a mapping has no memory yet, see setHeapBuffer).
    virtual unsigned char* lock();

    /// Ends an access. The address stays good for the buffer's life; the arguments are accepted for the host's sake.
    virtual void unlock(int first, int second);

    ZolMemMappedBuffer(const ZolMemMappedBuffer&) = delete;
    ZolMemMappedBuffer& operator=(const ZolMemMappedBuffer&) = delete;

    /// The file mapping that a DIB section can be created on, or null when the buffer is plain memory.
    [[nodiscard]] HANDLE getMapHandle() const { return mapping_; }

    /// Lets the buffer stand for memory that somebody else owns and keeps for the buffer's life: at least getSize()
    /// bytes from `memory` on, without guards. Memory of its own, a mapping included, is released first.
    void setHeapBuffer(unsigned char* memory);

    /// Copies byteCount bytes from the start of source to destinationOffset here; clipped to both sizes. Nothing
    /// happens for a null source or where either has no memory.
    void Memcpy(unsigned long destinationOffset, ZolMemMappedBuffer* source, unsigned long byteCount);

    /// Bytes asked for, guards not included.
    [[nodiscard]] std::size_t getSize() const { return size_; }

    /// Locks less unlocks so far.
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

    /// A zeroed buffer of `bytes` with at least `guardBytes` more before and after it, which may be read and written;
    /// on a file mapping when `mapped` is set, on the heap otherwise. The first byte lies at a multiple of 64. Null
    /// when the sizes overflow, the limit is reached, memory is exhausted or the mapping cannot be made (there is no
    /// falling back to the heap: who asks for a mapping means to share it). `reserved` is not interpreted.
    ZolMemMappedBuffer* allocateMapMemory(unsigned int bytes, unsigned long guardBytes, bool mapped, bool reserved);

    /// A zeroed buffer of `bytes` on a file mapping for a DIB section, without guards. With mappings switched off it
    /// has no memory yet and a null map handle, and waits for setHeapBuffer. Null on failure.
    ZolMemMappedBuffer* allocateMemoryOnlyOnMap(unsigned int bytes);

    /// Whether allocateMemoryOnlyOnMap makes file mappings (the default).
    void setUseMappings(bool on) { useMappings_ = on; }

    /// Upper bound of getBytesInUse(); an allocation that would pass it fails. No limit by default.
    void setLimit(std::size_t bytes) { limit_ = bytes; }

    /// Bytes of all living buffers' own memory, guards included.
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
