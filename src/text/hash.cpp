#include "text/hash.h"

#include <bit>
#include <cstdint>
#include <cstring>

#include "text/code_units.h"
#include "text/eight_units.h"

namespace zo {
namespace {

std::uint32_t wordAt(const wchar_t* at) noexcept {
  std::uint32_t word;
  std::memcpy(&word, at, sizeof word);
  return word;
}

std::uint32_t step(std::uint32_t h, std::uint32_t word) noexcept { return std::rotl(h, 5) ^ word; }

// Four steps at once, in each of four lanes: lane k takes words k, k + 4, k + 8, ...
__m128i stepLanes(__m128i h, __m128i words) noexcept {
  return _mm_xor_si128(_mm_or_si128(_mm_slli_epi32(h, 20), _mm_srli_epi32(h, 12)), words);
}

std::uint32_t joinLanes(__m128i h) noexcept {
  alignas(16) std::uint32_t lane[4];
  _mm_store_si128(reinterpret_cast<__m128i*>(lane), h);
  return std::rotl(lane[0], 15) ^ std::rotl(lane[1], 10) ^ std::rotl(lane[2], 5) ^ lane[3];
}

// The start value as a lane state: as if it were word 3 of the group before the first.
__m128i startLanes(std::uint32_t h) noexcept { return _mm_set_epi32(static_cast<int>(h), 0, 0, 0); }

}  // namespace

unsigned int hashExact(std::wstring_view text) noexcept {
  const wchar_t* at = text.data();
  size_t left = text.size();
  auto h = static_cast<std::uint32_t>(left);
  if (left >= kLane) {
    __m128i lanes = startLanes(h);
    for (; left >= kLane; left -= kLane, at += kLane) lanes = stepLanes(lanes, load8(at));
    h = joinLanes(lanes);
  }
  for (; left >= 2; left -= 2, at += 2) h = step(h, wordAt(at));
  return left == 0 ? h : step(h, static_cast<std::uint32_t>(*at) << 16);
}

HashedKey hashFolded(const wchar_t* text, std::size_t length) noexcept {
  const wchar_t* at = text;
  size_t left = length;
  auto h = static_cast<std::uint32_t>(left);
  if (left < kLane) {
    bool printable = true;
    for (; left > 0; --left, ++at) {
      printable &= *at >= L' ' && *at <= L'~';
      h = step(h, upperAscii(*at));
    }
    return {h, printable};
  }
  __m128i printable = _mm_set1_epi16(-1);
  const auto addEight = [&](__m128i lanes, __m128i units) {
    units = upperAscii8(units);
    lanes = stepLanes(lanes, _mm_unpacklo_epi16(units, _mm_setzero_si128()));
    return stepLanes(lanes, _mm_unpackhi_epi16(units, _mm_setzero_si128()));
  };
  __m128i lanes = startLanes(h);
  for (; left >= kLane; left -= kLane, at += kLane) {
    const __m128i units = load8(at);
    printable = _mm_and_si128(printable, between8(units, L' ', L'~'));
    lanes = addEight(lanes, units);
  }
  h = joinLanes(lanes);
  // The rest without a loop: the last eight units with those that were taken already set to zero,
  // which adds nothing.
  const __m128i units = load8(at + left - kLane);
  printable = _mm_and_si128(printable, between8(units, L' ', L'~'));
  const __m128i index = _mm_set_epi16(7, 6, 5, 4, 3, 2, 1, 0);
  const __m128i taken = _mm_cmplt_epi16(index, _mm_set1_epi16(static_cast<short>(kLane - left)));
  const std::uint32_t rest =
      joinLanes(addEight(_mm_setzero_si128(), _mm_andnot_si128(taken, units)));
  return {std::rotl(h, static_cast<int>(5 * left % 32)) ^ rest, mask8(printable) == 0xFFFF};
}

}  // namespace zo
