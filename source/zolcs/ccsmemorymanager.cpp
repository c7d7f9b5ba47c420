#include "zolcs/ccsmemorymanager.h"

#include <atomic>
#include <boost/pool/singleton_pool.hpp>
#include <cstdint>

#include "zolcs/support/report.h"

namespace {

constexpr const wchar_t* module = L"source\\zolcs\\ccsmemorymanager";
constexpr zolcs::ReportSite allocated{L"Total number of chunks in use during allocate ", module, 90};
constexpr zolcs::ReportSite released{L"Total number of chunks in use after release ", module, 109};

constexpr unsigned int chunksPerBlock = 64;

// Boost doubles the count after every block that it gets until it reaches this limit. With the smallest one it never
// does: every block holds as many chunks as the last, and a count that was halved while memory was short stays halved.
constexpr unsigned int growthLimit = 1;

struct ChunkPoolTag {};

// Blocks come from the non-throwing new; chunks that are given back are handed out again last in, first out.
using ChunkPool =
    boost::singleton_pool<ChunkPoolTag, CCsMemoryManager::chunkSize, boost::default_user_allocator_new_delete,
                          boost::details::pool::default_mutex, chunksPerBlock, growthLimit>;

std::atomic<std::uint32_t> chunksInUse{0};

void trace(const zolcs::ReportSite& site, std::uint32_t count) {
    CCsError::debug(site.message, count, site.module, site.line);
}

// Gives the pool's memory back when the library is unloaded.
struct PurgeAtUnload {
    PurgeAtUnload() = default;
    PurgeAtUnload(const PurgeAtUnload&) = delete;
    PurgeAtUnload& operator=(const PurgeAtUnload&) = delete;
    ~PurgeAtUnload() { CCsMemoryManager::purgeChunks(); }
};
const PurgeAtUnload purgeAtUnload;

}  // namespace

void* CCsMemoryManager::allocateChunk() {
    void* const chunk = ChunkPool::malloc();
    trace(allocated, ++chunksInUse);
    return chunk;
}

void CCsMemoryManager::releaseChunk(void* chunk) {
    // A chunk that came out null, or whose block was purged meanwhile, is only counted.
    if (ChunkPool::is_from(chunk)) ChunkPool::free(chunk);
    trace(released, --chunksInUse);
}

bool CCsMemoryManager::purgeChunks() { return ChunkPool::purge_memory(); }
