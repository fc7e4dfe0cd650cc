#include <cstddef>
#include <cstdint>
#include <immintrin.h>

#include "filetypes/dwop/DWOPDecodeBlock.h"
#include "filetypes/dwop/DWOPDecodeKernels.h"

namespace NSTambraPacking {

namespace {

constexpr std::uint64_t kBelowTop = ~std::uint64_t{0} >> 1;

[[gnu::always_inline]] inline std::uint64_t LeadingZeros(std::uint64_t value) {
  // The intrinsic makes g++ clear the register first, for processors long gone.
  std::uint64_t zeros;
  asm("lzcnt %1, %0" : "=r"(zeros) : "r"(value) : "cc");
  return zeros;
}

/// The first bit in the highest place. Behind the fAvailable bits that count there may be more of
/// the stream's bits, but nothing else: they are merged in once more.
class CBitsAVX2 {
 public:
  [[gnu::always_inline]] static CBitsAVX2 At(const std::uint8_t* bytes, std::size_t bit) {
    CBitsAVX2 bits;
    bits.fNext = bytes + bit / 8;
    bits.Refill();
    bits.Skip(bit % 8);
    return bits;
  }

  [[gnu::always_inline]] void Refill() {
    std::uint64_t word;
    __builtin_memcpy(&word, fNext, sizeof(word));
    fBits |= __builtin_bswap64(word) >> (fAvailable & 63);
    fNext += (~fAvailable & 56) >> 3;
    fAvailable |= 56;
  }
  bool IsLow() const { return (fAvailable & 32) == 0; }
  std::uint64_t Zeros() const { return LeadingZeros(fBits); }
  [[gnu::always_inline]] void Skip(std::uint64_t count) {
    fBits <<= count & 63;
    fAvailable -= count;
  }

  /// With the modulus m shifted up until its highest bit is bit 63, and the bits behind the stop
  /// bit from bit 62 down, the remainder is of the long form exactly when the sum of both carries:
  /// it says of the first b - 1 bits r that r + m >= 2^b. Then m - 2^b is added, which is the
  /// shifted m shifted down again with its sign.
  [[gnu::always_inline]] std::uint32_t ReadCode(std::uint64_t zeros, std::uint64_t modulus) {
    const std::uint64_t payload = fBits << (zeros & 63) & kBelowTop;
    std::uint64_t shift = LeadingZeros(modulus);
    std::uint64_t raised = modulus << (shift & 63);
    const std::uint64_t shortBase = zeros * modulus;
    std::uint64_t base =
        shortBase + static_cast<std::uint64_t>(static_cast<std::int64_t>(raised) >> (shift & 63));
    // A compiler may make a branch of this, which would be a coin's toss.
    asm("add %[payload], %[raised]\n\t"
        "cmovae %[shortBase], %[base]\n\t"
        "sbb $0, %[shift]"
        : [raised] "+r"(raised), [base] "+r"(base), [shift] "+r"(shift)
        : [payload] "r"(payload), [shortBase] "r"(shortBase)
        : "cc");
    const auto value = static_cast<std::uint32_t>((payload >> (shift & 63)) + base);
    Skip(zeros - shift);
    return value;
  }

  std::size_t Position(const std::uint8_t* bytes) const {
    return static_cast<std::size_t>(fNext - bytes) * 8 - (fAvailable & 63);
  }

 private:
  std::uint64_t fBits = 0;
  const std::uint8_t* fNext = nullptr;
  /// Modulo 64.
  std::uint64_t fAvailable = 0;
};

[[gnu::always_inline]] inline __m256i ZigzagFromError(__m256i error) {
  return _mm256_xor_si256(_mm256_add_epi32(error, error), _mm256_srai_epi32(error, 31));
}

[[gnu::always_inline]] inline __m256i ErrorFromZigzag(__m256i zigzag) {
  const __m256i sign = _mm256_srai_epi32(_mm256_slli_epi32(zigzag, 31), 31);
  return _mm256_xor_si256(_mm256_srli_epi32(zigzag, 1), sign);
}

[[gnu::always_inline]] inline __m256i Follow(__m256i sums, __m256i zigzags) {
  return _mm256_add_epi32(_mm256_sub_epi32(sums, _mm256_srli_epi32(sums, 5)), zigzags);
}

/// The halves are of the first and the second channel (mono: twice the same).
[[gnu::always_inline]] inline __m256i Halves(const std::uint32_t* first,
                                             const std::uint32_t* second) {
  return _mm256_inserti128_si256(
      _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(first))),
      _mm_loadu_si128(reinterpret_cast<const __m128i*>(second)), 1);
}

[[gnu::always_inline]] inline __m128i Half(__m256i vector, unsigned channel) {
  return channel == 0 ? _mm256_castsi256_si128(vector) : _mm256_extracti128_si256(vector, 1);
}

