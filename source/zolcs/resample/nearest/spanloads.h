// Loading the source pixels of many display pixels by their offsets.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zolcs {

/// out[i] = table[source[offsets[i]]] for a table of 65536 entries.
void lookUpSpan(const std::uint16_t* source, const std::int32_t* offsets, int count, const std::uint32_t* table,
                std::uint32_t* out);

/// out[i] = source[offsets[i]].
void copySpan(const std::uint32_t* source, const std::int32_t* offsets, int count, std::uint32_t* out);

/// Prefetches the source pixels that lie `ahead` pixels behind those at `offsets`; they may lie beyond the source.
void prefetchSpan(const void* source, std::size_t pixelBytes, const std::int32_t* offsets, int count,
                  std::int64_t ahead);

}  // namespace zolcs
