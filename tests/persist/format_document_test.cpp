// The examples of docs/formats are what the code writes and reads.
#include <gtest/gtest.h>
#include <zo/archive.h>
#include <zo/compress.h>
#include <zo/containers.h>
#include <zo/geometry.h>
#include <zo/variant.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "persist/persist_support.h"

using namespace zo;
using namespace zo::test;

namespace {

std::string document(const char* name) {
  const ByteVector bytes = sourceFile(std::string("docs/formats/") + name);
  std::string text(bytes.begin(), bytes.end());
  std::erase(text, '\r');
  return text;
}

// What stands between a line "```TITLE" and "```".
std::string block(const char* name, const std::string& title) {
  const std::string text = document(name), opening = "```" + title + "\n";
  const std::size_t begin = text.find(opening);
  EXPECT_NE(begin, std::string::npos) << title;
  if (begin == std::string::npos) return {};
  const std::size_t first = begin + opening.size();
  return text.substr(first, text.find("```", first) - first);
}

// The bytes of a hexdump: an offset of eight digits, two spaces, bytes with single spaces, two
// spaces, a remark.
ByteVector hexdump(const std::string& text) {
  std::istringstream lines(text);
  ByteVector bytes;
  for (std::string line; std::getline(lines, line);) {
    EXPECT_EQ(std::stoul(line.substr(0, 8), nullptr, 16), bytes.size()) << line;
    for (std::size_t at = 10; at < line.size() && line[at] != ' '; at += 3) {
      bytes.push_back(static_cast<unsigned char>(std::stoul(line.substr(at, 2), nullptr, 16)));
    }
  }
  return bytes;
}

constexpr const char* kContainers = "compressed-container.md";

}  // namespace

TEST(FormatDocument, ArchiveIsWhatIsWrittenReadAndDumped) {
  const auto write = [](ZoArchive& to) {
    ZoHashDict<ZoVariant, ZoString> part;
    part = {{L"length", ZoVariant(ZoArray<ZoVariant>{ZoVariant(40.0, ZoTypeCode::Length), 7},
                                  ZoTypeCode::Array)}};
    to.write(L"M20", nullptr);
    to.write(ZoVector::s_negZAxis, nullptr);
    to.write(ZoVariant(std::move(part), ZoTypeCode::Part, ZoFlagConstant), L"Part");
  };
  ZoMemoryWriteArchive archive;
  write(archive);
  const auto* const first = reinterpret_cast<const unsigned char*>(archive.bytes().data());
  EXPECT_EQ(ByteVector(first, first + archive.bytes().size()),
            hexdump(block("archive.md", "hexdump archive")));
  ZoMemoryReadArchive back(archive.bytes());
  ZoString text;
  ZoVector vector;
  ZoVariant part;
  back >> text >> vector >> part;
  EXPECT_EQ(part.find(L"length/1")->asInt(), 7);
  ZoDumpArchive dump;
  write(dump);
  const std::string expected = block("archive.md", "dump");
  EXPECT_EQ(dump.dump().view().substr(1),
            ZoString().setFromMB(expected.c_str()).strip(ZoString::trailing, L"\n").view());
}

TEST(FormatDocument, LzmaContainerIsWhatIsWrittenAndRead) {
  const ByteVector bytes = hexdump(block(kContainers, "hexdump lzma"));
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
  const ByteVector bytes = hexdump(block(kContainers, "hexdump legacy"));
  EXPECT_EQ(bytes, sourceFile("tests/data/implode/aiaia.std.legacy"));
  const Exploded exploded = explode(bytes);
  EXPECT_EQ(exploded.result, 0);
  EXPECT_EQ(std::string(exploded.bytes.begin(), exploded.bytes.end()), "AIAIAIAIAIAIA");
}