[[gnu::always_inline]] inline unsigned Mask(__m256i lanes) {
  return static_cast<unsigned>(_mm256_movemask_ps(_mm256_castsi256_ps(lanes)));
}

constexpr std::uint32_t kNone = 0x80808080, kFirst = 0x03020100, kAll = 0xFFFFFFFF;
/// By order: a byte shuffle that puts the order's prediction into all lanes; the lanes of orders 1
/// to 4 that are below the order, and the lane of order 0.
alignas(16) constexpr std::uint32_t kSelects[5][4] = {
    {kNone, kNone, kNone, kNone},
    {kFirst, kFirst, kFirst, kFirst},
    {0x07060504, 0x07060504, 0x07060504, 0x07060504},
    {0x0B0A0908, 0x0B0A0908, 0x0B0A0908, 0x0B0A0908},
    {0x0F0E0D0C, 0x0F0E0D0C, 0x0F0E0D0C, 0x0F0E0D0C}};
alignas(16) constexpr std::uint32_t kBelow[5][4] = {
    {0, 0, 0, 0}, {0, 0, 0, 0}, {kAll, 0, 0, 0}, {kAll, kAll, 0, 0}, {kAll, kAll, kAll, 0}};
alignas(16) constexpr std::uint32_t kSideBelow[5][4] = {
    {0, 0, 0, 0}, {kAll, 0, 0, 0}, {kAll, 0, 0, 0}, {kAll, 0, 0, 0}, {kAll, 0, 0, 0}};

template <bool kStereo, bool kWide>
class CPredictorsAVX2 {
 public:
  [[gnu::always_inline]] explicit CPredictorsAVX2(const CDWOPDecodeState& state) {
    const CDWOPDecodeChannel& first = state.fChannels[0];
    const CDWOPDecodeChannel& second = state.fChannels[kStereo];
    fErrors = Halves(first.fErrors, second.fErrors);
    fSums = Halves(first.fSums + 1, second.fSums + 1);
    fSide = Halves(first.fSums, second.fSums);
    fSeen = _mm256_setzero_si256();
    Choose();
  }

  [[gnu::always_inline]] void Choose() {
    const __m256i order0 = _mm256_shuffle_epi32(fSide, 0);
    __m256i least = _mm256_min_epu32(fSums, order0);
    least = _mm256_min_epu32(least, _mm256_shuffle_epi32(least, 0x4E));
    least = _mm256_min_epu32(least, _mm256_shuffle_epi32(least, 0xB1));
    fSide = _mm256_blend_epi32(least, order0, 0x11);
    const unsigned zero = Mask(_mm256_cmpeq_epi32(order0, least));
    const unsigned others = Mask(_mm256_cmpeq_epi32(fSums, least));
    const std::uint32_t first = _tzcnt_u32((zero & 1) | (others & 15) << 1);
    const std::uint32_t second = _tzcnt_u32((zero >> 4 & 1) | (others >> 4) << 1);
    fSelect = Halves(kSelects[first], kSelects[second]);
    fBelow = Halves(kBelow[first], kBelow[second]);
    fSideBelow = Halves(kSideBelow[first], kSideBelow[second]);
  }

  [[gnu::always_inline]] std::uint32_t FirstSum() const { return SumOf(0); }
  [[gnu::always_inline]] std::uint32_t SecondSum() const { return SumOf(kStereo); }

