#include "persist/implode_decoder.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace zo {

namespace {

using namespace implode;

static_assert(std::endian::native == std::endian::little, "refill loads eight bytes at once");

// ---- Tables ----

// What the next bits of the stream say. A length comes with its extra bits when they fit into the
// index of the table.
enum class Kind : std::uint8_t { literal, rareLiteral, length, longLength };
struct Token {
  std::uint16_t value = 0;  // the byte, or the length (of a longLength: its symbol)
  std::uint8_t bits = 0;    // how many of the stream's bits it takes
  Kind kind = Kind::literal;
};

constexpr Token makeToken(unsigned int value, unsigned int bits, Kind kind) {
  return {.value = static_cast<std::uint16_t>(value),
          .bits = static_cast<std::uint8_t>(bits),
          .kind = kind};
}

constexpr unsigned int kIndexBits = 11;
using TokenTable = std::array<Token, 1u << kIndexBits>;

// Enters what a code means at all indices that begin (with their low bits) with the code.
template <class Table>
constexpr void enter(Table& table, unsigned int code, typename Table::value_type meaning,
                     unsigned int codeBits) {
  for (std::size_t i = code; i < table.size(); i += std::size_t{1} << codeBits) table[i] = meaning;
}

// The first bit tells a copy (1) from a literal (0).
constexpr void enterLengths(TokenTable& table) {
  for (unsigned int symbol = 0; symbol < kLengthCodes.size(); ++symbol) {
    const unsigned int code = 1 | static_cast<unsigned int>(kLengthCodes[symbol]) << 1;
    const unsigned int bits = 1u + kLengthCodeBits[symbol];
    const unsigned int extra = kLengthExtraBits[symbol];
    if (bits + extra > kIndexBits) {
      enter(table, code, makeToken(symbol, bits, Kind::longLength), bits);
      continue;
    }
    for (unsigned int number = 0; number < 1u << extra; ++number) {
      enter(table, code | number << bits,
            makeToken(kLengthBase[symbol] + number, bits + extra, Kind::length), bits + extra);
    }
  }
}

constexpr TokenTable binaryTokens() {
  TokenTable table{};
  for (unsigned int byte = 0; byte < 256; ++byte) {
    enter(table, byte << 1, makeToken(byte, 9, Kind::literal), 9);
  }
  enterLengths(table);
  return table;
}

constexpr TokenTable textTokens() {
  TokenTable table{};
  for (Token& token : table) token.kind = Kind::rareLiteral;
  for (unsigned int byte = 0; byte < 256; ++byte) {
    const unsigned int bits = 1u + kLiteralCodeBits[byte];
    if (bits > kIndexBits) continue;
    enter(table, static_cast<unsigned int>(kLiteralCodes[byte]) << 1,
          makeToken(byte, bits, Kind::literal), bits);
  }
  enterLengths(table);
  return table;
}

// Literals whose codes do not fit into the first table all begin with the same bits, zeros: this
// one is looked up with what follows these.
constexpr unsigned int kRareZeros = 4;
using RareTable = std::array<Token, 1u << (kMaxCodeBits - kRareZeros)>;

constexpr RareTable rareLiterals() {
  RareTable table{};
  for (unsigned int byte = 0; byte < 256; ++byte) {
    const unsigned int bits = kLiteralCodeBits[byte];
    if (1 + bits <= kIndexBits) continue;
    const unsigned int code = kLiteralCodes[byte];
    if (code & ((1u << kRareZeros) - 1)) throw "a rare literal begins with another bit";
    enter(table, code >> kRareZeros, makeToken(byte, 1 + bits, Kind::literal), bits - kRareZeros);
  }
  return table;
}

struct DistanceCode {
  std::uint8_t upper = 0;
  std::uint8_t bits = 0;
};
using DistanceTable = std::array<DistanceCode, 256>;

constexpr DistanceTable distanceCodes() {
  DistanceTable table{};
  for (unsigned int upper = 0; upper < kDistanceCodes.size(); ++upper) {
    const unsigned int bits = kDistanceCodeBits[upper];
    enter(table, kDistanceCodes[upper],
          {.upper = static_cast<std::uint8_t>(upper), .bits = static_cast<std::uint8_t>(bits)},
          bits);
  }
  return table;
}

constexpr TokenTable kBinaryTokens = binaryTokens();
constexpr TokenTable kTextTokens = textTokens();
constexpr RareTable kRareLiterals = rareLiterals();
constexpr DistanceTable kDistanceTable = distanceCodes();

constexpr int kRefilledBits = 56;
// The longest token: a flag, a length, a distance.
constexpr int kMaxTokenBits = 1 + 7 + 8 + 8 + static_cast<int>(kMaxDistanceBits);
static_assert(2 * kIndexBits + kMaxTokenBits <= kRefilledBits && 6 * 9 <= kRefilledBits);

// ---- Copies ----

// Copies bytes from `distance` before `out`, where the source may run into the target. Writes up
// to 24 bytes more.
void copyBack(unsigned char* out, std::size_t distance, std::size_t length) noexcept {
  const unsigned char* from = out - distance;
  unsigned char* const end = out + length;
  if (distance == 1) {
    std::memset(out, *from, length);
    return;
  }
  if (distance < 8) {
    // After eight bytes one by one the pattern also repeats at a multiple of the distance that is
    // no less than eight.
    for (int i = 0; i < 8; ++i) out[i] = from[i];
    out += 8;
    from = out - distance * ((7 + distance) / distance);
  }
  // Most copies are short: their number of steps is always the same.
  std::memcpy(out, from, 8);
  std::memcpy(out + 8, from + 8, 8);
  for (out += 16, from += 16; out < end; out += 8, from += 8) std::memcpy(out, from, 8);
}

}  // namespace

