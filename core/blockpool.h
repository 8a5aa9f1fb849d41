#pragma once

// Small blocks for the field values and cards that an import makes by the
// million. Each block size has chunks of its own; a block goes back to the
// free list of its chunk, and a chunk whose last block is back goes back to
// the system (one emptied chunk per size is kept for the next blocks). Giving
// back millions of blocks is then a walk over memory that was handed out in
// order, not millions of small blocks that the C library's allocator has to
// sort and merge.
//
// Like the rest of the card core, the pool serves one thread at a time.
// Builds with the address sanitizer pass every block to the global allocator,
// so that use after release and overruns are still caught there.

#include <cstddef>

#include "core/export.h"

namespace quillon {

// Blocks up to this size come from the pool; larger ones from the global allocator.
inline constexpr std::size_t kLargestPooledBlock = 128;
// The memory of the pool comes and goes in chunks of this size.
inline constexpr std::size_t kSmallBlockChunkBytes = 256 * 1024;

QUILLON_API void* AllocateSmallBlock(std::size_t size);
// `size` must be the size the block was asked with.
QUILLON_API void ReleaseSmallBlock(void* block, std::size_t size) noexcept;

// For tests and measurements: blocks handed out and not given back, and the
// bytes of chunk memory the pool holds (kept spare chunks included).
QUILLON_API std::size_t SmallBlocksInUse() noexcept;
QUILLON_API std::size_t SmallBlockChunkBytes() noexcept;
// False when every block goes to the global allocator (sanitizer builds).
QUILLON_API bool SmallBlockPoolActive() noexcept;

}  // namespace quillon
