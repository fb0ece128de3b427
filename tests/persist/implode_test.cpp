// The decoder of imploded bodies, and the stream buffer over it.
#include "persist/implode_decoder.h"

#include <gtest/gtest.h>
#include <zo/persist/blast_membuf.h>

#include <algorithm>
#include <random>
#include <sstream>

#include "persist/implode_tables.h"
#include "persist/persist_support.h"

using namespace zo;
using namespace zo::test;
using State = ImplodeDecoder::State;

namespace {

struct Decoded {
  State state = State::complete;
  ByteVector bytes;
  bool operator==(const Decoded&) const = default;
};

// In one piece, byte by byte, and in pieces that end inside the decoder's eight-byte loads.
Decoded decode(const ByteVector& body) {
  Decoded whole;
  for (std::size_t piece : {body.size() + 1, std::size_t{1}, std::size_t{11}}) {
    PiecedSource source(body, piece);
    ImplodeDecoder decoder(source);
    Decoded decoded;
    for (Bytes run; !(run = decoder.next()).empty();)
      decoded.bytes.insert(decoded.bytes.end(), run.begin(), run.end());
    EXPECT_TRUE(decoder.next().empty());
    decoded.state = decoder.state();
    if (piece > body.size()) whole = decoded;
    EXPECT_TRUE(decoded == whole) << "pieces of " << piece;
  }
  return whole;
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

TEST(Implode, DecodesTheBodiesOfOtherEncoders) {
  for (const std::string name :
       {"aiaia", "repeat518.node.asc2048", "repeat518.pk.bin1024", "zeros4096.pk.asc1024"}) {
    const std::string folder = "tests/data/implode/";
    const Decoded expected{State::complete,
                           sourceFile(folder + name.substr(0, name.find('.')) + ".orig")};
    EXPECT_TRUE(decode(sourceFile(folder + name + ".imp")) == expected) << name;
  }
}

TEST(Implode, DecodesEveryCodeAndRandomTokensAcrossManyRuns) {
  std::mt19937 random(11);
  const auto below = [&](std::size_t end) { return static_cast<unsigned int>(random() % end); };
  for (Literals literals : {Literals::binary, Literals::text}) {
    for (unsigned int bits : {4u, 5u, 6u}) {
      SCOPED_TRACE(testing::Message() << static_cast<int>(literals) << ' ' << bits);
      const unsigned int reach = 64u << bits;
      Model model(literals, bits);
      for (unsigned int byte = 0; byte < 256; ++byte)
        model.literal(static_cast<unsigned char>(byte));
      while (model.content.size() < 6 * ImplodeDecoder::kRun) {
        if (below(2)) {
          model.literal(static_cast<unsigned char>(random()));
        } else {
          model.copy(3 + below(below(8) ? 12 : 516),
                     1 + below(std::min<std::size_t>(reach, model.content.size())));
        }
      }
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
      EXPECT_TRUE(decode(model.writer.end()) == (Decoded{State::complete, model.content}));
    }
  }
}

// The encoder here shares its tables with the decoder, so that only this shows one amiss.
TEST(Implode, LengthsOfTheCodesAreThoseOfTheFormatsDocument) {
  const ByteVector bytes = sourceFile("docs/formats/compressed-container.md");
  const std::string text(bytes.begin(), bytes.end());
  std::istringstream numbers(text.substr(text.find("\n11 12 12")));
  for (std::size_t symbol = 0; symbol < 256; ++symbol) {
    int bits = 0;
    numbers >> bits;
    EXPECT_EQ(bits, implode::kLiteralCodeBits[symbol]) << symbol;
  }
  std::size_t at = 0;
  for (const auto& [count, bits] : {std::pair{1, 2}, {2, 4}, {4, 5}, {15, 6}, {26, 7}, {16, 8}}) {
    for (int i = 0; i < count; ++i) EXPECT_EQ(implode::kDistanceCodeBits[at++], bits);
  }
}

TEST(Implode, UnknownHeadersAndDistancesBeforeTheStartAreBroken) {
  const Decoded broken{State::broken, {}};
  ByteVector body = imploded(sampleContent(50, 1), Literals::binary, 4);
  for (unsigned int mode = 0; mode < 256; ++mode) {
    for (unsigned int bits : {0u, 3u, 4u, 5u, 6u, 7u, 255u}) {
      body[0] = static_cast<unsigned char>(mode);
      body[1] = static_cast<unsigned char>(bits);
      const bool known = mode <= 1 && bits >= 4 && bits <= 6;
      EXPECT_EQ(decode(body) == broken, !known) << mode << ' ' << bits;
    }
  }
  for (unsigned int produced : {0u, 1u, 7u, 300u, 4000u}) {
    Model model(Literals::text, 6);
    for (unsigned int i = 0; i < produced; ++i) model.literal('x');
    model.writer.copy(9, produced + 1);
    EXPECT_TRUE(decode(model.writer.end()) == (Decoded{State::broken, model.content}));
  }
}

TEST(Blastmembuf, DeliversThroughAnyAreaAndTellsTheCheckStatus) {
  const ByteVector content = sampleContent(9000, 5);
  for (int area : {0, 1, 5, 4096, 20000}) {
    ByteVector container = legacyContainer(imploded(content, Literals::text, 6), content,
                                           area % 2 ? Check::raw : Check::standard);
    Blastmembuf buffer;
    EXPECT_EQ(buffer.CRCStatus(), 1000);
    std::vector<char> own(static_cast<std::size_t>(area));
    EXPECT_EQ(buffer.setbuf(own.data(), area) != nullptr, area > 0);
    for (int status : {0, 1000}) {
      buffer.setZipArea(reinterpret_cast<const char*>(container.data()),
                        static_cast<unsigned int>(container.size()));
      EXPECT_EQ(buffer.underflow(), content[0]);
      EXPECT_EQ(buffer.in_avail(), std::min(area ? area : 4096, 9000));
      EXPECT_EQ(buffer.setbuf(own.data(), area), nullptr) << "unread bytes would be lost";
      ByteVector read(9009);
      EXPECT_EQ(buffer.sgetn(reinterpret_cast<char*>(read.data()), 9009), 9000);
      read.resize(9000);
      EXPECT_TRUE(read == content);
      EXPECT_EQ(buffer.sgetn(reinterpret_cast<char*>(read.data()), 1), 0);
      EXPECT_EQ(buffer.CRCStatus(), status);
      container.back() ^= 1;
    }
  }
  const char zeros[16] = {};
  for (unsigned int size = 0; size <= 9; ++size) {
    Blastmembuf buffer;
    buffer.setZipArea(size < 9 ? zeros : nullptr, size);
    EXPECT_EQ(buffer.underflow(), -1);
    EXPECT_EQ(buffer.CRCStatus(), size == 8 ? 0 : 1000) << size;
  }
}
