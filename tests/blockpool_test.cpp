// The small-block pool behind values and cards: blocks are distinct, aligned
// and reused, a chunk goes back once its last block is back, and an import
// gives back every block it took when its driver is destroyed.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "core/blockpool.h"
#include "core/card.h"
#include "import/cardsetimport.h"
#include "import_test_support.h"

namespace {

using quillon::AllocateSmallBlock;
using quillon::ReleaseSmallBlock;
using quillon::SmallBlockChunkBytes;
using quillon::SmallBlocksInUse;

#define SKIP_WITHOUT_POOL()                                                                   \
  if (!quillon::SmallBlockPoolActive()) GTEST_SKIP() << "sanitizer build: blocks come from " \
                                                        "the global allocator"

struct Held {
  unsigned char* block;
  std::size_t size;
  unsigned char mark;
};

void Fill(const Held& held) { std::memset(held.block, held.mark, held.size); }

bool Intact(const Held& held) {
  for (std::size_t i = 0; i < held.size; ++i)
    if (held.block[i] != held.mark) return false;
  return true;
}

TEST(BlockPool, BlocksAreAlignedDistinctAndKeepTheirBytes) {
  std::vector<Held> blocks;
  for (std::size_t size = 1; size <= 200; ++size) {
    Held held{static_cast<unsigned char*>(AllocateSmallBlock(size)), size, static_cast<unsigned char>(size)};
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(held.block) % 16, 0u) << size;
    Fill(held);
    blocks.push_back(held);
  }
  for (const Held& held : blocks) EXPECT_TRUE(Intact(held)) << held.size;
  for (const Held& held : blocks) ReleaseSmallBlock(held.block, held.size);
}

TEST(BlockPool, CountsBlocksInUse) {
  SKIP_WITHOUT_POOL();
  const std::size_t before = SmallBlocksInUse();
  void* a = AllocateSmallBlock(24);
  void* b = AllocateSmallBlock(112);
  void* large = AllocateSmallBlock(quillon::kLargestPooledBlock + 1);
  EXPECT_EQ(SmallBlocksInUse(), before + 2);  // the large block is not the pool's
  ReleaseSmallBlock(a, 24);
  ReleaseSmallBlock(large, quillon::kLargestPooledBlock + 1);
  EXPECT_EQ(SmallBlocksInUse(), before + 1);
  ReleaseSmallBlock(b, 112);
  EXPECT_EQ(SmallBlocksInUse(), before);
}

TEST(BlockPool, AReleasedBlockIsHandedOutAgainForItsSize) {
  SKIP_WITHOUT_POOL();
  void* keep = AllocateSmallBlock(40);  // keeps the chunk in use
  void* first = AllocateSmallBlock(40);
  ReleaseSmallBlock(first, 40);
  void* again = AllocateSmallBlock(33);  // 33 to 48 bytes share one size
  EXPECT_EQ(again, first);
  ReleaseSmallBlock(again, 33);
  ReleaseSmallBlock(keep, 40);
}

TEST(BlockPool, ChunksGoBackWhenTheirBlocksAreBack) {
  SKIP_WITHOUT_POOL();
  const std::size_t chunkBytesBefore = SmallBlockChunkBytes();
  // Five chunks' worth of one size.
  const std::size_t count = 5 * quillon::kSmallBlockChunkBytes / 64;
  std::vector<void*> blocks;
  for (std::size_t i = 0; i < count; ++i) blocks.push_back(AllocateSmallBlock(64));
  EXPECT_GE(SmallBlockChunkBytes(), chunkBytesBefore + 4 * quillon::kSmallBlockChunkBytes);
  for (void* block : blocks) ReleaseSmallBlock(block, 64);
  // At most the one emptied chunk that is kept for the next blocks of this size.
  EXPECT_LE(SmallBlockChunkBytes(), chunkBytesBefore + quillon::kSmallBlockChunkBytes);
}

TEST(BlockPool, OneLongLivedBlockHoldsOnlyItsOwnChunk) {
  SKIP_WITHOUT_POOL();
  const std::size_t chunkBytesBefore = SmallBlockChunkBytes();
  const std::size_t count = 6 * quillon::kSmallBlockChunkBytes / 96;
  std::vector<void*> blocks;
  for (std::size_t i = 0; i < count; ++i) blocks.push_back(AllocateSmallBlock(96));
  void* survivor = blocks[count / 2];
  for (void* block : blocks)
    if (block != survivor) ReleaseSmallBlock(block, 96);
  EXPECT_LE(SmallBlockChunkBytes(), chunkBytesBefore + 2 * quillon::kSmallBlockChunkBytes);
  ReleaseSmallBlock(survivor, 96);
}

TEST(BlockPool, ReleaseInAnyOrderKeepsEveryOtherBlockWhole) {
  std::mt19937 random(20261121);
  std::uniform_int_distribution<std::size_t> sizes(1, 160);
  std::vector<Held> live;
  for (int round = 0; round < 20; ++round) {
    for (int i = 0; i < 5000; ++i) {
      Held held{nullptr, sizes(random), static_cast<unsigned char>(random())};
      held.block = static_cast<unsigned char*>(AllocateSmallBlock(held.size));
      Fill(held);
      live.push_back(held);
    }
    std::shuffle(live.begin(), live.end(), random);
    const std::size_t keep = live.size() / 3;
    for (std::size_t i = keep; i < live.size(); ++i) ReleaseSmallBlock(live[i].block, live[i].size);
    live.resize(keep);
    for (const Held& held : live) ASSERT_TRUE(Intact(held)) << "round " << round;
  }
  for (const Held& held : live) ReleaseSmallBlock(held.block, held.size);
}

TEST(BlockPool, ValuesAndCardsComeFromThePoolAndGoBack) {
  SKIP_WITHOUT_POOL();
  const std::size_t before = SmallBlocksInUse();
  Card* card = new Card("TEST");
  double value = 7800.;
  card->addField("RHO", new Double(value, 10));
  card->addField("NAME", new CharArray("steel", 10));
  EXPECT_EQ(SmallBlocksInUse(), before + 3);
  delete card;  // through the virtual destructor: each block with its own size
  EXPECT_EQ(SmallBlocksInUse(), before);
}

TEST(BlockPool, ADestroyedDriverGivesBackEveryBlockItsImportTook) {
  SKIP_WITHOUT_POOL();
  const std::size_t before = SmallBlocksInUse();
  std::size_t during = 0;
  {
    CardsetImport driver(importtest::CorpusPath("stainless_steels.mat").c_str(),
                         (importtest::ScratchDir() + "/blockpool-none.xml").c_str());
    void* document = nullptr;
    std::string message;
    ASSERT_GT(driver.ImportMaterialList(&document, message, false), 1);
    during = SmallBlocksInUse();
  }
  EXPECT_GT(during, before + 400);  // the sections' cards (473 blocks)
  EXPECT_EQ(SmallBlocksInUse(), before);
}

}  // namespace
