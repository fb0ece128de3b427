#include "text/hash.h"

#include <bit>
#include <cstdint>
#include <cstring>

#include "text/units.h"

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

unsigned int hashFolded(std::wstring_view text) noexcept {
  const wchar_t* at = text.data();
  size_t left = text.size();
  auto h = static_cast<std::uint32_t>(left);
  if (left >= kLane) {
    const __m128i zero = _mm_setzero_si128();
    __m128i lanes = startLanes(h);
    for (; left >= kLane; left -= kLane, at += kLane) {
      const __m128i units = upperAscii8(load8(at));
      lanes = stepLanes(lanes, _mm_unpacklo_epi16(units, zero));
      lanes = stepLanes(lanes, _mm_unpackhi_epi16(units, zero));
    }
    h = joinLanes(lanes);
  }
  for (; left > 0; --left, ++at) h = step(h, upperAscii(*at));
  return h;
}

}  // namespace zo
