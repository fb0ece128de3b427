// Containers in memory: ZoCompress, ZoExplode, LzmaUtils.
#include <gtest/gtest.h>
#include <zo/compress.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "bytes/little_endian.h"
#include "persist/memory_watch.h"
#include "persist/persist_support.h"
#include "persist/sdk_memory.h"
#include "support/failing_memory.h"

using namespace zo;
using namespace zo::test;

namespace {

Exploded delivered(const ByteVector& bytes, int result = 0) { return {result, true, bytes}; }
const Exploded kRefused{1, false, {}};

// From memory and from a stream.
void expectExploded(const ByteVector& container, const Exploded& expected) {
  EXPECT_EQ(explode(container), expected);
  EXPECT_EQ(explodeStreamed(container), expected);
}

}  // namespace

TEST(Compress, ModesSelectLevelsAndTheTextEndsAtItsZero) {
  ByteVector text = sampleContent(3000, 1);
  text.back() = 0;
  const auto zero = std::find(text.begin(), text.end(), 0);
  const ByteVector untilZero(text.begin(), zero);
  for (const auto& [mode, level] :
       {std::pair(0x400, 0), {0x800, 5}, {0x1000, 9}, {0, 5}, {9, 5}, {0x401, 5}}) {
    ZoCompress compress(ZoZip::best);
    EXPECT_EQ(compress.setMode(static_cast<ZoZip::compressMode>(mode)), 0);
    EXPECT_EQ(compress.compressFast(), mode == 0x400);
    char* out = nullptr;
    unsigned int size = 0;
    ASSERT_EQ(compress(reinterpret_cast<const char*>(text.data()), out, size), 0);
    EXPECT_TRUE(ByteVector(out, out + size) == lzmaContainer(untilZero, level)) << mode;
    EXPECT_EQ(out[size], 0);
    std::free(out);
  }
}

TEST(Compress, EveryLevelAndSizeComesBack) {
  ReusedMemory memory;
  for (int level : {-1, 0, 1, 5, 9}) {
    for (std::size_t size : {0, 300'000, 1, 2, 4096, 70'000}) {
      SCOPED_TRACE(testing::Message() << level << ' ' << size);
      const ByteVector content = sampleContent(size, 4);
      ByteVector container;
      {
        MemoryWatch watch;
        container = lzmaContainer(content, level);
        EXPECT_LE(watch.peak(), (2u << 20) + 16 * size) << "a level's own dictionary takes more";
      }
      EXPECT_LT(load32(&container[1]), std::max<std::size_t>(4097, 2 * size));
      expectExploded(container, delivered(content));
      ByteVector back(3);
      EXPECT_EQ(LzmaUtils::LzmaUncompressData(back, container.data(), container.size()), 0);
      EXPECT_TRUE(back == content);
      // A stream gives the same container, whatever its pieces and whose memory the encoder had
      // before. One of another size than it was said to have is refused.
      for (const std::size_t said : {size, size + 1, size - (size > 0)}) {
        PiecedSource source(content, 1000);
        VectorSink sink;
        const int status = compressStream(source, said, level, sink, &memory);
        EXPECT_EQ(status == 0, said == size);
        EXPECT_TRUE(status != 0 || sink.taken == container);
      }
    }
  }
}

TEST(Compress, TheExampleOfTheFormatsDocumentIsWhatIsWritten) {
  const ByteVector container{0x5D, 0,    16,   0,    0,    0,    0x26, 0x8E, 0x0B, 3,
                             0x21, 0x8C, 0x2A, 0x62, 0x34, 0xC1, 0x66, 0x53, 0xEA, 0xD2,
                             0xD8, 0x18, 17,   0,    0,    0,    0x9F, 0x93, 0x29, 0x7B};
  EXPECT_EQ(lzmaContainer(explode(container).bytes, 5), container);
}

TEST(Compress, WhatCannotBeIsRefusedWithoutOutput) {
  char* text = reinterpret_cast<char*>(8);
  unsigned int size = 8;
  EXPECT_EQ(ZoCompress(ZoZip::fast)(nullptr, text, size), 1);
  EXPECT_TRUE(!text && size == 0);
  text = reinterpret_cast<char*>(8);
  EXPECT_EQ(ZoExplode()(nullptr, 100, text), 1);
  EXPECT_EQ(text, nullptr);
  ByteVector out(5);
  EXPECT_EQ(LzmaUtils::LzmaCompressData(out, nullptr, 1, 5, 0), LzmaUtils::badParameter);
  EXPECT_EQ(LzmaUtils::LzmaCompressData(out, "x", 1ull << 32, 5, 0), LzmaUtils::badParameter);
  EXPECT_EQ(LzmaUtils::LzmaUncompressData(out, "x", 1ull << 32), LzmaUtils::badParameter);
  EXPECT_EQ(LzmaUtils::LzmaUncompressData(out, nullptr, 0), LzmaUtils::inputEnded);
  EXPECT_EQ(LzmaUtils::LzmaUncompressData(out, "\x5C____________", 13), LzmaUtils::unsupported);
  EXPECT_TRUE(out.empty());
}

