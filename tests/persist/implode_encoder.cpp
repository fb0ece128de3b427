#include "persist/implode_encoder.h"

#include <algorithm>

#include "persist/crc32.h"
#include "persist/implode_tables.h"
#include "persist/little_endian.h"

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

namespace {

// Finds the last places at which three bytes stood.
class Matcher {
 public:
  Matcher(Bytes content, unsigned int distanceBits)
      : content_(content),
        reach_(64u << distanceBits),
        last_(1u << 15, -1),
        before_(content.size(), -1) {}

  void enter(std::size_t at) {
    if (at + 3 > content_.size()) return;
    int& last = last_[slot(at)];
    before_[at] = last;
    last = static_cast<int>(at);
  }

  // The longest match before `at`; a length of 0 for none.
  std::pair<unsigned int, unsigned int> find(std::size_t at) const {
    unsigned int best = 0, distance = 0;
    if (at + 3 > content_.size()) return {0, 0};
    const std::size_t most = std::min<std::size_t>(kMaxLength, content_.size() - at);
    int tries = 32;
    for (int from = last_[slot(at)]; from >= 0 && tries-- > 0;
         from = before_[static_cast<std::size_t>(from)]) {
      const std::size_t back = at - static_cast<std::size_t>(from);
      if (back > reach_) break;
      unsigned int length = 0;
      while (length < most && content_[at + length] == content_[at + length - back]) ++length;
      if (length > best) {
        best = length;
        distance = static_cast<unsigned int>(back);
      }
    }
    return {best < 3 ? 0 : best, distance};
  }

 private:
  std::size_t slot(std::size_t at) const {
    return (content_[at] * 0x9E5u ^ content_[at + 1] * 0x1F35u ^ content_[at + 2] * 0x71u) & 0x7FFF;
  }

  Bytes content_;
  std::size_t reach_;
  std::vector<int> last_;
  std::vector<int> before_;
};

}  // namespace

ByteVector imploded(Bytes content, Literals literals, unsigned int distanceBits) {
  ImplodeWriter writer(literals, distanceBits);
  Matcher matcher(content, distanceBits);
  for (std::size_t at = 0; at < content.size();) {
    const auto [length, distance] = matcher.find(at);
    const std::size_t next = at + std::max(length, 1u);
    if (length > 0) {
      writer.copy(length, distance);
    } else {
      writer.literal(content[at]);
    }
    while (at < next) matcher.enter(at++);
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
