// The decoder of imploded bodies, and the stream buffer over it.
#include "persist/implode_decoder.h"

#include <gtest/gtest.h>
#include <zo/persist/blast_membuf.h>

#include <array>
#include <cstring>
#include <random>

#include "persist/persist_support.h"

using namespace zo;
using namespace zo::test;
using State = ImplodeDecoder::State;

namespace {

struct Decoded {
  State state;
  ByteVector bytes;
  bool operator==(const Decoded&) const = default;
};

Decoded decode(const ByteVector& body, std::size_t piece) {
  PiecedSource source(body, piece);
  ImplodeDecoder decoder(source);
  ByteVector bytes;
  for (Bytes run; !(run = decoder.next()).empty();)
    bytes.insert(bytes.end(), run.begin(), run.end());
  EXPECT_TRUE(decoder.next().empty());
  return {decoder.state(), bytes};
}

// In one piece, byte by byte, and in pieces that end inside the decoder's eight-byte loads.
void expectDecoded(const ByteVector& body, const ByteVector& content,
                   State state = State::complete) {
  for (std::size_t piece : {body.size() + 1, std::size_t{1}, std::size_t{11}}) {
    const Decoded decoded = decode(body, piece);
    EXPECT_EQ(decoded.state, state) << "pieces of " << piece;
    EXPECT_TRUE(decoded.bytes == content)
        << "pieces of " << piece << ": " << decoded.bytes.size() << " for " << content.size();
  }
}

// A body and what it stands for, grown token by token.
class Model {
 public:
  Model(Literals literals, unsigned int distanceBits) : writer(literals, distanceBits) {}
  void literal(unsigned char byte) {
    writer.literal(byte);
    content.push_back(byte);
  }
  void copy(unsigned int length, unsigned int distance) {
    writer.copy(length, distance);
    for (; length > 0; --length) content.push_back(content[content.size() - distance]);
  }
  ImplodeWriter writer;
  ByteVector content;
};

}  // namespace

TEST(Implode, DecodesWhatIndependentEncodersMade) {
  const std::array<const char*, 4> bodies = {"aiaia.imp", "repeat518.node.asc2048.imp",
                                             "repeat518.pk.bin1024.imp",
                                             "zeros4096.pk.asc1024.imp"};
  for (const std::string name : bodies) {
    SCOPED_TRACE(name);
    expectDecoded(sourceFile("tests/data/implode/" + name),
                  sourceFile("tests/data/implode/" + name.substr(0, name.find('.')) + ".orig"));
  }
}

TEST(Implode, DecodesEveryCode) {
  for (Literals literals : {Literals::binary, Literals::text}) {
    for (unsigned int bits : {4u, 5u, 6u}) {
      SCOPED_TRACE(testing::Message() << static_cast<int>(literals) << ' ' << bits);
      const unsigned int reach = 64u << bits;
      Model model(literals, bits);
      for (unsigned int i = 0; i < 4200; ++i) model.literal(static_cast<unsigned char>(i * i >> 3));
      for (unsigned int byte = 0; byte < 256; ++byte)
        model.literal(static_cast<unsigned char>(byte));
      for (unsigned int distance = 1; distance <= reach; ++distance) model.copy(3, distance);
      for (unsigned int distance = 1; distance <= 256; ++distance) model.copy(2, distance);
      for (unsigned int length = 3; length <= 518; ++length) model.copy(length, reach);
      // Overlapping copies: each short distance with lengths on both sides of eight bytes.
      for (unsigned int distance = 1; distance <= 20; ++distance) {
        for (unsigned int length : {3u, 7u, 8u, 9u, 15u, 17u, 64u, 518u}) {
          model.literal(static_cast<unsigned char>(length));
          model.copy(length, distance);
        }
      }
      expectDecoded(model.writer.end(), model.content);
    }
  }
}

TEST(Implode, RandomTokensAcrossManyRuns) {
  std::mt19937 random(11);
  for (Literals literals : {Literals::binary, Literals::text}) {
    Model model(literals, 6);
    while (model.content.size() < 6 * ImplodeDecoder::kRun) {
      if (random() % 2 || model.content.empty()) {
        model.literal(static_cast<unsigned char>(random()));
        continue;
      }
      const auto reach =
          static_cast<unsigned int>(std::min<std::size_t>(4096, model.content.size()));
      const unsigned int distance = 1 + static_cast<unsigned int>(random()) % reach;
      model.copy(3 + static_cast<unsigned int>(random()) % (random() % 8 ? 12 : 516), distance);
    }
    expectDecoded(model.writer.end(), model.content);
  }
}

