#pragma once

#include "zolcs/ccsexport.h"

#include <cstddef>

/// The process-wide pool of look-up-table chunks. All members may be called from any thread.
///
/// The pool allocates memory in blocks of 64 chunks. When a block cannot be allocated, it tries once with half as many
/// chunks, and the count stays halved for all later blocks until purgeChunks. A count below 5 is not halved.
class ZOLWEBCS_API CCsMemoryManager {
public:
    /// Bytes of a chunk: 65536 entries of 32 bits.
    static constexpr std::size_t chunkSize = 0x40000;

    CCsMemoryManager() = delete;

    /// Returns a chunk of chunkSize bytes with undefined contents, or null when memory is exhausted. In both cases the
    /// chunk is counted and the count is traced through CCsError::debug. Return it with releaseChunk.
    static void* allocateChunk();

    /// Returns a chunk to the pool, not to the system: it is the next one that allocateChunk returns. The count goes
    /// down and is traced, also for null, which pairs with an allocation that failed. Release each chunk once; a chunk
    /// whose block was purged meanwhile is only counted.
    static void releaseChunk(void* chunk);

    /// Frees all blocks of the pool, chunks in use included. Returns true if there were any. The count does not change.
    static bool purgeChunks();
};
