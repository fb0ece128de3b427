// Any bytes as an imploded body: decoded in one piece and in small ones the result is the same.
#include "persist/implode_decoder.h"

#include "fuzz.h"

using namespace zo;
using namespace zo::test;

namespace {

struct Decoded {
  ByteVector bytes;
  ImplodeDecoder::State state;
  bool operator==(const Decoded&) const = default;
};

Decoded decode(const ByteVector& body, std::size_t piece) {
  PiecedSource source(body, piece);
  ImplodeDecoder decoder(source);
  Decoded decoded;
  for (Bytes run; !(run = decoder.next()).empty();) {
    decoded.bytes.insert(decoded.bytes.end(), run.begin(), run.end());
  }
  decoded.state = decoder.state();
  return decoded;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const ByteVector body = fuzzInput(data, size);
  const Decoded whole = decode(body, size + 1);
  ZO_FUZZ_CHECK(whole.state != ImplodeDecoder::State::running);
  ZO_FUZZ_CHECK(whole.bytes.size() <= 518 * size);
  ZO_FUZZ_CHECK(decode(body, 1) == whole);
  ZO_FUZZ_CHECK(decode(body, 9 + size % 23) == whole);
  return 0;
}