// ---- Bits ----

inline void ImplodeDecoder::BitReader::refill() noexcept {
  if (end_ - at_ < 8) {
    refillAtBorder();
    return;
  }
  // Bits above available_ may stand already; they are those of the same bytes.
  std::uint64_t word;
  std::memcpy(&word, at_, 8);
  bits_ |= word << available_;
  at_ += (63 - available_) >> 3;
  available_ |= 56;
}

// Byte by byte, across the border of two pieces.
void ImplodeDecoder::BitReader::refillAtBorder() noexcept {
  while (available_ < 56) {
    if (at_ == end_) {
      if (sourceEnded_) return;
      const Bytes piece = source_->next();
      at_ = piece.data();
      end_ = at_ + piece.size();
      sourceEnded_ = piece.empty();
      continue;
    }
    bits_ |= static_cast<std::uint64_t>(*at_++) << available_;
    available_ += 8;
  }
}

// ---- Runs ----

bool ImplodeDecoder::readHeader() noexcept {
  in_.refill();
  const unsigned int mode = in_.take(8);
  distanceBits_ = in_.take(8);
  codedLiterals_ = mode == 1;
  return in_.available() >= 0 && mode <= 1 && distanceBits_ >= kMinDistanceBits &&
         distanceBits_ <= kMaxDistanceBits;
}

// Which tokens come is unpredictable, and a wrongly predicted question costs more than all the rest
// of a token. So after a refill the literals that come first are taken with no more questions than
// needed: of coded ones up to two, after which there is room for any other token.
inline unsigned char* ImplodeDecoder::BitReader::takeCodedLiterals(unsigned char* out) noexcept {
  for (int i = 0; i < 2; ++i) {
    const Token token = kTextTokens[peek(kIndexBits)];
    if (token.kind != Kind::literal) break;
    *out++ = static_cast<unsigned char>(token.value);
    skip(token.bits);
  }
  return out;
}

// Of plain ones up to six, with no question at all: each takes nine bits, the first of which is 0.
inline unsigned char* ImplodeDecoder::BitReader::takePlainLiterals(unsigned char* out) noexcept {
  constexpr std::uint64_t kFlags =
      1 | 1ull << 9 | 1ull << 18 | 1ull << 27 | 1ull << 36 | 1ull << 45;
  const auto bits = static_cast<unsigned int>(std::countr_zero((bits_ & kFlags) | 1ull << 54));
  std::uint64_t literals = 0;
  for (int i = 0; i < 6; ++i) literals |= bits_ >> (1 + i) & 0xFFull << 8 * i;
  std::memcpy(out, &literals, sizeof literals);
  skip(bits);
  refill();
  return out + bits / 9;
}

// Decodes to `out`; nothing before `floor` exists. Returns the end of what was decoded.
template <bool coded>
unsigned char* ImplodeDecoder::decodeRun(unsigned char* out, const unsigned char* floor) noexcept {
  BitReader in = in_;  // a copy stays in registers
  constexpr const TokenTable& tokens = coded ? kTextTokens : kBinaryTokens;
  const unsigned char* const limit = out + kRun;
  while (out < limit) {
    in.refill();
    if (in.available() >= kRefilledBits) {
      out = coded ? in.takeCodedLiterals(out) : in.takePlainLiterals(out);
    }
    Token token = tokens[in.peek(kIndexBits)];
    if (token.kind == Kind::rareLiteral) {
      token = kRareLiterals[in.peek(1 + kMaxCodeBits) >> (1 + kRareZeros)];
    }
    in.skip(token.bits);
    if (token.kind == Kind::literal) {
      if (in.available() < 0) {
        state_ = State::cut;
        break;
      }
      *out++ = static_cast<unsigned char>(token.value);
      continue;
    }
    std::size_t length = token.value;
    if (token.kind == Kind::longLength) {
      length = kLengthBase[token.value] + in.take(kLengthExtraBits[token.value]);
    }
    if (length == kEndLength) {
      state_ = State::complete;  // it ends in ones: no bit of it is one that does not exist
      break;
    }
    const DistanceCode code = kDistanceTable[in.peek(8)];
    in.skip(code.bits);
    const unsigned int lowerBits = length == kShortCopy ? kShortCopyDistanceBits : distanceBits_;
    const std::size_t distance =
        1 + (static_cast<std::size_t>(code.upper) << lowerBits | in.take(lowerBits));
    if (in.available() < 0) {
      state_ = State::cut;
      break;
    }
    if (distance > static_cast<std::size_t>(out - floor)) {
      state_ = State::broken;
      break;
    }
    copyBack(out, distance, length);
    out += length;
  }
  in_ = in;
  return out;
}

Bytes ImplodeDecoder::next() noexcept {
  if (state_ != State::running) return {};
  if (!started_) {
    started_ = true;
    if (!readHeader()) {
      state_ = State::broken;
      return {};
    }
  }
  unsigned char* const begin = buffer_.data() + kHistory;
  // A run that another one follows is longer than the history.
  const std::size_t history = std::min(kHistory, runSize_);
  std::memmove(begin - history, begin + runSize_ - history, history);
  unsigned char* const end = codedLiterals_ ? decodeRun<true>(begin, begin - history)
                                            : decodeRun<false>(begin, begin - history);
  runSize_ = static_cast<std::size_t>(end - begin);
  return {begin, runSize_};
}

}  // namespace zo
