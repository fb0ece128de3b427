#include "bytes/crc32_fold.h"

#include <wmmintrin.h>

// GCC and Clang compile an instruction set for functions that ask for it.
#ifdef __GNUC__
#include <cpuid.h>
#define ZO_WITH_PCLMUL __attribute__((target("pclmul")))
#else
#include <intrin.h>
#define ZO_WITH_PCLMUL
#endif

namespace zo {
namespace {

// x^bits modulo the polynomial, reflected; the one more bit makes up for that a product of
// reflected factors comes out one bit short.
constexpr std::uint64_t power(unsigned int bits) {
  std::uint32_t value = 0x80000000;
  for (; bits; --bits) value = (value >> 1) ^ (value & 1 ? 0xEDB88320 : 0);
  return std::uint64_t{value} << 1;
}
static_assert(power(4 * 128 + 32) == 0x154442BD4 && power(128 - 32) == 0x0CCAA009E);

template <unsigned int kBits>
__m128i powersFor() {
  constexpr auto kLow = static_cast<long long>(power(kBits + 32));
  constexpr auto kHigh = static_cast<long long>(power(kBits - 32));
  return _mm_set_epi64x(kHigh, kLow);
}

// What lies so many bits ahead of `next` as the powers are for, moved onto it.
ZO_WITH_PCLMUL inline __m128i folded(__m128i ahead, __m128i powers, __m128i next) {
  const __m128i low = _mm_clmulepi64_si128(ahead, powers, 0x00);
  const __m128i high = _mm_clmulepi64_si128(ahead, powers, 0x11);
  return _mm_xor_si128(_mm_xor_si128(low, high), next);
}

inline __m128i unitAt(const unsigned char* at) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
}

}  // namespace

bool canFoldCrc() noexcept {
  constexpr unsigned int kPclmul = 1 << 1;  // of ecx
#ifdef __GNUC__
  unsigned int eax = 0, ebx = 0, ecx = 0, edx = 0;
  return __get_cpuid(1, &eax, &ebx, &ecx, &edx) && (ecx & kPclmul) != 0;
#else
  int registers[4] = {};
  __cpuid(registers, 1);
  return (static_cast<unsigned int>(registers[2]) & kPclmul) != 0;
#endif
}

ZO_WITH_PCLMUL std::array<unsigned char, kFoldUnit> foldCrc(std::uint32_t crc, Bytes run) noexcept {
  const unsigned char* at = run.data();
  const unsigned char* const end = at + run.size();
  __m128i a = _mm_xor_si128(unitAt(at), _mm_cvtsi32_si128(static_cast<int>(crc)));
  __m128i b = unitAt(at + 16), c = unitAt(at + 32), d = unitAt(at + 48);
  const __m128i byFour = powersFor<4 * 128>();
  for (at += kFoldLeast; end - at >= 64; at += 64) {
    a = folded(a, byFour, unitAt(at));
    b = folded(b, byFour, unitAt(at + 16));
    c = folded(c, byFour, unitAt(at + 32));
    d = folded(d, byFour, unitAt(at + 48));
  }
  const __m128i byOne = powersFor<128>();
  a = folded(folded(folded(a, byOne, b), byOne, c), byOne, d);
  for (; at != end; at += kFoldUnit) a = folded(a, byOne, unitAt(at));
  std::array<unsigned char, kFoldUnit> left;
  _mm_storeu_si128(reinterpret_cast<__m128i*>(left.data()), a);
  return left;
}

}  // namespace zo
