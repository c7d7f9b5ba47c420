#include "zolcs/mapping/storedtable.h"

#include "zolcs/ccsmemorymanager.h"

namespace zolcs::mapping {

MemorySources& memorySources() {
    static MemorySources sources = {&CCsMemoryManager::allocateChunk,
                                    [](std::size_t bytes) { return std::calloc(bytes, 1); }};
    return sources;
}

}  // namespace zolcs::mapping
