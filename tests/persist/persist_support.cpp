#include "persist/persist_support.h"

#include <gtest/gtest.h>
#include <zo/persist/explode.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

#include "bytes/little_endian.h"
#include "support/documents.h"

namespace zo::test {

ByteVector sourceFile(const std::string& path) {
  std::ifstream file(sourcePath(path), std::ios::binary);
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
    const auto noise = static_cast<unsigned char>(random());
    const unsigned int kind = random() % 16;
    if (kind == 0) content.insert(content.end(), random() % 600, noise);
    if (kind == 1) content.push_back(noise);
    const char* const word = kWords[random() % std::size(kWords)];
    content.insert(content.end(), word, word + std::strlen(word));
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
  static constexpr std::uint32_t kTelling[] = {0, 1, 8, 0x5D, 0x7F, 4096, 0x80000000, 0xFFFFFFFF};
  ByteVector bytes = original;
  for (unsigned int changes = 1 + random() % 4; changes > 0 && bytes.size() >= 13; --changes) {
    const std::size_t at = random() % bytes.size();
    const auto place = bytes.begin() + static_cast<std::ptrdiff_t>(at);
    const std::uint32_t telling = kTelling[random() % std::size(kTelling)];
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
        *place = static_cast<unsigned char>(telling);
        break;
      case 4:  // header and trailer
        store32(&bytes[at % 3 ? bytes.size() - at % 3 * 4 : 1], telling);
        break;
      default:
        *place ^= static_cast<unsigned char>(1u << random() % 8);
    }
  }
  return bytes;
}

int mutationCount(int ordinary) {
  const char* const wanted = std::getenv("ZO_MUTATIONS");
  return wanted ? std::atoi(wanted) : ordinary;
}

}  // namespace zo::test