TEST(Implode, CutAnywhereIsCutAndDeliversWhatStandsBefore) {
  const ByteVector content = sampleContent(700, 3);
  for (Literals literals : {Literals::binary, Literals::text}) {
    const ByteVector body = imploded(content, literals, 5);
    for (std::size_t size = 0; size < body.size(); ++size) {
      const Decoded whole =
          decode({body.begin(), body.begin() + static_cast<std::ptrdiff_t>(size)}, 999);
      EXPECT_EQ(whole.state, size < 2 ? State::broken : State::cut) << size;
      ASSERT_LE(whole.bytes.size(), content.size());
      EXPECT_TRUE(std::equal(whole.bytes.begin(), whole.bytes.end(), content.begin())) << size;
      EXPECT_EQ(decode({body.begin(), body.begin() + static_cast<std::ptrdiff_t>(size)}, 1), whole)
          << size;
    }
  }
}

TEST(Implode, UnknownHeadersAndDistancesBeforeTheStartAreBroken) {
  ByteVector body = imploded(sampleContent(50, 1), Literals::binary, 4);
  for (unsigned int mode = 0; mode < 256; ++mode) {
    for (unsigned int bits : {0u, 3u, 4u, 5u, 6u, 7u, 255u}) {
      body[0] = static_cast<unsigned char>(mode);
      body[1] = static_cast<unsigned char>(bits);
      const bool known = mode <= 1 && bits >= 4 && bits <= 6;
      EXPECT_EQ(decode(body, 999).state == State::broken && decode(body, 999).bytes.empty(), !known)
          << mode << ' ' << bits;
    }
  }
  for (unsigned int produced : {0u, 1u, 7u, 300u, 4000u}) {
    for (unsigned int beyond : {1u, 2u, 90u}) {
      Model model(Literals::text, 6);
      for (unsigned int i = 0; i < produced; ++i) model.literal('x');
      model.writer.copy(9, produced + beyond);
      expectDecoded(model.writer.end(), model.content, State::broken);
    }
  }
}

TEST(Blastmembuf, DeliversContainersAndTheirCheckStatus) {
  for (const char* name : {"aiaia.raw", "aiaia.std", "hand_run518_x40.raw"}) {
    SCOPED_TRACE(name);
    const std::string file(name);
    ByteVector container = sourceFile("tests/data/implode/" + file + ".legacy");
    const ByteVector content =
        sourceFile("tests/data/implode/" + file.substr(0, file.find('.')) + ".orig");
    Blastmembuf buffer;
    EXPECT_EQ(buffer.CRCStatus(), 1000);
    for (int status : {0, 1000}) {
      buffer.setZipArea(reinterpret_cast<const char*>(container.data()),
                        static_cast<unsigned int>(container.size()));
      ByteVector read;
      for (char byte; buffer.sgetn(&byte, 1) == 1;)
        read.push_back(static_cast<unsigned char>(byte));
      EXPECT_TRUE(read == content);
      EXPECT_EQ(buffer.underflow(), -1);
      EXPECT_EQ(buffer.CRCStatus(), status);
      container.back() ^= 1;
    }
  }
}

TEST(Blastmembuf, ReadsThroughAnyArea) {
  const ByteVector content = sampleContent(9000, 5);
  const ByteVector container = legacyContainer(imploded(content, Literals::text, 6), content);
  for (int area : {0, 1, 5, 4096, 20000}) {
    Blastmembuf buffer;
    std::vector<char> own(static_cast<std::size_t>(area));
    EXPECT_EQ(buffer.setbuf(own.data(), area) != nullptr, area > 0);
    EXPECT_EQ(buffer.setbuf(nullptr, 10), nullptr);
    buffer.setZipArea(reinterpret_cast<const char*>(container.data()),
                      static_cast<unsigned int>(container.size()));
    EXPECT_EQ(buffer.underflow(), content[0]);
    EXPECT_EQ(buffer.in_avail(), std::min(area ? area : 4096, 9000));
    EXPECT_EQ(buffer.setbuf(own.data(), area), nullptr) << "unread bytes would be lost";
    ByteVector read(content.size() + 9);
    EXPECT_EQ(buffer.sgetn(reinterpret_cast<char*>(read.data()), static_cast<int>(read.size())),
              9000);
    read.resize(content.size());
    EXPECT_TRUE(read == content);
    EXPECT_EQ(buffer.sync(), 0);
    EXPECT_EQ(buffer.sputc('x'), -1);
  }
}

TEST(Blastmembuf, ShortOrNullInputHasNoBytesAndNoCheckValue) {
  const char zeros[16] = {};
  for (unsigned int size = 0; size <= 9; ++size) {
    Blastmembuf buffer;
    buffer.setZipArea(size < 9 ? zeros : nullptr, size);
    EXPECT_EQ(buffer.underflow(), -1);
    EXPECT_EQ(buffer.CRCStatus(), size == 8 ? 0 : 1000) << size;
  }
}