  [[gnu::always_inline]] bool TakeIn(std::uint32_t first, std::uint32_t second,
                                     std::int32_t* values) {
    const __m256i zigzag = Spread(first, second);
    const __m256i twofold = _mm256_add_epi32(fErrors, _mm256_bslli_epi128(fErrors, 4));
    const __m256i predictions = _mm256_add_epi32(twofold, _mm256_bslli_epi128(twofold, 8));
    const __m256i value =
        _mm256_add_epi32(ErrorFromZigzag(zigzag), _mm256_shuffle_epi8(predictions, fSelect));
    const __m256i errors = _mm256_sub_epi32(value, predictions);
    const __m256i valueZigzag = ZigzagFromError(value);
    fErrors = _mm256_alignr_epi8(errors, value, 12);
    fSums = Follow(fSums, ZigzagFromError(errors));
    fSide = Follow(fSide, _mm256_blend_epi32(zigzag, valueZigzag, 0x11));
    fSeen = _mm256_or_si256(fSeen, valueZigzag);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(values), Half(value, 0));
    if constexpr (kStereo) {
      constexpr std::size_t kDistance = offsetof(CDWOPBlockValues, fSecond) / sizeof(std::int32_t);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(values + kDistance), Half(value, 1));
    }
    return HasChanged();
  }

  [[gnu::always_inline]] bool SawAbove(std::uint32_t limit) const {
    return !_mm256_testz_si256(fSeen, _mm256_set1_epi32(static_cast<int>(~(limit - 1))));
  }

  [[gnu::always_inline]] void Save(CDWOPDecodeState& state) const {
    const auto save = [](std::uint32_t* to, __m128i from) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(to), from);
    };
    for (unsigned i = 0; i < (kStereo ? 2 : 1); ++i) {
      CDWOPDecodeChannel& channel = state.fChannels[i];
      save(channel.fErrors, Half(fErrors, i));
      save(channel.fSums, Half(fSide, i));
      save(channel.fSums + 1, Half(fSums, i));
    }
  }

 private:
  /// True when a lower order's sum is not above the assumed one's, or a higher order's is below.
  [[gnu::always_inline]] bool HasChanged() const {
    const __m256i assumed = _mm256_shuffle_epi32(fSide, 0xFF);
    const __m256i side = _mm256_add_epi32(fSide, fSideBelow);
    if constexpr (!kWide) {
      const __m256i least = _mm256_min_epi32(_mm256_add_epi32(fSums, fBelow), side);
      return Mask(_mm256_cmpgt_epi32(assumed, least)) != 0;
    }
    // The sums of orders 1 to 4 may be any 32 bits; those assumed and of order 0 are below 2^31.
    const __m256i needed = _mm256_sub_epi32(assumed, fBelow);
    const __m256i holds = _mm256_cmpeq_epi32(_mm256_min_epu32(fSums, needed), needed);
    return Mask(_mm256_andnot_si256(_mm256_cmpgt_epi32(assumed, side), holds)) != 0xFF;
  }

  [[gnu::always_inline]] std::uint32_t SumOf(unsigned channel) const {
    return static_cast<std::uint32_t>(_mm_extract_epi32(Half(fSide, channel), 1));
  }

  [[gnu::always_inline]] static __m256i Spread(std::uint32_t first, std::uint32_t second) {
    const __m128i low = _mm_cvtsi32_si128(static_cast<int>(first));
    if constexpr (!kStereo) return _mm256_broadcastd_epi32(low);
    const __m128i high = _mm_cvtsi32_si128(static_cast<int>(second));
    return _mm256_shuffle_epi32(_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1), 0);
  }

  /// Of orders 0 to 3.
  __m256i fErrors;
  /// Of orders 1 to 4.
  __m256i fSums;
  /// The sum of order 0 in the first lane, that of the assumed order in the others.
  __m256i fSide;
  /// The zigzags of all values, or-ed.
  __m256i fSeen;
  /// From the tables, for the assumed orders.
  __m256i fSelect;
  __m256i fBelow;
  __m256i fSideBelow;
};

struct CFormAVX2 {
  using CBits = CBitsAVX2;
  template <bool kStereo, bool kWide>
  using CPredictors = CPredictorsAVX2<kStereo, kWide>;

  template <bool kStereo>
  [[gnu::always_inline]] static void Write(const CDWOPBlockValues& values, unsigned width,
                                           std::int32_t* output, std::size_t frames) {
    const int unusedBits = static_cast<int>(32 - width);
    const auto narrow = [unused = _mm_cvtsi32_si128(unusedBits)](__m256i vector) {
      return _mm256_sra_epi32(_mm256_sll_epi32(vector, unused), unused);
    };
    const auto narrowOne = [unusedBits](std::uint32_t value) {
      return static_cast<std::int32_t>(value << unusedBits) >> unusedBits;
    };
    const auto load = [](const std::int32_t* from) {
      return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
    };
    const auto store = [](std::int32_t* to, __m256i vector) {
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), vector);
    };
    std::size_t i = 0;
    for (; i + 8 <= frames; i += 8) {
      const __m256i first = load(values.fFirst + i);
      const __m256i left = narrow(first);
      if constexpr (kStereo) {
        const __m256i right = narrow(_mm256_add_epi32(first, load(values.fSecond + i)));
        const __m256i low = _mm256_unpacklo_epi32(left, right);
        const __m256i high = _mm256_unpackhi_epi32(left, right);
        store(output + 2 * i, _mm256_permute2x128_si256(low, high, 0x20));
        store(output + 2 * i + 8, _mm256_permute2x128_si256(low, high, 0x31));
      } else {
        store(output + i, left);
      }
    }
    for (; i < frames; ++i) {
      const auto first = static_cast<std::uint32_t>(values.fFirst[i]);
      output[kStereo ? 2 * i : i] = narrowOne(first);
      if constexpr (kStereo) {
        output[2 * i + 1] = narrowOne(first + static_cast<std::uint32_t>(values.fSecond[i]));
      }
    }
  }
};

}  // namespace

std::size_t DecodeDWOPFramesAVX2(CDWOPDecodeState& state, std::int32_t* output,
                                 std::size_t frames) {
  return DecodeDWOPFramesBy<CFormAVX2>(state, output, frames);
}

}  // namespace NSTambraPacking
