#include "persist/persist_support.h"

#include <gtest/gtest.h>
#include <zo/persist/explode.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "persist/little_endian.h"

namespace zo::test {

ByteVector sourceFile(const std::string& path) {
  std::ifstream file(ZO_SOURCE_ROOT "/" + path, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

Exploded explode(Bytes container) {
  char* out = nullptr;
  unsigned int size = 77;
  const int result = ZoExplode()(reinterpret_cast<const char*>(container.data()),
                                 static_cast<unsigned int>(container.size()), out, size);
  Exploded exploded{result, out != nullptr, {}};
  EXPECT_TRUE(result == 0 || result == 1 || result == 1000) << result;
  EXPECT_EQ(exploded.delivered, result != 1);
  if (out) {
    exploded.bytes.assign(out, out + size);
    EXPECT_EQ(out[size], 0);
  } else {
    EXPECT_EQ(size, 0u);
  }
  std::free(out);
  return exploded;
}

Exploded explodeStreamed(Bytes container) {
  MemoryStore store(container);
  VectorSink sink;
  const int result = explodeStream(store, sink);
  if (result == 1) return {result, false, {}};
  return {result, true, std::move(sink.taken)};
}

ByteVector sampleContent(std::size_t size, unsigned int seed) {
  static constexpr const char* kWords[] = {"bolt ",    "nut ",      "washer ", "M8x20 ", "M10x40 ",
                                           "DIN 933 ", "ISO 4014 ", "zinc\n",  "steel ", "A2-70 "};
  std::mt19937 random(seed);
  ByteVector content;
  while (content.size() < size) {
    switch (random() % 16) {
      case 0:
        content.insert(content.end(), random() % 600, static_cast<unsigned char>(random()));
        break;
      case 1:
        for (unsigned int n = random() % 40; n > 0; --n)
          content.push_back(static_cast<unsigned char>(random()));
        break;
      default:
        for (const char* c = kWords[random() % std::size(kWords)]; *c; ++c)
          content.push_back(static_cast<unsigned char>(*c));
    }
  }
  content.resize(size);
  return content;
}

ByteVector lzmaContainer(Bytes content, int level) {
  ByteVector container;
  EXPECT_EQ(LzmaUtils::LzmaCompressData(container, content.data(), content.size(), level, 0), 0);
  return container;
}

ByteVector mutated(const ByteVector& original, std::mt19937& random) {
  ByteVector bytes = original;
  for (unsigned int changes = 1 + random() % 4; changes > 0 && !bytes.empty(); --changes) {
    const std::size_t at = random() % bytes.size();
    const auto place = bytes.begin() + static_cast<std::ptrdiff_t>(at);
    switch (random() % 8) {
      case 0:
        bytes.resize(at);
        break;
      case 1:
        bytes.insert(place, static_cast<unsigned char>(random()));
        break;
      case 2:
        bytes.erase(place);
        break;
      case 3:
        bytes[at] = std::array<unsigned char, 6>{0, 1, 8, 0xFF, 0x7F, 0x5D}[random() % 6];
        break;
      case 4:  // header and trailer
        if (bytes.size() >= 13) {
          const std::array<std::uint32_t, 5> values = {0, 1, 0xFFFFFFFF, 0x80000000, 4096};
          const std::array<std::size_t, 3> places = {1, bytes.size() - 8, bytes.size() - 4};
          store32(&bytes[places[random() % 3]], values[random() % 5]);
        }
        break;
      default:
        bytes[at] = static_cast<unsigned char>(bytes[at] ^ 1u << random() % 8);
    }
  }
  return bytes;
}

int mutationCount(int ordinary) {
  const char* const wanted = std::getenv("ZO_MUTATIONS");
  return wanted ? std::atoi(wanted) : ordinary;
}

}  // namespace zo::test
