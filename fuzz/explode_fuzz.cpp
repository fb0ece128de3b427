// Any bytes as a container: the buffer form, the streamed form and the stream buffer agree, and
// what they deliver is what the check value says.
#include <zo/persist/blast_membuf.h>
#include <zo/persist/lzma_utils.h>

#include "bytes/crc32.h"
#include "bytes/little_endian.h"
#include "fuzz.h"

using namespace zo;
using namespace zo::test;

namespace {

void checkLegacy(const ByteVector& container, const ByteVector& streamed, int result) {
  Blastmembuf buffer;
  std::vector<char> area(1 + container.size() % 97);
  ZO_FUZZ_CHECK(buffer.setbuf(area.data(), static_cast<int>(area.size())) == &buffer);
  buffer.setZipArea(reinterpret_cast<const char*>(container.data()),
                    static_cast<unsigned int>(container.size()));
  ByteVector read(streamed.size() + 1);
  ZO_FUZZ_CHECK(buffer.sgetn(reinterpret_cast<char*>(read.data()), static_cast<int>(read.size())) ==
                static_cast<int>(streamed.size()));
  read.pop_back();
  ZO_FUZZ_CHECK(read == streamed);
  ZO_FUZZ_CHECK(result == 1 || buffer.CRCStatus() == result);
}

void checkLzma(const ByteVector& container, const ByteVector& content, int result) {
  ByteVector out;
  const int status = LzmaUtils::LzmaUncompressData(out, container.data(), container.size());
  ZO_FUZZ_CHECK((status == 0) == (result == 0) && (status == 3) == (result == 1000));
  ZO_FUZZ_CHECK(out == (result == 1 ? ByteVector() : content));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const ByteVector container = fuzzInput(data, size);
  Block block;
  std::size_t contentSize = 77;
  const int result = explodeBuffer(container, block, contentSize);
  ZO_FUZZ_CHECK(result == 0 || result == 1 || result == 1000);

  MemoryStore store(container);
  VectorSink streamed;
  ZO_FUZZ_CHECK(explodeStream(store, streamed) == result);

  ByteVector content;
  if (result == 1) {
    ZO_FUZZ_CHECK(!block.data() && contentSize == 0);
  } else {
    ZO_FUZZ_CHECK(block.data()[contentSize] == 0);
    content.assign(block.data(), block.data() + contentSize);
    ZO_FUZZ_CHECK(streamed.taken == content);
    const std::uint32_t check = load32(&container[size - 4]);
    const std::uint32_t crc = crc32(content);
    const bool legacy = !LzmaUtils::IsLzmaCompressedData(container.data());
    ZO_FUZZ_CHECK((result == 0) == (crc == check || (legacy && ~crc == check)));
  }
  if (size > 0 && LzmaUtils::IsLzmaCompressedData(container.data())) {
    checkLzma(container, content, result);
  } else if (size >= 8) {
    checkLegacy(container, streamed.taken, result);
  }
  return 0;
}
