#include "persist/persist_support.h"

#include <gtest/gtest.h>
#include <zo/persist/explode.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>

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

}  // namespace zo::test
