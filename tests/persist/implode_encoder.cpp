#include "persist/implode_encoder.h"

#include <unordered_map>

#include "bytes/crc32.h"
#include "bytes/little_endian.h"
#include "persist/implode_tables.h"

namespace zo::test {

using namespace implode;

ImplodeWriter::ImplodeWriter(Literals literals, unsigned int distanceBits)
    : body_{static_cast<unsigned char>(literals), static_cast<unsigned char>(distanceBits)},
      literals_(literals),
      distanceBits_(distanceBits) {}

void ImplodeWriter::put(unsigned int bits, unsigned int count) {
  bits_ |= static_cast<std::uint64_t>(bits) << count_;
  for (count_ += count; count_ >= 8; count_ -= 8) {
    body_.push_back(static_cast<unsigned char>(bits_));
    bits_ >>= 8;
  }
}

void ImplodeWriter::literal(unsigned char byte) {
  put(0, 1);
  if (literals_ == Literals::text) {
    put(kLiteralCodes[byte], kLiteralCodeBits[byte]);
  } else {
    put(byte, 8);
  }
}

void ImplodeWriter::copy(unsigned int length, unsigned int distance) {
  std::size_t symbol = 0;
  while (length < kLengthBase[symbol] ||
         length >= kLengthBase[symbol] + (1u << kLengthExtraBits[symbol])) {
    ++symbol;
  }
  put(1, 1);
  put(kLengthCodes[symbol], kLengthCodeBits[symbol]);
  put(length - kLengthBase[symbol], kLengthExtraBits[symbol]);
  if (length == kEndLength) return;
  const unsigned int lower = length == kShortCopy ? kShortCopyDistanceBits : distanceBits_;
  const unsigned int upper = (distance - 1) >> lower;
  put(kDistanceCodes[upper], kDistanceCodeBits[upper]);
  put((distance - 1) & ((1u << lower) - 1), lower);
}

ByteVector ImplodeWriter::cut() const {
  ByteVector body = body_;
  if (count_ > 0) body.push_back(static_cast<unsigned char>(bits_));
  return body;
}

ByteVector ImplodeWriter::end() {
  copy(kEndLength, 0);
  return cut();
}

ByteVector imploded(Bytes content, Literals literals, unsigned int distanceBits) {
  ImplodeWriter writer(literals, distanceBits);
  const auto three = [&](std::size_t at) {
    return content[at] | content[at + 1] << 8 | content[at + 2] << 16;
  };
  std::unordered_map<int, std::size_t> last;  // where these three bytes stood last
  for (std::size_t at = 0, next = 0; at < content.size(); ++at) {
    const auto found = at + 3 <= content.size() ? last.find(three(at)) : last.end();
    if (at == next) {
      const std::size_t distance = found != last.end() ? at - found->second : 0;
      unsigned int length = 1;
      if (distance > 0 && distance <= 64u << distanceBits) {
        while (length < kMaxLength && at + length < content.size() &&
               content[at + length] == content[at + length - distance])
          ++length;
        writer.copy(length, static_cast<unsigned int>(distance));
      } else {
        writer.literal(content[at]);
      }
      next = at + length;
    }
    if (at + 3 <= content.size()) last[three(at)] = at;
  }
  return writer.end();
}

ByteVector legacyContainer(const ByteVector& body, Bytes content, Check check) {
  const std::uint32_t crc = crc32(content);
  ByteVector container = body;
  container.resize(body.size() + 8);
  store32(container.data() + body.size(), static_cast<std::uint32_t>(content.size()));
  store32(container.data() + body.size() + 4, check == Check::raw ? ~crc : crc);
  return container;
}

}  // namespace zo::test
