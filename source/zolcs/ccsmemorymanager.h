#pragma once

#include "zolcs/ccsexport.h"

#include <cstddef>

/// The process-wide pool of look-up-table chunks. All members may be called from any thread.
///
/// Memory comes in blocks of 64 chunks. Where a block cannot be had, one of half as many chunks is tried once, and the
/// count stays halved for all later blocks until purgeChunks; a count below 5 is not halved.
class ZOLWEBCS_API CCsMemoryManager {
public:
    /// Bytes of a chunk: 65536 entries of 32 bits.
    static constexpr std::size_t chunkSize = 0x40000;

    CCsMemoryManager() = delete;

    /// A chunk of chunkSize bytes with undefined contents, or null when memory is exhausted. The chunk is counted, and
    /// the count traced through CCsError::debug, in both cases. Give it back with releaseChunk.
    static void* allocateChunk();

    /// Gives a chunk back to the pool, not to the system: it is the next one handed out. The count goes down and is
    /// traced, also for null, which pairs with an allocation that failed. Each chunk is given back once; one whose
    /// block was purged meanwhile is only counted.
    static void releaseChunk(void* chunk);

    /// Frees all blocks of the pool, chunks in use included; true if there were any. The count stays as it is.
    static bool purgeChunks();
};