TEST(Compress, LackOfMemoryIsRefusedWithoutOutput) {
  const ByteVector content = sampleContent(200000, 6);
  using Text = std::unique_ptr<char, decltype(&std::free)>;
  const auto none = [] { return Text(nullptr, &std::free); };
  const auto isThere = [](const Text& text, bool done) { EXPECT_EQ(text != nullptr, done); };
  // Gives the text over, and the result of an operation that makes it.
  const auto into = [](Text& text, auto operation) {
    char* out = reinterpret_cast<char*>(8);
    unsigned int size = 8;
    const int result = operation(out, size);
    text.reset(out);
    return result;
  };
  failEveryRequest(
      "compress", none,
      [&](Text& text) {
        return into(text, [](char*& out, unsigned int& size) {
          return ZoCompress(ZoZip::fast)("some text", out, size);
        });
      },
      isThere);
  const ByteVector legacy = legacyContainer(imploded(content, Literals::text, 6), content);
  ByteVector growing = legacy;  // whose output is larger than it says
  store32(&growing[growing.size() - 8], 1);
  for (const ByteVector& container : {lzmaContainer(content, 5), legacy, growing}) {
    failEveryRequest(
        "explode", none,
        [&](Text& text) {
          return into(text, [&](char*& out, unsigned int& size) {
            return ZoExplode()(reinterpret_cast<const char*>(container.data()),
                               static_cast<unsigned int>(container.size()), out, size);
          });
        },
        isThere);
  }
}

TEST(Explode, ReadsContainersOfOtherEncoders) {
  for (const std::string file :
       {"lzma/text.container", "lzma/mixed.container", "lzma/empty.container",
        "implode/aiaia.raw.legacy", "implode/aiaia.std.legacy",
        "implode/empty.node.bin4096.raw.legacy", "implode/hand_run518_x40.raw.legacy",
        "implode/one.pk.bin1024.raw.legacy", "implode/repeat518.pk.asc4096.std.legacy",
        "implode/repeat518.pk.bin1024.raw.legacy"}) {
    SCOPED_TRACE(file);
    expectExploded(sourceFile("tests/data/" + file),
                   delivered(sourceFile("tests/data/" + file.substr(0, file.find('.')) + ".orig")));
  }
}

// The size limits what an LZMA container delivers, and decides nothing in a legacy one; a wrong
// check value still delivers; a legacy body may lack its end code when the check value holds.
TEST(Explode, WhatSizeCheckValueAndEndCodeDecide) {
  const ByteVector content = sampleContent(2000, 9);
  const ByteVector lzma = lzmaContainer(content, 5);
  const ByteVector legacy = legacyContainer(imploded(content, Literals::text, 6), content);
  ImplodeWriter writer(Literals::binary, 5);  // reaches 2048 bytes back
  for (unsigned char byte : content) writer.literal(byte);
  const ByteVector endless = legacyContainer(writer.cut(), content, Check::standard);
  writer.copy(5, 2001);
  const ByteVector beforeStart = legacyContainer(writer.end(), content);
  const auto stating = [](ByteVector container, std::uint32_t size) {
    store32(&container[container.size() - 8], size);
    return container;
  };
  const auto unchecked = [](ByteVector container) {
    container.back() ^= 0x80;
    return container;
  };
  const ByteVector one(content.begin(), content.begin() + 1);
  const std::pair<ByteVector, Exploded> cases[] = {
      {stating(lzma, 1), delivered(one, 1000)},
      {stating(lzma, 2001), kRefused},
      {unchecked(lzma), delivered(content, 1000)},
      {stating(legacy, 0xFFFFFFFF), delivered(content)},
      {unchecked(legacy), delivered(content, 1000)},
      {endless, delivered(content)},
      {unchecked(endless), kRefused},
      {beforeStart, kRefused},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    SCOPED_TRACE(i);
    expectExploded(cases[i].first, cases[i].second);
  }
}
