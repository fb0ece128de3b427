// Encoder of the implode format, for test input: token by token, or whole data with simple greedy
// matching. It shares its tables with the decoder; that these are right is shown by data of
// independent encoders.
#pragma once

#include <cstdint>

#include "persist/memory_streams.h"

namespace zo::test {

enum class Literals : unsigned char { binary = 0, text = 1 };

class ImplodeWriter {
 public:
  // distanceBits is 4, 5 or 6: a dictionary of 1024, 2048 or 4096 bytes.
  ImplodeWriter(Literals literals, unsigned int distanceBits);

  void literal(unsigned char byte);
  // A length of 2 reaches 256 bytes back.
  void copy(unsigned int length, unsigned int distance);
  // Writes the end code and fills up the last byte. Returns the body.
  ByteVector end();
  // The body as it stands, without end code.
  ByteVector cut() const;

 private:
  void put(unsigned int bits, unsigned int count);

  ByteVector body_;
  std::uint64_t bits_ = 0;
  unsigned int count_ = 0;
  Literals literals_;
  unsigned int distanceBits_;
};

ByteVector imploded(Bytes content, Literals literals, unsigned int distanceBits);

// A legacy container: the check word is the CRC-32 register as it stands, or inverted as usual.
enum class Check { raw, standard };
ByteVector legacyContainer(const ByteVector& body, Bytes content, Check check = Check::raw);

}  // namespace zo::test
