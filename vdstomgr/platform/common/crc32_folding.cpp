#include "vdstomgr/platform/common/crc32_folding.h"

#include <cstdint>

#if (defined(__GNUC__) || defined(__clang__)) && (defined(__x86_64__) || defined(__i386__))
#define VDSTO_FOLDS_CRC32 1
#include <immintrin.h>

#define VDSTO_NARROW __attribute__((target("pclmul,sse4.1")))
#define VDSTO_WIDE __attribute__((target("avx512f,vpclmulqdq")))
#endif

namespace vdstomgr {

#if defined(VDSTO_FOLDS_CRC32)
namespace {

/// x to the power of `exponent` modulo the CRC's polynomial, bits in reflected order, as the
/// carry-less multiplication of reflected numbers wants it.
constexpr std::uint64_t PowerOfX(int exponent) {
  constexpr DWORD kPolynomial = 0xEDB88320;
  DWORD power = 0x80000000;
  for (; exponent > 0; --exponent) power = power >> 1 ^ ((power & 1) != 0 ? kPolynomial : 0);
  return std::uint64_t{power} << 1;
}

/// Moves 16 bytes `kBits` bits on: its two halves times what those bits are worth.
struct Step {
  std::uint64_t low;
  std::uint64_t high;
};
template <int kBits>
constexpr Step kStep{PowerOfX(kBits + 32), PowerOfX(kBits - 32)};

VDSTO_NARROW inline __m128i Load(const void* at) {
  return _mm_loadu_si128(static_cast<const __m128i*>(at));
}

VDSTO_NARROW inline __m128i Fold(__m128i sum, __m128i step, __m128i next) {
  const __m128i low = _mm_clmulepi64_si128(sum, step, 0x00);
  const __m128i high = _mm_clmulepi64_si128(sum, step, 0x11);
  return _mm_xor_si128(_mm_xor_si128(low, high), next);
}

/// The bytes so far, in the places of the next 64.
struct Lanes {
  __m128i first;
  __m128i second;
  __m128i third;
  __m128i fourth;
};

VDSTO_NARROW inline Lanes LoadLanes(const BYTE* at) {
  return {Load(at), Load(at + 16), Load(at + 32), Load(at + 48)};
}

VDSTO_NARROW inline void FoldBlock(Lanes& lanes, __m128i step, const BYTE* at) {
  lanes.first = Fold(lanes.first, step, Load(at));
  lanes.second = Fold(lanes.second, step, Load(at + 16));
  lanes.third = Fold(lanes.third, step, Load(at + 32));
  lanes.fourth = Fold(lanes.fourth, step, Load(at + 48));
}

VDSTO_WIDE inline __m512i FoldWide(__m512i sum, __m512i step, __m512i next) {
  const __m512i low = _mm512_clmulepi64_epi128(sum, step, 0x00);
  const __m512i high = _mm512_clmulepi64_epi128(sum, step, 0x11);
  return _mm512_xor_si512(_mm512_xor_si512(low, high), next);
}

/// A step for each of the four lanes.
template <int kBits>
VDSTO_WIDE inline __m512i WideStep() {
  static constexpr Step kSteps[] = {kStep<kBits>, kStep<kBits>, kStep<kBits>, kStep<kBits>};
  return _mm512_loadu_si512(kSteps);
}

/// As many blocks of kWideBytes as there are, at least one, with processors that multiply four at a
/// time. `lanes` takes 64 bytes. Wide registers that were not cleared would cost the narrow code
/// that follows some microseconds.
constexpr std::size_t kWideBytes = 256;

VDSTO_WIDE void FoldWideBlocks(const BYTE* data, std::size_t size, DWORD crc_register,
                               BYTE* lanes) {
  const __m512i start = _mm512_zextsi128_si512(_mm_cvtsi32_si128(static_cast<int>(crc_register)));
  __m512i first = _mm512_xor_si512(_mm512_loadu_si512(data), start);
  __m512i second = _mm512_loadu_si512(data + 64);
  __m512i third = _mm512_loadu_si512(data + 128);
  __m512i fourth = _mm512_loadu_si512(data + 192);
  const __m512i block_step = WideStep<2048>();
  for (const BYTE* at = data + kWideBytes; at + kWideBytes <= data + size; at += kWideBytes) {
    first = FoldWide(first, block_step, _mm512_loadu_si512(at));
    second = FoldWide(second, block_step, _mm512_loadu_si512(at + 64));
    third = FoldWide(third, block_step, _mm512_loadu_si512(at + 128));
    fourth = FoldWide(fourth, block_step, _mm512_loadu_si512(at + 192));
  }
  const __m512i step = WideStep<512>();
  const __m512i sum = FoldWide(FoldWide(FoldWide(first, step, second), step, third), step, fourth);
  _mm512_storeu_si512(lanes, sum);
  _mm256_zeroupper();
}

/// Not on Windows, where compilers do not align what wide registers are saved to.
bool CanFoldWide() {
#if defined(_WIN32)
  return false;
#else
  static const bool can = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("vpclmulqdq");
  return can;
#endif
}

}  // namespace

bool CanFoldCrc32() {
  static const bool can = __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("sse4.1");
  return can;
}

VDSTO_NARROW FoldedCrc32 FoldCrc32(const BYTE* data, std::size_t size, DWORD crc_register) {
  const bool is_wide = size >= kWideBytes && CanFoldWide();
  BYTE wide[64];
  if (is_wide) FoldWideBlocks(data, size, crc_register, wide);
  Lanes lanes = LoadLanes(is_wide ? wide : data);
  if (!is_wide) {
    lanes.first = _mm_xor_si128(lanes.first, _mm_cvtsi32_si128(static_cast<int>(crc_register)));
  }
  const __m128i block_step = Load(&kStep<512>);
  for (std::size_t at = is_wide ? size / kWideBytes * kWideBytes : kCrcFoldBytes; at < size;
       at += kCrcFoldBytes) {
    FoldBlock(lanes, block_step, data + at);
  }
  const __m128i step = Load(&kStep<128>);
  const __m128i sum =
      Fold(Fold(Fold(lanes.first, step, lanes.second), step, lanes.third), step, lanes.fourth);
  FoldedCrc32 folded;
  _mm_storeu_si128(reinterpret_cast<__m128i*>(folded.bytes), sum);
  return folded;
}

#else

bool CanFoldCrc32() {
  return false;
}

FoldedCrc32 FoldCrc32(const BYTE*, std::size_t, DWORD) {
  return {};
}

#endif

}  // namespace vdstomgr
