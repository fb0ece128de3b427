// Containers that are cut, changed, or claim what they do not hold: an error or a defined result
// each time, and memory in proportion to the data.
#include <gtest/gtest.h>

#include <random>

#include "bytes/crc32.h"
#include "bytes/little_endian.h"
#include "persist/memory_watch.h"
#include "persist/persist_support.h"

using namespace zo;
using namespace zo::test;

namespace {

// LZMA containers first; then both literal modes and check values, and all dictionaries.
std::vector<ByteVector> specimens() {
  const ByteVector content = sampleContent(500, 20);
  std::vector<ByteVector> all{lzmaContainer(content, 0), lzmaContainer(content, 5),
                              lzmaContainer(content, 9),
                              sourceFile("tests/data/lzma/mixed.container")};
  for (unsigned int n = 0; n < 6; ++n) {
    const ByteVector body = imploded(content, static_cast<Literals>(n % 2), 4 + n / 2);
    all.push_back(legacyContainer(body, content, n < 3 ? Check::raw : Check::standard));
  }
  return all;
}

// The promise of ZoExplode's header.
void expectPromised(const MemoryWatch& watch, std::size_t input, std::size_t decoded) {
  EXPECT_LE(watch.peak(), (128u << 10) + 16 * input + 3 * decoded);
}

void expectDefined(const ByteVector& container) {
  const Exploded exploded = explode(container);
  if (exploded.delivered) {
    const std::uint32_t check = load32(&container[container.size() - 4]);
    const std::uint32_t crc = crc32(exploded.bytes);
    const bool holds = crc == check || (container[0] != 0x5D && ~crc == check);
    EXPECT_EQ(exploded.result, holds ? 0 : 1000);
  }
  MemoryStore store(container);
  VectorSink sink;
  EXPECT_EQ(explodeStream(store, sink), exploded.result);
  EXPECT_TRUE(!exploded.delivered || sink.taken == exploded.bytes);
  MemoryWatch watch;
  Block block;
  std::size_t size = 0;
  EXPECT_EQ(explodeBuffer(container, block, size), exploded.result);
  expectPromised(watch, container.size(), sink.taken.size());
}

}  // namespace

TEST(Damage, MutationsGiveAnErrorOrADefinedResult) {
  std::mt19937 random(1000);
  const int count = mutationCount(800);
  for (const ByteVector& original : specimens()) {
    for (int i = 0; i < count && !HasFailure(); ++i) expectDefined(mutated(original, random));
  }
}

TEST(Damage, CutAtEveryLength) {
  for (const ByteVector& whole : specimens()) {
    for (std::size_t size = 0; size < whole.size() && !HasFailure(); ++size) {
      const ByteVector cut(whole.data(), whole.data() + size);
      expectDefined(cut);
      EXPECT_NE(explode(cut).result, 0) << size;
    }
  }
}

TEST(Damage, ClaimsTakeNoMemory) {
  const ByteVector content(3 << 20);
  ByteVector nothing(113, 0x11);
  nothing[0] = 0x5D;
  nothing[5] = 0;
  store32(&nothing[1], 0xFFFFFFFF);  // the dictionary
  for (ByteVector container : {lzmaContainer(content, 0), nothing,
                               legacyContainer(imploded(content, Literals::text, 6), content)}) {
    store32(&container[container.size() - 8], 0xFFFFFFFF);
    MemoryWatch watch;
    Block block;
    std::size_t size = 0;
    EXPECT_EQ(explodeBuffer(container, block, size), container[0] == 0x5D ? 1 : 0);
    expectPromised(watch, container.size(), container.size() == 113 ? 64u << 10 : content.size());
  }
}

// Here 64 KiB under content of a megabyte, so that the window begins anew many times. Noise that
// comes again after just as many bytes is copied over the whole dictionary.
TEST(Damage, StreamsNeedNoMoreThanTheDictionary) {
  std::mt19937 random(32);
  ByteVector content(3 << 16);
  for (std::size_t i = 0; i < content.size(); ++i)
    content[i] = i < 1 << 16 ? static_cast<unsigned char>(random()) : content[i - (1 << 16)];
  const ByteVector more = sampleContent(1 << 20, 31);
  content.insert(content.end(), more.begin(), more.end());
  ByteVector container;
  ASSERT_EQ(LzmaUtils::LzmaCompressData(container, content.data(), content.size(), 0, 1 << 16), 0);
  VectorSink sink;
  sink.taken.reserve(content.size());
  MemoryStore store(container);
  MemoryWatch watch;
  EXPECT_EQ(explodeStream(store, sink), 0);
  EXPECT_TRUE(sink.taken == content);
  EXPECT_LE(watch.peak(), 2u * (1 << 16) + 40000);
}
