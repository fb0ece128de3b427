// The examples of docs/formats are what the code writes and reads.
#include <gtest/gtest.h>
#include <zo/archive.h>
#include <zo/compress.h>
#include <zo/containers.h>
#include <zo/geometry.h>
#include <zo/variant.h>

#include <cstdlib>
#include <string>

#include "persist/persist_support.h"
#include "support/documents.h"

using namespace zo;
using namespace zo::test;

namespace {

ByteVector hexdump(const char* document, const char* title) {
  const std::string bytes = hexdumpOf(document, title);
  return {bytes.begin(), bytes.end()};
}

constexpr const char* kContainers = "docs/formats/compressed-container.md";

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
            hexdump("docs/formats/archive.md", "hexdump archive"));
  ZoMemoryReadArchive back(archive.bytes());
  ZoString text;
  ZoVector vector;
  ZoVariant part;
  back >> text >> vector >> part;
  EXPECT_EQ(part.find(L"length/1")->asInt(), 7);
  ZoDumpArchive dump;
  write(dump);
  const std::string expected = blockOf("docs/formats/archive.md", "dump");
  EXPECT_EQ(dump.dump().view().substr(1),
            ZoString().setFromMB(expected.c_str()).strip(ZoString::trailing, L"\n").view());
}

TEST(FormatDocument, LzmaContainerIsWhatIsWrittenAndRead) {
  const ByteVector bytes = hexdump(kContainers, "hexdump lzma");
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
  const ByteVector bytes = hexdump(kContainers, "hexdump legacy");
  EXPECT_EQ(bytes, sourceFile("tests/data/implode/aiaia.std.legacy"));
  const Exploded exploded = explode(bytes);
  EXPECT_EQ(exploded.result, 0);
  EXPECT_EQ(std::string(exploded.bytes.begin(), exploded.bytes.end()), "AIAIAIAIAIAIA");
}
