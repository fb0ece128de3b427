// Containers that are cut, changed, or claim what they do not hold: an error or a defined result
// each time, and memory in proportion to the data.
#include <gtest/gtest.h>

#include <random>

#include "persist/crc32.h"
#include "persist/little_endian.h"
#include "persist/memory_watch.h"
#include "persist/persist_support.h"

using namespace zo;
using namespace zo::test;

namespace {

constexpr int kKinds = 10;
constexpr int kLzmaKinds = 4;

ByteVector specimen(int kind) {
  const ByteVector content = sampleContent(300 + 40 * static_cast<std::size_t>(kind), 20 + kind);
  switch (kind) {
    case 0:
      return lzmaContainer(content, 0);
    case 1:
      return lzmaContainer(content, 5);
    case 2:
      return lzmaContainer(content, 9);
    case 3:
      return sourceFile("tests/data/lzma/mixed.container");
    default: {
      const int n = kind - kLzmaKinds;  // both literal modes, all dictionaries
      return legacyContainer(imploded(content, static_cast<Literals>(n % 2), 4 + n / 2u), content,
                             n < 3 ? Check::raw : Check::standard);
    }
  }
}

// The promise of ZoExplode's header.
std::size_t promised(std::size_t input, std::size_t decoded) {
  return (128u << 10) + 16 * input + 3 * decoded;
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
  EXPECT_LE(watch.peak(), promised(container.size(), sink.taken.size()));
}

}  // namespace

class Mutations : public testing::TestWithParam<int> {};

TEST_P(Mutations, GiveAnErrorOrADefinedResult) {
  const ByteVector original = specimen(GetParam());
  std::mt19937 random(static_cast<unsigned int>(GetParam()) + 1000);
  const int count = mutationCount(GetParam() < kLzmaKinds ? 500 : 1000);
  for (int i = 0; i < count && !HasFailure(); ++i) {
    expectDefined(mutated(original, random));
  }
}

INSTANTIATE_TEST_SUITE_P(Containers, Mutations, testing::Range(0, kKinds));

TEST(Damage, CutAtEveryLength) {
  for (int kind = 0; kind < kKinds; ++kind) {
    const ByteVector whole = specimen(kind);
    for (std::size_t size = 0; size < whole.size(); ++size) {
      const ByteVector cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
      expectDefined(cut);
      EXPECT_NE(explode(cut).result, 0) << "kind " << kind << ", size " << size;
    }
  }
}

// Every first byte, with what may pass for a stream, a header or a trailer behind it.
TEST(Damage, ShortInputsAndForeignFirstBytes) {
  for (unsigned int first = 0; first < 256; ++first) {
    for (unsigned int filling : {0x00u, 0x05u, 0x5Du, 0xFFu}) {
      for (std::size_t size = 1; size <= 18; ++size) {
        ByteVector bytes(size, static_cast<unsigned char>(filling));
        bytes[0] = static_cast<unsigned char>(first);
        const Exploded exploded = explode(bytes);
        EXPECT_EQ(explodeStreamed(bytes), exploded);
        const std::size_t least = first == 0x5D ? 18 : 10;
        const bool hopeless = size < least || (first > 1 && first != 0x5D);
        EXPECT_TRUE(!hopeless || exploded.result == 1) << first << ' ' << size;
      }
    }
  }
}

TEST(Damage, ClaimsTakeNoMemory) {
  for (std::size_t streamSize : {0u, 5u, 7u, 100u}) {
    for (unsigned int filling : {0x00u, 0x11u, 0xFFu}) {
      ByteVector bytes(13 + streamSize, static_cast<unsigned char>(filling));
      bytes[0] = 0x5D;
      bytes[5] = 0;
      store32(&bytes[1], 0xFFFFFFFF);
      store32(&bytes[bytes.size() - 8], 0xFFFFFFFF);
      MemoryWatch watch;
      MemoryStore store(bytes);
      VectorSink sink;
      static_cast<void>(explodeStream(store, sink));
      Block block;
      std::size_t size = 0;
      EXPECT_EQ(explodeBuffer(bytes, block, size), 1);
      // What a stream of these bytes stands for is less than this.
      EXPECT_LE(watch.peak(), promised(bytes.size(), 64u << 10)) << streamSize;
    }
  }
}

TEST(Damage, MemoryStaysInProportionToWhatWasDecoded) {
  const ByteVector zeros(3 << 20);
  const ByteVector words = sampleContent(1 << 20, 30);
  for (const ByteVector* content : {&zeros, &words}) {
    for (ByteVector container :
         {lzmaContainer(*content, 0),
          legacyContainer(imploded(*content, Literals::text, 6), *content)}) {
      for (int claimed : {0, 1}) {
        if (claimed) store32(&container[container.size() - 8], 0xFFFFFFFF);
        MemoryWatch watch;
        {
          Block block;
          std::size_t size = 0;
          static_cast<void>(explodeBuffer(container, block, size));
        }
        EXPECT_LE(watch.peak(), promised(container.size(), content->size()));
      }
    }
  }
}

// A stream's memory is bounded by the dictionary; here 64 KiB, under content of a megabyte, so that
// the window also begins anew many times. Noise that comes again after just as many bytes is copied
// over the whole dictionary.
TEST(Damage, StreamsNeedNoMoreThanTheDictionary) {
  std::mt19937 random(32);
  ByteVector noise(1 << 16);
  for (unsigned char& byte : noise) byte = static_cast<unsigned char>(random());
  ByteVector content;
  for (int i = 0; i < 3; ++i) content.insert(content.end(), noise.begin(), noise.end());
  const ByteVector more = sampleContent(1 << 20, 31);
  content.insert(content.end(), more.begin(), more.end());
  ByteVector container;
  ASSERT_EQ(LzmaUtils::LzmaCompressData(container, content.data(), content.size(), 0, 1 << 16), 0);
  class CountingSink final : public ByteSink {
   public:
    bool write(Bytes bytes) noexcept override {
      crc = crc32Update(crc, bytes);
      return true;
    }
    std::uint32_t crc = kCrcStart;
  };
  CountingSink sink;
  MemoryStore store(container);
  MemoryWatch watch;
  EXPECT_EQ(explodeStream(store, sink), 0);
  EXPECT_EQ(~sink.crc, crc32(content));
  EXPECT_LE(watch.peak(), 2u * (1 << 16) + 40000);
}
