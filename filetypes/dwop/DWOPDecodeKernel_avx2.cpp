#include <cstddef>
#include <cstdint>
#include <immintrin.h>

#include "filetypes/dwop/DWOPDecodeKernels.h"

/// The decoder for processors with AVX2, one frame after the other.
///
/// What is long in decoding is the way from a residual over the sample, its five errors and five
/// sums to the order of the next value. It is not waited for: scalar registers follow the sum of
/// the order chosen last, and the next value is read as if the order stayed. Vectors compute all
/// orders of both channels beside it, and a branch that is seldom taken finds that another order
/// has become best; then the scalars are set anew. So the processor reads bits some frames ahead
/// of the sums, and nothing is ever undone by the program.
///
/// A block of frames is decoded without any test for what seldom happens (sums beyond their range
/// after damage, above all): a sum of all values seen is tested at its end. A block that fails, or
/// meets something that is not handled here, is dropped as if it had not been begun.
namespace NSTambraPacking {

namespace {

constexpr std::size_t kBlockFrames = 256;
constexpr std::uint64_t kEscapeZeros = 7;
constexpr std::uint32_t kEscapeLimit = std::uint32_t{1} << 30;
/// No value's bits are longer: 15 escapes of 7 bits, for each quadruples a modulus below 2^30, then
/// 7 zero and one bits and 33 of remainder.
constexpr std::size_t kLongestValueBytes = 20;
/// No sum falls below.
constexpr std::uint32_t kLeastSum = 31;
constexpr std::uint64_t kBelowTop = ~std::uint64_t{0} >> 1;

/// The next bits of the stream, the first in the highest place. Behind the fAvailable bits that
/// count there may be more of the stream's bits, but nothing else: they are merged in once more.
struct CBits {
  std::uint64_t fBits;
  const std::uint8_t* fNext;
  /// Modulo 64.
  std::uint64_t fAvailable;
};

[[gnu::always_inline]] inline std::uint64_t LeadingZeros(std::uint64_t value) {
  // The intrinsic makes g++ clear the register first, for processors long gone.
  std::uint64_t zeros;
  asm("lzcnt %1, %0" : "=r"(zeros) : "r"(value) : "cc");
  return zeros;
}

/// At least 56 bits; reads 8 bytes and moves on by up to 7.
[[gnu::always_inline]] inline void Refill(CBits& bits) {
  std::uint64_t word;
  __builtin_memcpy(&word, bits.fNext, sizeof(word));
  bits.fBits |= __builtin_bswap64(word) >> (bits.fAvailable & 63);
  bits.fNext += _andn_u64(bits.fAvailable, 56) >> 3;
  bits.fAvailable |= 56;
}

[[gnu::always_inline]] inline void Skip(CBits& bits, std::uint64_t count) {
  bits.fBits <<= count & 63;
  bits.fAvailable -= count;
}

/// The bits from a position on.
[[gnu::always_inline]] inline CBits BitsAt(const std::uint8_t* bytes, std::size_t bit) {
  CBits bits{0, bytes + bit / 8, 0};
  Refill(bits);
  Skip(bits, bit % 8);
  return bits;
}

/// The residual behind `zeros` zero bits for the modulus `modulus`; skips all of its bits.
///
/// With m shifted up until its highest bit is bit 63 (by s), and the bits behind the stop bit from
/// bit 62 down, the remainder is of the long form exactly when the sum of both carries: it takes
/// part with its first b - 1 bits r, and r + m >= 2^b says the same. m - 2^b, which the long form
/// adds, is the shifted m, shifted down again with its sign.
[[gnu::always_inline]] inline std::uint32_t ReadCode(CBits& bits, std::uint64_t zeros,
                                                     std::uint64_t modulus) {
  const std::uint64_t payload = bits.fBits << (zeros & 63) & kBelowTop;
  std::uint64_t shift = LeadingZeros(modulus);
  std::uint64_t raised = modulus << (shift & 63);
  const std::uint64_t shortBase = zeros * modulus;
  std::uint64_t base =
      shortBase + static_cast<std::uint64_t>(static_cast<std::int64_t>(raised) >> (shift & 63));
  // The long form's flag must not become a branch: it is a coin's toss.
  asm("add %[payload], %[raised]\n\t"
      "cmovae %[shortBase], %[base]\n\t"
      "sbb $0, %[shift]"
      : [raised] "+r"(raised), [base] "+r"(base), [shift] "+r"(shift)
      : [payload] "r"(payload), [shortBase] "r"(shortBase)
      : "cc");
  const auto value = static_cast<std::uint32_t>((payload >> (shift & 63)) + base);
  Skip(bits, zeros - shift);
  return value;
}

[[gnu::always_inline]] inline std::uint32_t ModulusFor(std::uint32_t sum) {
  return (3 * sum + 36) >> 7;
}

struct CEscaped {
  CBits fBits;  // behind the value
  std::uint32_t fValue;
  bool fUsable;
};

/// A value that begins with an escape; not usable when it is one that no encoder writes.
[[gnu::noinline]] CEscaped ReadEscaped(CBits bits, std::uint32_t sum) {
  std::uint32_t modulus = ModulusFor(sum);
  std::uint32_t escapes = 0;
  for (; LeadingZeros(bits.fBits) >= kEscapeZeros; Refill(bits)) {
    if (modulus >= kEscapeLimit) return {bits, 0, false};
    escapes += 7 * modulus;
    modulus <<= 2;
    Skip(bits, kEscapeZeros);
  }
  const std::uint32_t value = escapes + ReadCode(bits, LeadingZeros(bits.fBits), modulus);
  return {bits, value, true};
}

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

/// Two halves, of the first and the second channel (mono: twice the same).
[[gnu::always_inline]] inline __m256i Halves(const std::uint32_t* first,
                                             const std::uint32_t* second) {
  return _mm256_inserti128_si256(
      _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(first))),
      _mm_loadu_si128(reinterpret_cast<const __m128i*>(second)), 1);
}

