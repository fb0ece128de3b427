// Containers in memory: ZoCompress, ZoExplode, LzmaUtils.
#include <gtest/gtest.h>
#include <zo/compress.h>

#include <cstring>

#include "persist/crc32.h"
#include "persist/little_endian.h"
#include "persist/memory_watch.h"
#include "persist/persist_support.h"

using namespace zo;
using namespace zo::test;

namespace {

Bytes asBytes(const std::string& text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

// ZoCompress's buffer form; checks what holds for every call.
ByteVector compressText(const ZoCompress& compress, const char* text) {
  char* out = nullptr;
  unsigned int size = 0;
  EXPECT_EQ(compress(text, out, size), 0);
  if (!out) return {};
  EXPECT_EQ(out[size], 0);
  ByteVector container(out, out + size);
  std::free(out);
  return container;
}

Exploded delivered(const ByteVector& bytes, int result = 0) { return {result, true, bytes}; }
const Exploded kRefused{1, false, {}};

// From memory and from a stream.
void expectExploded(const ByteVector& container, const Exploded& expected) {
  EXPECT_EQ(explode(container), expected);
  EXPECT_EQ(explodeStreamed(container), expected);
}

}  // namespace

TEST(Compress, ModesSelectLevels) {
  struct Case {
    unsigned int mode;
    int level;
  };
  const ByteVector content = sampleContent(3000, 1);
  const std::string text(content.begin(), content.end());
  const std::string untilZero = text.c_str();
  for (const Case& c : {Case{0x400, 0}, Case{0x800, 5}, Case{0x1000, 9}, Case{0, 5}, Case{9, 5},
                        Case{0x401, 5}, Case{0xFFFFFFFF, 5}}) {
    SCOPED_TRACE(c.mode);
    ZoCompress compress(c.mode == 0x400 ? ZoZip::best : ZoZip::fast);
    EXPECT_EQ(compress.compressFast(), c.mode != 0x400);
    EXPECT_EQ(compress.setMode(static_cast<ZoZip::compressMode>(c.mode)), 0);
    EXPECT_EQ(compress.compressFast(), c.mode == 0x400);
    EXPECT_TRUE(compressText(compress, text.c_str()) == lzmaContainer(asBytes(untilZero), c.level));
  }
}

TEST(Compress, ContainerIsHeaderStreamSizeAndCheckValueOfTheTextUpToItsZero) {
  const ByteVector container = compressText(ZoCompress(ZoZip::best), "abc\0def");
  ASSERT_GT(container.size(), 13u);
  EXPECT_EQ(container[0], 0x5D);
  EXPECT_EQ(load32(&container[1]), 4096u) << "a dictionary of the least size is enough";
  EXPECT_EQ(load32(&container[container.size() - 8]), 3u);
  EXPECT_EQ(load32(&container[container.size() - 4]), 0x352441C2u) << "the known CRC-32 of abc";
  expectExploded(container, delivered({'a', 'b', 'c'}));
  expectExploded(compressText(ZoCompress(ZoZip::normal), ""), delivered({}));
}

TEST(Compress, MemoryAndDictionaryFollowTheInput) {
  for (std::size_t size : {std::size_t{100}, std::size_t{10000}, std::size_t{100000}}) {
    const ByteVector content = sampleContent(size, 12);
    MemoryWatch watch;
    const ByteVector container = lzmaContainer(content, 9);
    EXPECT_LE(watch.peak(), (1u << 20) + 16 * size) << "the level's own dictionary takes gigabytes";
    EXPECT_GE(load32(&container[1]), size);
    EXPECT_LT(load32(&container[1]), std::max<std::size_t>(4097, 2 * size));
  }
}

TEST(Compress, NullAndLackOfMemoryAreRefused) {
  const ZoCompress compress(ZoZip::fast);
  char* out = reinterpret_cast<char*>(8);
  unsigned int size = 8;
  EXPECT_EQ(compress(nullptr, out, size), 1);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(size, 0u);
  for (std::size_t failAt = 1;; ++failAt) {
    MemoryWatch poor(failAt);
    out = reinterpret_cast<char*>(8);
    const int result = compress("some text", out, size);
    EXPECT_EQ(result, poor.failed() ? 1 : 0) << failAt;
    EXPECT_EQ(out != nullptr, !poor.failed());
    std::free(out);
    if (!poor.failed()) break;
  }
}

TEST(Compress, WithoutMemoryTheHandlesStayEmptyAndRefuse) {
  MemoryWatch poor(1);
  ZoCompress compress(ZoZip::fast);
  const ZoExplode explodeHandle;
  char* out = reinterpret_cast<char*>(8);
  unsigned int size = 8;
  EXPECT_FALSE(compress.compressFast());
  EXPECT_EQ(compress.setMode(ZoZip::fast), 1);
  EXPECT_EQ(compress("text", out, size), 1);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(compress(L"a", L"b"), 1);
  EXPECT_EQ(explodeHandle("text", 4, out), 1);
  EXPECT_EQ(explodeHandle(L"a", L"b"), 1);
}

TEST(Compress, EveryLevelAndSizeComesBack) {
  for (int level : {-1, 0, 1, 5, 9}) {
    for (std::size_t size :
         {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{4096}, std::size_t{70000}}) {
      const ByteVector content = sampleContent(size, 4);
      const ByteVector container = lzmaContainer(content, level);
      EXPECT_TRUE(LzmaUtils::IsLzmaCompressedData(container.data()));
      expectExploded(container, delivered(content));
      ByteVector back(3);
      EXPECT_EQ(LzmaUtils::LzmaUncompressData(back, container.data(), container.size()), 0);
      EXPECT_TRUE(back == content);
      // A stream gives the same container, whatever its pieces.
      PiecedSource source(content, 1000);
      VectorSink sink;
      EXPECT_EQ(compressStream(source, size, level, sink), 0);
      EXPECT_TRUE(sink.taken == container) << level << ' ' << size;
    }
  }
}

TEST(Compress, LzmaUtilsRefusesWhatItCannotHold) {
  const char byte = 'x';
  ByteVector out(5);
  EXPECT_EQ(LzmaUtils::LzmaCompressData(out, nullptr, 1, 5, 0), LzmaUtils::badParameter);
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(LzmaUtils::LzmaCompressData(out, &byte, 1ull << 32, 5, 0), LzmaUtils::badParameter);
  EXPECT_EQ(LzmaUtils::LzmaUncompressData(out, &byte, 1ull << 32), LzmaUtils::badParameter);
  EXPECT_EQ(LzmaUtils::LzmaUncompressData(out, nullptr, 1), LzmaUtils::badParameter);
  EXPECT_EQ(LzmaUtils::LzmaUncompressData(out, nullptr, 0), LzmaUtils::inputEnded);
  EXPECT_EQ(LzmaUtils::LzmaCompressData(out, nullptr, 0, 5, 0), 0);
  EXPECT_EQ(LzmaUtils::LzmaCompressData(out, &byte, 1, 5, 1 << 16), 0);
  out[0] = 0x5C;
  ByteVector back(5);
  EXPECT_EQ(LzmaUtils::LzmaUncompressData(back, out.data(), out.size()), LzmaUtils::unsupported);
  EXPECT_TRUE(back.empty());
}

TEST(Compress, OnlyOnePropertiesByteIsAContainersFirst) {
  EXPECT_FALSE(LzmaUtils::IsLzmaCompressedData(nullptr));
  for (unsigned int b = 0; b < 256; ++b) {
    const auto first = static_cast<unsigned char>(b);
    const bool fits = b < 225 && b % 9 == 3 && b / 9 % 5 == 0 && b / 45 == 2;
    EXPECT_EQ(LzmaUtils::IsLzmaCompressedData(&first), fits) << b;
  }
}

TEST(Compress, StreamsThatFailOrLieAboutTheirSizeAreRefused) {
  const ByteVector content = sampleContent(5000, 2);
  const std::size_t size = lzmaContainer(content, 0).size();
  for (std::size_t room : {std::size_t{0}, std::size_t{4}, std::size_t{5}, size - 8, size - 1}) {
    PiecedSource source(content, 100);
    VectorSink sink(room);
    EXPECT_NE(compressStream(source, content.size(), 0, sink), 0) << room;
  }
  for (std::uint64_t claim : {std::uint64_t{4999}, std::uint64_t{5001}, std::uint64_t{1} << 32}) {
    PiecedSource source(content, 100);
    VectorSink sink;
    EXPECT_NE(compressStream(source, claim, 0, sink), 0) << claim;
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

TEST(Explode, AWrongCheckValueStillDelivers) {
  const ByteVector content = sampleContent(40000, 8);
  for (ByteVector container :
       {lzmaContainer(content, 5), legacyContainer(imploded(content, Literals::text, 6), content),
        legacyContainer(imploded(content, Literals::binary, 4), content, Check::standard)}) {
    container.back() ^= 0x80;
    expectExploded(container, delivered(content, 1000));
  }
}

TEST(Explode, TheStatedSizeLimitsLzmaAndDecidesNothingInALegacyContainer) {
  const ByteVector content = sampleContent(2000, 9);
  ByteVector lzma = lzmaContainer(content, 5);
  ByteVector legacy = legacyContainer(imploded(content, Literals::text, 6), content);
  for (std::uint32_t size : {0u, 1u, 1999u, 2001u, 1u << 20, 0xFFFFFFFFu}) {
    store32(&lzma[lzma.size() - 8], size);
    store32(&legacy[legacy.size() - 8], size);
    const Exploded cut =
        delivered({content.begin(), content.begin() + std::min(size, 2000u)}, 1000);
    expectExploded(lzma, size < 2000 ? cut : kRefused);
    EXPECT_EQ(explode(legacy), delivered(content)) << size;
  }
}

TEST(Explode, AMissingEndCodePassesWhenTheCheckValueHolds) {
  const std::string text = "all of these bytes were delivered";
  for (Literals literals : {Literals::binary, Literals::text}) {
    ImplodeWriter writer(literals, 6);
    for (char c : text) writer.literal(static_cast<unsigned char>(c));
    ByteVector container = legacyContainer(writer.cut(), asBytes(text), Check::standard);
    const ByteVector content(text.begin(), text.end());
    expectExploded(container, delivered(content));
    container.back() ^= 1;
    expectExploded(container, kRefused);
  }
}

TEST(Explode, WhatBreaksTheFormatIsRefusedWhateverTheCheckValue) {
  ByteVector container = sourceFile("tests/data/lzma/text.container");
  store32(&container[container.size() - 8], 1 << 16);
  expectExploded(container, kRefused);
  const ByteVector content = {'a', 'b', 'c'};
  ImplodeWriter writer(Literals::binary, 6);
  for (unsigned char c : content) writer.literal(c);
  writer.copy(5, 4);
  expectExploded(legacyContainer(writer.end(), content), kRefused);
  for (const char* const input : {static_cast<const char*>(nullptr), "x"}) {
    char* out = reinterpret_cast<char*>(8);
    EXPECT_EQ(ZoExplode()(input, input ? 0 : 100, out), 1);
    EXPECT_EQ(out, nullptr);
  }
}

TEST(Explode, LackOfMemoryIsRefusedWithoutOutput) {
  const ByteVector content = sampleContent(200000, 6);
  for (const ByteVector& container :
       {lzmaContainer(content, 5),
        legacyContainer(imploded(content, Literals::text, 6), content)}) {
    for (std::size_t failAt = 1;; ++failAt) {
      MemoryWatch poor(failAt);
      const Exploded exploded = explode(container);
      // Refused memory may be that of giving back what the output does not need.
      EXPECT_TRUE(exploded.result == 1 || exploded == delivered(content)) << failAt;
      if (!poor.failed()) {
        EXPECT_EQ(exploded.result, 0);
        break;
      }
    }
  }
}
