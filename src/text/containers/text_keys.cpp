#include <zo/text/containers/text_keys.h>
#include <zo/text/containers/vtree.h>

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstdint>
#include <exception>
#include <random>

#include "text/code_units.h"
#include "text/collation.h"
#include "text/eight_units.h"
#include "text/hash.h"
#include "text/letter_case.h"
#include "text/plain_order.h"

namespace zo {
namespace {

// 0xFFFF for each of eight units that are equal.
__m128i equal8(const wchar_t* a, const wchar_t* b) noexcept {
  return _mm_cmpeq_epi16(upperAscii8(load8(a)), upperAscii8(load8(b)));
}

constexpr std::uint64_t kPrime = 0x7FFFFFFF;

// Drawn once by each process, so that nobody can tell it beforehand.
std::uint64_t drawPoint() noexcept {
  std::uint64_t drawn = 0;
  try {
    std::random_device device;
    drawn = device();
  } catch (const std::exception&) {
    drawn = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
  }
  return kPrime / 2 + drawn % (kPrime / 2);
}

}  // namespace

HashedKey hashText(const wchar_t* text, std::size_t length) noexcept {
  const HashedKey folded = hashFolded(text, length);
  if (folded.plain()) return folded;
  auto hash = static_cast<std::uint32_t>(length);  // the steps of hashFolded
  const wchar_t* const fold = foldTable();
  for (std::size_t i = 0; i < length; ++i) hash = std::rotl(hash, 5) ^ fold[text[i]];
  return {hash, false};
}

// The folded text as a polynomial, at a point that the process has drawn: two texts of n units are
// alike at n of 2^31 points at most.
unsigned fingerprintText(const wchar_t* text, std::size_t length) noexcept {
  static const std::uint64_t point = drawPoint();
  const wchar_t* const fold = foldTable();
  std::uint64_t value = 1;
  for (std::size_t i = 0; i < length; ++i) {
    value = value * point + fold[text[i]];
    value = (value & kPrime) + (value >> 31);
    value = (value & kPrime) + (value >> 31);
  }
  return static_cast<unsigned>(value % kPrime);
}

std::uint32_t frontOfText(const wchar_t* text, std::size_t length) noexcept {
  const PlainOrder* const order = PlainOrder::ofUser();
  static_assert(PlainOrder::kFrontBits + kFrontKindBits == 32);
  static_assert(PlainOrder::kLocales < 1u << kFrontKindBits);
  const std::uint32_t front = order ? order->frontOf({text, length}) : 0;
  return front != 0 ? front << kFrontKindBits | order->number() : 0;
}

bool equalTexts(std::wstring_view a, std::wstring_view b) noexcept {
  if (a.size() != b.size() || a == b) return a.size() == b.size();  // without the table
  const wchar_t* const fold = foldTable();
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [fold](wchar_t x, wchar_t y) { return fold[x] == fold[y]; }) &&
         equalIgnoreCase(a, b);
}

bool equalPlainTexts(const wchar_t* a, const wchar_t* b, std::size_t length) noexcept {
  if (a == b) return true;
  if (length < kLane) {
    for (std::size_t i = 0; i < length; ++i) {
      if (upperAscii(a[i]) != upperAscii(b[i])) return false;
    }
    return true;
  }
  // Up to 24 units in three steps that overlap, without a branch on the length; then what lies
  // between.
  const std::size_t last = length - kLane;
  const std::size_t second = last < kLane ? last : kLane;
  __m128i equal = _mm_and_si128(equal8(a, b), equal8(a + last, b + last));
  equal = _mm_and_si128(equal, equal8(a + second, b + second));
  for (std::size_t i = 2 * kLane; i < last; i += kLane)
    equal = _mm_and_si128(equal, equal8(a + i, b + i));
  return mask8(equal) == 0xFFFF;
}

}  // namespace zo