[[gnu::always_inline]] inline __m128i Half(__m256i vector, unsigned channel) {
  return channel == 0 ? _mm256_castsi256_si128(vector) : _mm256_extracti128_si256(vector, 1);
}

struct CPredictors {
  /// Errors of orders 0 to 3.
  __m256i fErrors;
  /// Of orders 1 to 4.
  __m256i fSums;
  /// The sum of order 0 in the first lane, that of the assumed order in the others.
  __m256i fSide;
};

/// What follows from the orders that are assumed.
struct CAssumption {
  /// Byte shuffle that puts the assumed order's prediction into all lanes.
  __m256i fSelect;
  /// -1 in the lanes of fSums and of fSide whose order is below the assumed one.
  __m256i fBelow;
  __m256i fSideBelow;
};

constexpr std::uint32_t kNone = 0x80808080, kFirst = 0x03020100, kAll = 0xFFFFFFFF;
/// By order: a prediction's lane.
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

/// Chooses the orders and returns their sums, that of the second channel in the upper half.
[[gnu::always_inline]] inline __m256i Choose(CPredictors& predictors, CAssumption& assumption) {
  const __m256i order0 = _mm256_shuffle_epi32(predictors.fSide, 0);
  __m256i least = _mm256_min_epu32(predictors.fSums, order0);
  least = _mm256_min_epu32(least, _mm256_shuffle_epi32(least, 0x4E));
  least = _mm256_min_epu32(least, _mm256_shuffle_epi32(least, 0xB1));
  predictors.fSide = _mm256_blend_epi32(least, order0, 0x11);
  const auto equals = [least](__m256i sums) {
    return static_cast<unsigned>(
        _mm256_movemask_ps(_mm256_castsi256_ps(_mm256_cmpeq_epi32(sums, least))));
  };
  const unsigned others = equals(predictors.fSums), zero = equals(order0);
  const std::uint32_t first = _tzcnt_u32((zero & 1) | (others & 15) << 1);
  const std::uint32_t second = _tzcnt_u32((zero >> 4 & 1) | (others >> 4) << 1);
  assumption.fSelect = Halves(kSelects[first], kSelects[second]);
  assumption.fBelow = Halves(kBelow[first], kBelow[second]);
  assumption.fSideBelow = Halves(kSideBelow[first], kSideBelow[second]);
  return least;
}

/// True when an assumed order is not the best any more: when a lower order's sum is not above its
/// own, or a higher order's is below.
template <bool kWide>
[[gnu::always_inline]] inline bool HasChanged(const CPredictors& predictors,
                                              const CAssumption& assumption) {
  const __m256i assumed = _mm256_shuffle_epi32(predictors.fSide, 0xFF);
  const __m256i side = _mm256_add_epi32(predictors.fSide, assumption.fSideBelow);
  if constexpr (!kWide) {
    const __m256i least =
        _mm256_min_epi32(_mm256_add_epi32(predictors.fSums, assumption.fBelow), side);
    return _mm256_movemask_ps(_mm256_castsi256_ps(_mm256_cmpgt_epi32(assumed, least))) != 0;
  }
  // The sums of orders 1 to 4 may be any 32 bits; those assumed and of order 0 are below 2^31.
  const __m256i needed = _mm256_sub_epi32(assumed, assumption.fBelow);
  const __m256i holds = _mm256_cmpeq_epi32(_mm256_min_epu32(predictors.fSums, needed), needed);
  const __m256i fails = _mm256_cmpgt_epi32(assumed, side);
  return _mm256_movemask_ps(_mm256_castsi256_ps(_mm256_andnot_si256(fails, holds))) != 0xFF;
}

