#include "filetypes/dwop/DWOPLaneStages.h"

namespace NSTambraPacking {

namespace {

using CVector = __m256i;

constexpr int kMostFastQuotient = 6;
/// Float quotients are exact below 2^23.
constexpr int kExactBits = 23;

[[gnu::always_inline]] inline CVector All(int value) { return _mm256_set1_epi32(value); }

struct CCodes {
  CVector fCode;
  /// Less 1, so that it is not below 0 here.
  CVector fLength;
};

/// The code behind the zeros of the quotient: a one bit and the remainder in truncated binary.
/// With P = 2^(b-1) <= m, the short code is s = P + r; the long one, for r >= 2P - m, that is
/// s >= 3P - m, is 4P + r - m = s + (3P - m). `topBit` is b - 1.
[[gnu::always_inline]] inline CCodes Join(CVector quotient, CVector remainder, CVector modulus,
                                          CVector topBit) {
  const CVector power = _mm256_sllv_epi32(All(1), topBit);
  const CVector limit = _mm256_sub_epi32(_mm256_sllv_epi32(All(3), topBit), modulus);
  const CVector code = _mm256_add_epi32(remainder, power);
  const CVector isShort = _mm256_cmpgt_epi32(limit, code);
  return {_mm256_add_epi32(code, _mm256_andnot_si256(isShort, limit)),
          _mm256_add_epi32(_mm256_add_epi32(quotient, isShort), _mm256_add_epi32(topBit, All(1)))};
}

[[gnu::always_inline]] inline CVector TopBit(CVector number) {
  const CVector bits = _mm256_castps_si256(_mm256_cvtepi32_ps(number));
  return _mm256_sub_epi32(_mm256_srli_epi32(bits, 23), All(127));
}

/// For quotients up to 6 of numbers below 2^23. `most` gathers the quotients, so that the caller
/// sees whether they were.
///
/// The quotient of the rounded division is exact: z / m lies 1/m or more below the next integer v,
/// and m * v <= z + m < 2^24, so that this distance is more than half of a float's last place
/// below v and rounding cannot reach v; the integer below z / m is itself a float, and rounding is
/// monotone.
[[gnu::always_inline]] inline CCodes FastCodes(CVector z, CVector m, CVector& most) {
  const __m256 floatM = _mm256_cvtepi32_ps(m);
  const CVector quotient = _mm256_cvttps_epi32(_mm256_div_ps(_mm256_cvtepi32_ps(z), floatM));
  most = _mm256_max_epi32(most, quotient);
  const CVector remainder = _mm256_sub_epi32(z, _mm256_mullo_epi32(quotient, m));
  const CVector topBit =
      _mm256_sub_epi32(_mm256_srli_epi32(_mm256_castps_si256(floatM), 23), All(127));
  return Join(quotient, remainder, m, topBit);
}

/// For all numbers that 24-bit samples give: z below 2^29, m below 2^25. The quotient counts the
/// multiples of m up to z; an escape needs z >= 7m, so that 7 * 4m stays below 2^31.
CCodes CarefulCodes(CVector z, CVector m) {
  CVector zeros = _mm256_setzero_si256();
  for (;;) {
    CVector quotient = All(7);
    CVector multiple = _mm256_setzero_si256();
    for (int i = 0; i < 7; ++i) {
      multiple = _mm256_add_epi32(multiple, m);
      quotient = _mm256_add_epi32(quotient, _mm256_cmpgt_epi32(multiple, z));
    }
    const CVector escape = _mm256_cmpeq_epi32(quotient, All(7));
    if (_mm256_testz_si256(escape, escape)) {
      // Without the bit below each set one, rounding to a float cannot reach the next power of two.
      const CVector topBit = TopBit(_mm256_andnot_si256(_mm256_srli_epi32(m, 1), m));
      const CVector remainder = _mm256_sub_epi32(z, _mm256_mullo_epi32(quotient, m));
      return Join(_mm256_add_epi32(zeros, quotient), remainder, m, topBit);
    }
    z = _mm256_sub_epi32(z, _mm256_and_si256(escape, multiple));
    m = _mm256_blendv_epi8(m, _mm256_slli_epi32(m, 2), escape);
    zeros = _mm256_add_epi32(zeros, _mm256_and_si256(escape, All(7)));
  }
}

/// The codes of four frames.
template <bool Is16>
[[gnu::always_inline]] inline void MakeCodes(const CVector* zigzags, const CVector* moduli,
                                             CCodes* codes) {
  CVector most = _mm256_setzero_si256();
  CVector wide = _mm256_setzero_si256();
  for (int i = 0; i < 4; ++i) {
    codes[i] = FastCodes(zigzags[i], moduli[i], most);
    if constexpr (!Is16) {
      wide = _mm256_or_si256(wide, _mm256_or_si256(zigzags[i], moduli[i]));
    }
  }
  CVector careful = _mm256_cmpgt_epi32(most, All(kMostFastQuotient));
  if constexpr (!Is16) {
    careful = _mm256_or_si256(careful, _mm256_srli_epi32(wide, kExactBits));
  }
  if (__builtin_expect(!_mm256_testz_si256(careful, careful), 0)) {
    for (int i = 0; i < 4; ++i) codes[i] = CarefulCodes(zigzags[i], moduli[i]);
  }
}

/// Joined codes of two values in each lane of 64 bits.
struct CUnits {
  CVector fCode;
  CVector fLength;
};

/// A stereo frame: the left channel's code, then the difference's.
[[gnu::always_inline]] inline CUnits JoinChannels(const CCodes& codes) {
  // The product is the left code with the bit that the other one's length lacks.
  const CVector left = _mm256_mul_epu32(codes.fCode, All(2));
  const CVector shift = _mm256_srli_epi64(codes.fLength, 32);
  const CVector lengths = _mm256_sad_epu8(codes.fLength, _mm256_setzero_si256());
  return {_mm256_or_si256(_mm256_sllv_epi64(left, shift), _mm256_srli_epi64(codes.fCode, 32)),
          _mm256_add_epi32(lengths, _mm256_set1_epi64x(2))};
}

/// Two frames of mono: those of the even lanes and those of the odd ones.
[[gnu::always_inline]] inline void JoinFrames(const CCodes& first, const CCodes& second,
                                              CUnits& even, CUnits& odd) {
  const CVector low = _mm256_set1_epi64x(0xFFFFFFFF);
  const CVector length = _mm256_add_epi32(second.fLength, All(1));
  const CVector both = _mm256_add_epi32(_mm256_add_epi32(first.fLength, All(1)), length);
  even.fCode = _mm256_or_si256(
      _mm256_sllv_epi64(_mm256_and_si256(first.fCode, low), _mm256_and_si256(length, low)),
      _mm256_and_si256(second.fCode, low));
  even.fLength = _mm256_and_si256(both, low);
  odd.fCode = _mm256_or_si256(
      _mm256_sllv_epi64(_mm256_srli_epi64(first.fCode, 32), _mm256_srli_epi64(length, 32)),
      _mm256_srli_epi64(second.fCode, 32));
  odd.fLength = _mm256_srli_epi64(both, 32);
}

/// Stores two units that lie side by side.
[[gnu::always_inline]] inline void PutPair(CLaneChunk& chunk, std::size_t unit, const CUnits& first,
                                           const CUnits& second) {
  chunk.fCode[unit] = first.fCode;
  chunk.fLength[unit] = first.fLength;
  chunk.fCode[unit + 1] = second.fCode;
  chunk.fLength[unit + 1] = second.fLength;
}

[[gnu::always_inline]] inline CVector Longer(CVector longest, CVector lengths) {
  return _mm256_max_epi32(longest, lengths);
}

/// Stage 2: codes the chunk's values and joins them to units.
template <unsigned Channels, bool Is16>
void MakeUnits(std::size_t frames, CLaneChunk& chunk) {
  CVector longest = _mm256_setzero_si256();
  CVector longestPair = _mm256_setzero_si256();
  for (std::size_t frame = 0; frame < frames; frame += 4) {
    CCodes codes[4];
    MakeCodes<Is16>(chunk.fZigzag + frame, chunk.fModulus + frame, codes);
    CUnits units[4];
    if constexpr (Channels == 2) {
      for (int i = 0; i < 4; ++i) units[i] = JoinChannels(codes[i]);
      PutPair(chunk, frame, units[0], units[1]);
      PutPair(chunk, frame + 2, units[2], units[3]);
    } else {
      JoinFrames(codes[0], codes[1], units[0], units[2]);
      JoinFrames(codes[2], codes[3], units[1], units[3]);
      PutPair(chunk, frame / 2, units[0], units[1]);
      PutPair(chunk, kDWOPLaneChunk / 2 + frame / 2, units[2], units[3]);
    }
    for (int i = 0; i < 4; i += 2) {
      longest = Longer(longest, Longer(units[i].fLength, units[i + 1].fLength));
      longestPair = Longer(longestPair, _mm256_add_epi32(units[i].fLength, units[i + 1].fLength));
    }
  }
  chunk.fLongest = longest;
  chunk.fLongestPair = longestPair;
}

}  // namespace

void CodeLanes(unsigned channels, bool has16Bits, std::size_t frames, CLaneChunk& chunk) {
  if (channels == 1) {
    has16Bits ? MakeUnits<1, true>(frames, chunk) : MakeUnits<1, false>(frames, chunk);
  } else {
    has16Bits ? MakeUnits<2, true>(frames, chunk) : MakeUnits<2, false>(frames, chunk);
  }
}

}  // namespace NSTambraPacking
