// Any bytes as content: compressed in memory and as a stream it is the same container, and it comes
// back. The first byte chooses the level, the second the size of the pieces.
#include <zo/persist/lzma_utils.h>

#include "fuzz.h"

using namespace zo;
using namespace zo::test;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  if (size < 2) return 0;
  const int level = data[0] % 10;
  const std::size_t piece = 1 + data[1];
  const ByteVector content = fuzzInput(data + 2, size - 2);

  ByteVector container;
  ZO_FUZZ_CHECK(LzmaUtils::LzmaCompressData(container, content.data(), content.size(), level, 0) ==
                0);
  PiecedSource source(content, piece);
  VectorSink sink;
  ZO_FUZZ_CHECK(compressStream(source, content.size(), level, sink) == 0);
  ZO_FUZZ_CHECK(sink.taken == container);

  Block block;
  std::size_t contentSize = 0;
  ZO_FUZZ_CHECK(explodeBuffer(container, block, contentSize) == 0);
  ZO_FUZZ_CHECK(ByteVector(block.data(), block.data() + contentSize) == content);
  return 0;
}
