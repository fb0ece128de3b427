// The hexdumps of docs/formats/compressed-container.md are what the code writes and reads.
#include <gtest/gtest.h>
#include <zo/compress.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "persist/implode_tables.h"
#include "persist/persist_support.h"

using namespace zo;
using namespace zo::test;

namespace {

std::string document() {
  const ByteVector bytes = sourceFile("docs/formats/compressed-container.md");
  std::string text(bytes.begin(), bytes.end());
  std::erase(text, '\r');
  return text;
}

// The bytes of the hexdump of this name: an offset of eight digits, two spaces, bytes with single
// spaces, two spaces, a remark.
ByteVector hexdump(const std::string& name) {
  const std::string text = document(), opening = "```hexdump " + name + "\n";
  const std::size_t begin = text.find(opening);
  EXPECT_NE(begin, std::string::npos) << name;
  if (begin == std::string::npos) return {};
  std::istringstream lines(text.substr(begin + opening.size()));
  ByteVector bytes;
  for (std::string line; std::getline(lines, line) && line != "```";) {
    EXPECT_EQ(std::stoul(line.substr(0, 8), nullptr, 16), bytes.size()) << line;
    for (std::size_t at = 10; at < line.size() && line[at] != ' '; at += 3) {
      bytes.push_back(static_cast<unsigned char>(std::stoul(line.substr(at, 2), nullptr, 16)));
    }
  }
  return bytes;
}

}  // namespace

TEST(FormatDocument, LzmaContainerIsWhatIsWrittenAndRead) {
  const ByteVector bytes = hexdump("lzma");
  char* out = nullptr;
  unsigned int size = 0;
  ASSERT_EQ(ZoCompress(ZoZip::normal)("M8x20 M8x40 M8x60", out, size), 0);
  EXPECT_EQ(ByteVector(out, out + size), bytes);
  std::free(out);
  const Exploded exploded = explode(bytes);
  EXPECT_EQ(exploded.result, 0);
  EXPECT_EQ(std::string(exploded.bytes.begin(), exploded.bytes.end()), "M8x20 M8x40 M8x60");
}

TEST(FormatDocument, LegacyContainerIsWhatIsRead) {
  const ByteVector bytes = hexdump("legacy");
  EXPECT_EQ(bytes, sourceFile("tests/data/implode/aiaia.std.legacy"));
  const Exploded exploded = explode(bytes);
  EXPECT_EQ(exploded.result, 0);
  EXPECT_EQ(std::string(exploded.bytes.begin(), exploded.bytes.end()), "AIAIAIAIAIAIA");
}

TEST(FormatDocument, LengthsOfTheLiteralCodesAreThoseOfTheDecoder) {
  const std::string text = document();
  std::istringstream numbers(text.substr(text.find("```\n11 12 12") + 4));
  for (std::size_t symbol = 0; symbol < 256; ++symbol) {
    int bits = 0;
    numbers >> bits;
    EXPECT_EQ(bits, implode::kLiteralCodeBits[symbol]) << symbol;
  }
  const auto& d = implode::kDistanceCodeBits;
  std::size_t at = 0;
  for (const auto& [count, bits] : {std::pair{1, 2}, {2, 4}, {4, 5}, {15, 6}, {26, 7}, {16, 8}}) {
    for (int i = 0; i < count; ++i) EXPECT_EQ(d[at++], bits);
  }
}
