#include "core/blockpool.h"

#include <cstdint>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define QUILLON_POOL_PASSTHROUGH 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUILLON_POOL_PASSTHROUGH 1
#endif
#endif

namespace quillon {

#if defined(QUILLON_POOL_PASSTHROUGH)

void* AllocateSmallBlock(std::size_t size) { return ::operator new(size); }
void ReleaseSmallBlock(void* block, std::size_t) noexcept { ::operator delete(block); }
std::size_t SmallBlocksInUse() noexcept { return 0; }
std::size_t SmallBlockChunkBytes() noexcept { return 0; }
bool SmallBlockPoolActive() noexcept { return false; }

#else

namespace {

// Blocks are multiples of 16 bytes, so that every block keeps the alignment
// the global allocator gives.
constexpr std::size_t kGranule = 16;
constexpr std::size_t kClassCount = kLargestPooledBlock / kGranule;
// A chunk serves one block size and is aligned to its own size, so that the
// chunk of a block is found by masking the block's address. Big enough that
// chunks are few, small enough that one long-lived block holds little.
constexpr std::size_t kChunkBytes = kSmallBlockChunkBytes;

struct FreeBlock {
  FreeBlock* next;
};

struct alignas(kGranule) Chunk {
  Chunk* previous;  // in its size's list of chunks with room
  Chunk* next;
  FreeBlock* freeList;
  char* bump;
  char* end;
  std::uint32_t blocksInUse;
  std::uint32_t blockBytes;
  bool listed;
};

// Plain data, constant-initialised: the pool works before any constructor of
// the library has run and after the last destructor.
struct Pool {
  Chunk* withRoom[kClassCount];
  // One emptied chunk per size is kept, so that a loop that makes and drops
  // a single card does not get and give back a chunk each time.
  Chunk* spare[kClassCount];
  std::size_t blocksInUse;
  std::size_t chunkBytes;
};

Pool pool = {};

std::size_t ClassOf(std::size_t size) { return size == 0 ? 0 : (size - 1) / kGranule; }

void List(Chunk* chunk, std::size_t sizeClass) {
  chunk->previous = nullptr;
  chunk->next = pool.withRoom[sizeClass];
  if (chunk->next != nullptr) chunk->next->previous = chunk;
  pool.withRoom[sizeClass] = chunk;
  chunk->listed = true;
}

void Unlist(Chunk* chunk, std::size_t sizeClass) {
  if (chunk->previous != nullptr)
    chunk->previous->next = chunk->next;
  else
    pool.withRoom[sizeClass] = chunk->next;
  if (chunk->next != nullptr) chunk->next->previous = chunk->previous;
  chunk->previous = chunk->next = nullptr;
  chunk->listed = false;
}

void ResetChunk(Chunk* chunk, std::size_t sizeClass) {
  chunk->freeList = nullptr;
  chunk->bump = reinterpret_cast<char*>(chunk) + sizeof(Chunk);
  chunk->end = reinterpret_cast<char*>(chunk) + kChunkBytes;
  chunk->blocksInUse = 0;
  chunk->blockBytes = static_cast<std::uint32_t>((sizeClass + 1) * kGranule);
}

Chunk* NewChunk(std::size_t sizeClass) {
  Chunk* chunk = pool.spare[sizeClass];
  if (chunk != nullptr) {
    pool.spare[sizeClass] = nullptr;
  } else {
    chunk = static_cast<Chunk*>(std::aligned_alloc(kChunkBytes, kChunkBytes));
    if (chunk == nullptr) throw std::bad_alloc();
    pool.chunkBytes += kChunkBytes;
  }
  ResetChunk(chunk, sizeClass);
  List(chunk, sizeClass);
  return chunk;
}

bool HasRoom(const Chunk* chunk) {
  return chunk->freeList != nullptr || static_cast<std::size_t>(chunk->end - chunk->bump) >= chunk->blockBytes;
}

Chunk* ChunkOf(void* block) {
  return reinterpret_cast<Chunk*>(reinterpret_cast<std::uintptr_t>(block) & ~(std::uintptr_t{kChunkBytes} - 1));
}

}  // namespace

void* AllocateSmallBlock(std::size_t size) {
  if (size > kLargestPooledBlock) return ::operator new(size);
  const std::size_t sizeClass = ClassOf(size);
  Chunk* chunk = pool.withRoom[sizeClass];
  if (chunk == nullptr) chunk = NewChunk(sizeClass);
  void* block;
  if (chunk->freeList != nullptr) {
    block = chunk->freeList;
    chunk->freeList = chunk->freeList->next;
  } else {
    block = chunk->bump;
    chunk->bump += chunk->blockBytes;
  }
  ++chunk->blocksInUse;
  ++pool.blocksInUse;
  if (!HasRoom(chunk)) Unlist(chunk, sizeClass);
  return block;
}

void ReleaseSmallBlock(void* block, std::size_t size) noexcept {
  if (block == nullptr) return;
  if (size > kLargestPooledBlock) {
    ::operator delete(block);
    return;
  }
  const std::size_t sizeClass = ClassOf(size);
  Chunk* chunk = ChunkOf(block);
  FreeBlock* freed = static_cast<FreeBlock*>(block);
  freed->next = chunk->freeList;
  chunk->freeList = freed;
  --pool.blocksInUse;
  if (--chunk->blocksInUse == 0) {
    if (chunk->listed) Unlist(chunk, sizeClass);
    if (pool.spare[sizeClass] == nullptr) {
      pool.spare[sizeClass] = chunk;
    } else {
      std::free(chunk);
      pool.chunkBytes -= kChunkBytes;
    }
    return;
  }
  if (!chunk->listed) List(chunk, sizeClass);
}

std::size_t SmallBlocksInUse() noexcept { return pool.blocksInUse; }
std::size_t SmallBlockChunkBytes() noexcept { return pool.chunkBytes; }
bool SmallBlockPoolActive() noexcept { return true; }

#endif

}  // namespace quillon