/// The values of a block, before they are narrowed and joined. Each is stored four times, the later
/// ones over the copies of the former, so the last leaves three too many.
struct CBlockValues {
  std::int32_t fFirst[kBlockFrames + 4];
  std::int32_t fSecond[kBlockFrames + 4];
};

template <bool kStereo>
[[gnu::always_inline]] inline void WriteBlock(const CBlockValues& values, unsigned width,
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

/// Bounds that keep a block's arithmetic in range, if all its values' zigzags are below kSeenLimit.
/// A sum a of numbers below z goes to a - a/32 + z at most, so that one that is at most 32z stays
/// so. 16 bits: the sum of order 0 stays at most 2^23, and so does the smallest; the modulus is
/// below 2^18 and a code at most 6 + 1 + 18 bits, so that two fit 56. Errors of order k are below
/// 2^(17 + k), but for four frames that follow others, and sums below 2^30. 24 bits: the smallest
/// sum is at most 2^30, the modulus below 2^25 and a code at most 32 bits; other sums wrap around.
template <bool kWide>
struct CBounds {
  static constexpr std::uint32_t kSeenLimit = kWide ? 1u << 25 : 1u << 18;
  static constexpr std::uint32_t kSumLimit = 32 * kSeenLimit;

  static bool Hold(const CDWOPDecodeChannel& channel) {
    bool hold = channel.fSums[0] <= kSumLimit;
    for (const std::uint32_t sum : channel.fSums) {
      hold &= sum >= kLeastSum;
      if (!kWide) hold &= sum < 1u << 28;
    }
    for (const std::uint32_t error : channel.fErrors) {
      if (!kWide) hold &= error + (1u << 22) < 1u << 23;
    }
    return hold;
  }
};

template <bool kStereo, bool kWide>
class CBlockDecoder {
 public:
  explicit CBlockDecoder(CDWOPDecodeState& state) : fState(state) {}

  /// Decodes a block of at most kBlockFrames and returns its length, 0 when there are too few bytes
  /// or it cannot be done here.
  std::size_t Decode(std::int32_t* output, std::size_t frames) {
    CBits bits{0, fState.fBytes + fState.fBit / 8, 0};
    const auto room = static_cast<std::size_t>(fState.fBytes + fState.fByteCount - bits.fNext);
    if (room < kReserve + kFrameBytes) return 0;
    std::size_t count = (room - kReserve) / kFrameBytes;
    if (count > kBlockFrames) count = kBlockFrames;
    if (count > frames) count = frames;
    bits = BitsAt(fState.fBytes, fState.fBit);

    CBlockValues values;
    CPredictors p = Load();
    CAssumption assumption;
    const __m256i least = Choose(p, assumption);
    std::uint32_t firstSum = SumOf(least, 0), secondSum = SumOf(least, kStereo);
    __m256i seen = _mm256_setzero_si256();
    std::int32_t* next = values.fFirst;
    const std::int32_t* end = next + count;
    do {
      Refill(bits);
      std::uint32_t first, second = 0;
      const std::uint64_t firstZeros = LeadingZeros(bits.fBits);
      if (__builtin_expect(firstZeros < kEscapeZeros, 1)) {
        first = ReadCode(bits, firstZeros, ModulusFor(firstSum));
      } else {
        const CEscaped escaped = ReadEscaped(bits, firstSum);
        if (!escaped.fUsable) return 0;
        bits = escaped.fBits;
        first = escaped.fValue;
        Refill(bits);
        end = next + 1;
      }
      if constexpr (kStereo) {
        if (kWide && (bits.fAvailable & 32) == 0) Refill(bits);
        const std::uint64_t secondZeros = LeadingZeros(bits.fBits);
        if (__builtin_expect(secondZeros < kEscapeZeros, 1)) {
          second = ReadCode(bits, secondZeros, ModulusFor(secondSum));
        } else {
          Refill(bits);
          const CEscaped escaped = ReadEscaped(bits, secondSum);
          if (!escaped.fUsable) return 0;
          bits = escaped.fBits;
          second = escaped.fValue;
          end = next + 1;
        }
        secondSum += second - (secondSum >> 5);
      }
      firstSum += first - (firstSum >> 5);

      const __m256i zigzag = Spread(first, second);
      const __m256i twofold = _mm256_add_epi32(p.fErrors, _mm256_bslli_epi128(p.fErrors, 4));
      const __m256i predictions = _mm256_add_epi32(twofold, _mm256_bslli_epi128(twofold, 8));
      const __m256i value = _mm256_add_epi32(ErrorFromZigzag(zigzag),
                                             _mm256_shuffle_epi8(predictions, assumption.fSelect));
      const __m256i errors = _mm256_sub_epi32(value, predictions);
      const __m256i valueZigzag = ZigzagFromError(value);
      p.fErrors = _mm256_alignr_epi8(errors, value, 12);
      p.fSums = Follow(p.fSums, ZigzagFromError(errors));
      p.fSide = Follow(p.fSide, _mm256_blend_epi32(zigzag, valueZigzag, 0x11));
      seen = _mm256_or_si256(seen, valueZigzag);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(next), Half(value, 0));
      if constexpr (kStereo) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(next + (kBlockFrames + 4)), Half(value, 1));
      }
      ++next;
      if (__builtin_expect(HasChanged<kWide>(p, assumption), 0)) {
        const __m256i chosen = Choose(p, assumption);
        firstSum = SumOf(chosen, 0);
        secondSum = SumOf(chosen, kStereo);
        if (kWide && (firstSum < kLeastSum || secondSum < kLeastSum)) return 0;
      }
    } while (next != end);

    const auto limit = static_cast<int>(~(CBounds<kWide>::kSeenLimit - 1));
    if (!_mm256_testz_si256(seen, _mm256_set1_epi32(limit))) return 0;
    count = static_cast<std::size_t>(next - values.fFirst);
    Save(p);
    fState.fBit = static_cast<std::size_t>(bits.fNext - fState.fBytes) * 8 - (bits.fAvailable & 63);
    WriteBlock<kStereo>(values, fState.fWidth, output, count);
    return count;
  }

 private:
  /// Taking in bits moves on by 7 bytes at most.
  static constexpr std::size_t kFrameBytes = kWide && kStereo ? 14 : 7;
  /// What is read beyond that: the start, 8 bytes at a time, and the escapes of one frame.
  static constexpr std::size_t kReserve = 24 + 2 * kLongestValueBytes;

  static std::uint32_t SumOf(__m256i sums, unsigned channel) {
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(Half(sums, channel)));
  }

  [[gnu::always_inline]] static __m256i Spread(std::uint32_t first, std::uint32_t second) {
    const __m128i low = _mm_cvtsi32_si128(static_cast<int>(first));
    if constexpr (!kStereo) return _mm256_broadcastd_epi32(low);
    const __m128i high = _mm_cvtsi32_si128(static_cast<int>(second));
    return _mm256_shuffle_epi32(_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1), 0);
  }

  CPredictors Load() const {
    const CDWOPDecodeChannel& first = fState.fChannels[0];
    const CDWOPDecodeChannel& second = fState.fChannels[kStereo];
    return {Halves(first.fErrors, second.fErrors), Halves(first.fSums + 1, second.fSums + 1),
            Halves(first.fSums, second.fSums)};
  }

  void Save(const CPredictors& predictors) {
    const auto save = [](std::uint32_t* to, __m128i from) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(to), from);
    };
    for (unsigned i = 0; i < (kStereo ? 2 : 1); ++i) {
      CDWOPDecodeChannel& channel = fState.fChannels[i];
      save(channel.fErrors, Half(predictors.fErrors, i));
      save(channel.fSums, Half(predictors.fSide, i));
      save(channel.fSums + 1, Half(predictors.fSums, i));
    }
  }

  CDWOPDecodeState& fState;
};

template <bool kStereo, bool kWide>
std::size_t DecodeFrames(CDWOPDecodeState& state, std::int32_t* output, std::size_t frames,
                         std::size_t& others) {
  others = kBlockFrames;
  for (unsigned i = 0; i < (kStereo ? 2 : 1); ++i) {
    if (!CBounds<kWide>::Hold(state.fChannels[i])) return 0;
  }
  CBlockDecoder<kStereo, kWide> decoder(state);
  std::size_t done = 0;
  while (done < frames) {
    const std::size_t count = decoder.Decode(output + done * (kStereo ? 2 : 1), frames - done);
    if (count == 0) break;
    done += count;
  }
  return done;
}

}  // namespace

std::size_t DecodeDWOPFramesAVX2(CDWOPDecodeState& state, std::int32_t* output, std::size_t frames,
                                 std::size_t& others) {
  if (state.fChannelCount == 2) {
    return state.fWidth == 16 ? DecodeFrames<true, false>(state, output, frames, others)
                              : DecodeFrames<true, true>(state, output, frames, others);
  }
  return state.fWidth == 16 ? DecodeFrames<false, false>(state, output, frames, others)
                            : DecodeFrames<false, true>(state, output, frames, others);
}

}  // namespace NSTambraPacking
