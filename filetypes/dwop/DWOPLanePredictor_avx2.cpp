#include "filetypes/dwop/DWOPLaneStages.h"

namespace NSTambraPacking {

namespace {

using CVector = __m256i;

[[gnu::always_inline]] inline CVector All(int value) { return _mm256_set1_epi32(value); }

[[gnu::always_inline]] inline CVector LoadRows(const std::uint8_t* low, const std::uint8_t* high) {
  const __m128i row = _mm_loadu_si128(reinterpret_cast<const __m128i*>(low));
  return _mm256_inserti128_si256(_mm256_castsi128_si256(row),
                                 _mm_loadu_si128(reinterpret_cast<const __m128i*>(high)), 1);
}

constexpr bool Is16(ESamplePacking packing) {
  return packing == ESamplePacking::k16Little || packing == ESamplePacking::k16Big;
}
constexpr bool Is24(ESamplePacking packing) {
  return packing == ESamplePacking::k24Little || packing == ESamplePacking::k24Big;
}
constexpr std::size_t SampleBytes(ESamplePacking packing) {
  return Is16(packing) ? 2 : Is24(packing) ? 3 : 4;
}

/// Brings the bytes of a row into the order of the vectors; 24 bits become the upper ones of 32.
template <ESamplePacking Packing>
[[gnu::always_inline]] inline CVector Arrange(CVector rows) {
  if constexpr (Packing == ESamplePacking::k16Big) {
    return _mm256_shuffle_epi8(rows, _mm256_broadcastsi128_si256(_mm_setr_epi8(
                                         1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14)));
  } else if constexpr (Packing == ESamplePacking::k24Little) {
    return _mm256_shuffle_epi8(rows, _mm256_broadcastsi128_si256(_mm_setr_epi8(
                                         -1, 0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11)));
  } else if constexpr (Packing == ESamplePacking::k24Big) {
    return _mm256_shuffle_epi8(rows, _mm256_broadcastsi128_si256(_mm_setr_epi8(
                                         -1, 2, 1, 0, -1, 5, 4, 3, -1, 8, 7, 6, -1, 11, 10, 9)));
  } else {
    return rows;
  }
}

/// Twice the 32-bit or left-justified 24-bit samples.
template <ESamplePacking Packing>
[[gnu::always_inline]] inline CVector Doubled(CVector samples) {
  if constexpr (Is24(Packing)) {
    return _mm256_srai_epi32(samples, 7);
  } else {
    return _mm256_add_epi32(samples, samples);
  }
}

/// Twice the values of some frames, a vector a frame. Twice, so that the zigzag fold is a shift and
/// an exclusive or; 24-bit samples leave the room.
template <ESamplePacking Packing, unsigned Channels>
struct CLoader;

template <ESamplePacking Packing>
struct CLoader<Packing, 2> {
  static constexpr std::size_t kFrames = 4;

  [[gnu::always_inline]] static inline void Load(const CLaneRows& rows, std::size_t offset,
                                                 CVector* values) {
    if constexpr (Is16(Packing)) {
      const CVector even =
          Arrange<Packing>(LoadRows(rows.fSegment[0] + offset, rows.fSegment[2] + offset));
      const CVector odd =
          Arrange<Packing>(LoadRows(rows.fSegment[1] + offset, rows.fSegment[3] + offset));
      const CVector low = _mm256_unpacklo_epi32(even, odd);
      const CVector high = _mm256_unpackhi_epi32(even, odd);
      // Of a frame's two words: 2L in the even lane, 2R - 2L in the odd one.
      const CVector weights = _mm256_set1_epi64x(0x0002FFFE00000002);
      values[0] = _mm256_madd_epi16(_mm256_shuffle_epi32(low, 0x50), weights);
      values[1] = _mm256_madd_epi16(_mm256_shuffle_epi32(low, 0xFA), weights);
      values[2] = _mm256_madd_epi16(_mm256_shuffle_epi32(high, 0x50), weights);
      values[3] = _mm256_madd_epi16(_mm256_shuffle_epi32(high, 0xFA), weights);
    } else {
      LoadTwo(rows, offset, values);
      LoadTwo(rows, offset + 4 * SampleBytes(Packing), values + 2);
    }
  }

  [[gnu::always_inline]] static inline void LoadTwo(const CLaneRows& rows, std::size_t offset,
                                                    CVector* values) {
    const CVector even =
        Arrange<Packing>(LoadRows(rows.fSegment[0] + offset, rows.fSegment[2] + offset));
    const CVector odd =
        Arrange<Packing>(LoadRows(rows.fSegment[1] + offset, rows.fSegment[3] + offset));
    values[0] = Differ(_mm256_unpacklo_epi64(even, odd));
    values[1] = Differ(_mm256_unpackhi_epi64(even, odd));
  }

  [[gnu::always_inline]] static inline CVector Differ(CVector frame) {
    const CVector doubled = Doubled<Packing>(frame);
    return _mm256_sub_epi32(doubled, _mm256_slli_epi64(doubled, 32));
  }
};

template <ESamplePacking Packing>
struct CLoader<Packing, 1> {
  static constexpr std::size_t kFrames = Is16(Packing) ? 8 : 4;

  [[gnu::always_inline]] static inline void Load(const CLaneRows& rows, std::size_t offset,
                                                 CVector* values) {
    CVector row[4];
    for (int i = 0; i < 4; ++i) {
      row[i] = Arrange<Packing>(LoadRows(rows.fSegment[i] + offset, rows.fSegment[i + 4] + offset));
    }
    const CVector a = _mm256_unpacklo_epi32(row[0], row[1]);
    const CVector b = _mm256_unpackhi_epi32(row[0], row[1]);
    const CVector c = _mm256_unpacklo_epi32(row[2], row[3]);
    const CVector d = _mm256_unpackhi_epi32(row[2], row[3]);
    const CVector columns[4] = {_mm256_unpacklo_epi64(a, c), _mm256_unpackhi_epi64(a, c),
                                _mm256_unpacklo_epi64(b, d), _mm256_unpackhi_epi64(b, d)};
    for (int i = 0; i < 4; ++i) {
      if constexpr (Is16(Packing)) {
        values[2 * i] = _mm256_madd_epi16(columns[i], All(2));
        values[2 * i + 1] = _mm256_madd_epi16(columns[i], All(2 << 16));
      } else {
        values[i] = Doubled<Packing>(columns[i]);
      }
    }
  }
};

struct CSelection {
  CVector fSum;
  CVector fZigzag;
};

[[gnu::always_inline]] inline CVector Zigzag(CVector doubledError) {
  return _mm256_xor_si256(doubledError, _mm256_srai_epi32(doubledError, 31));
}

/// Takes the lower order unless the higher one's sum is smaller, all unsigned.
[[gnu::always_inline]] inline void Prefer(CSelection& best, CVector sum, CVector zigzag) {
  const CVector least = _mm256_min_epu32(best.fSum, sum);
  const CVector keep = _mm256_cmpeq_epi32(least, best.fSum);
  best.fZigzag = _mm256_blendv_epi8(zigzag, best.fZigzag, keep);
  best.fSum = least;
}

[[gnu::always_inline]] inline CVector Follow(CVector sum, CVector zigzag) {
  return _mm256_sub_epi32(_mm256_add_epi32(sum, zigzag), _mm256_srli_epi32(sum, 5));
}

/// One frame: the zigzag errors under all orders and, by the sums before it, the choice.
template <bool Select>
[[gnu::always_inline]] inline CSelection Advance(CLanePredictors& state, CVector value) {
  const CVector e1 = _mm256_sub_epi32(value, state.fErrors[0]);
  const CVector e2 = _mm256_sub_epi32(e1, state.fErrors[1]);
  const CVector e3 = _mm256_sub_epi32(e2, state.fErrors[2]);
  const CVector e4 = _mm256_sub_epi32(e3, state.fErrors[3]);
  state.fErrors[0] = value;
  state.fErrors[1] = e1;
  state.fErrors[2] = e2;
  state.fErrors[3] = e3;
  const CVector z0 = Zigzag(value);
  const CVector z1 = Zigzag(e1);
  const CVector z2 = Zigzag(e2);
  const CVector z3 = Zigzag(e3);
  const CVector z4 = Zigzag(e4);
  CSelection best{state.fSums[0], z0};
  if constexpr (Select) {
    Prefer(best, state.fSums[1], z1);
    Prefer(best, state.fSums[2], z2);
    Prefer(best, state.fSums[3], z3);
    Prefer(best, state.fSums[4], z4);
  }
  state.fSums[0] = Follow(state.fSums[0], z0);
  state.fSums[1] = Follow(state.fSums[1], z1);
  state.fSums[2] = Follow(state.fSums[2], z2);
  state.fSums[3] = Follow(state.fSums[3], z3);
  state.fSums[4] = Follow(state.fSums[4], z4);
  return best;
}

/// Stage 1: predicts `frames` frames at `offset`; with Select their errors and moduli go into the
/// chunk, without it only the state follows.
template <ESamplePacking Packing, unsigned Channels, bool Select>
[[gnu::noinline]] void Predict(CLanePredictors& predictors, const CLaneRows& rows,
                               std::size_t offset, std::size_t frames, CLaneChunk& chunk) {
  using Loader = CLoader<Packing, Channels>;
  CLanePredictors state = predictors;
  const CVector twelve3 = All(36);
  for (std::size_t frame = 0; frame < frames; frame += Loader::kFrames) {
    CVector values[Loader::kFrames];
    Loader::Load(rows, offset, values);
    offset += Loader::kFrames * Channels * SampleBytes(Packing);
    for (std::size_t i = 0; i < Loader::kFrames; ++i) {
      const CSelection best = Advance<Select>(state, values[i]);
      if constexpr (Select) {
        const CVector tripled = _mm256_add_epi32(_mm256_add_epi32(best.fSum, best.fSum), best.fSum);
        CVector modulus = _mm256_srli_epi32(_mm256_add_epi32(tripled, twelve3), 7);
        // Sums of 16-bit values do not wrap around, so that their modulus is never 0.
        if constexpr (!Is16(Packing)) modulus = _mm256_max_epi32(modulus, All(1));
        chunk.fZigzag[frame + i] = best.fZigzag;
        chunk.fModulus[frame + i] = modulus;
      }
    }
  }
  predictors = state;
}

void SetLane(CVector& vector, std::size_t lane, std::uint32_t value) {
  reinterpret_cast<std::uint32_t*>(&vector)[lane] = value;
}

/// The predictors behind the warm-up; the first segment's are known.
template <ESamplePacking Packing, unsigned Channels>
CLanePredictors WarmUp(const CDWOPLaneJob& job, CLaneChunk& chunk) {
  constexpr std::size_t kFrameBytes = Channels * SampleBytes(Packing);
  constexpr std::size_t kSegments = kDWOPLanes / Channels;
  const std::size_t ahead = job.fWarmUp + kDWOPLaneLead;
  CLaneRows rows;
  for (std::size_t i = 0; i < kSegments; ++i) {
    rows.fSegment[i] = job.fStarts[i == 0 ? 1 : i] - ahead * kFrameBytes;
  }
  CLanePredictors state;
  for (CVector& errors : state.fErrors) errors = _mm256_setzero_si256();
  for (CVector& sums : state.fSums) sums = _mm256_setzero_si256();
  Predict<Packing, Channels, false>(state, rows, 0, kDWOPLaneLead, chunk);
  for (std::size_t order = 0; order < 5; ++order) {
    for (std::size_t lane = 0; lane < kDWOPLanes; ++lane) {
      SetLane(state.fSums[order], lane, job.fState[lane % Channels].fSums[order]);
    }
  }
  Predict<Packing, Channels, false>(state, rows, kDWOPLaneLead * kFrameBytes, job.fWarmUp, chunk);
  for (std::size_t channel = 0; channel < Channels; ++channel) {
    const CDWOPEncodeState& known = job.fState[channel];
    for (std::size_t order = 0; order < 5; ++order) {
      SetLane(state.fSums[order], channel, known.fSums[order]);
    }
    for (std::size_t order = 0; order < 4; ++order) {
      SetLane(state.fErrors[order], channel, 2 * known.fErrors[order]);
    }
  }
  return state;
}

template <ESamplePacking Packing, unsigned Channels>
void PredictFrom(const CDWOPLaneJob& job, std::size_t firstFrame, std::size_t frames,
                 CLanePredictors& predictors, CLaneChunk& chunk) {
  CLaneRows rows;
  for (std::size_t i = 0; i < kDWOPLanes / Channels; ++i) rows.fSegment[i] = job.fStarts[i];
  Predict<Packing, Channels, true>(predictors, rows, firstFrame * Channels * SampleBytes(Packing),
                                   frames, chunk);
}

/// Calls `call` with the packing as a constant.
template <class Call>
auto WithPacking(ESamplePacking packing, const Call& call) {
  switch (packing) {
    case ESamplePacking::k16Little:
      return call.template operator()<ESamplePacking::k16Little>();
    case ESamplePacking::k16Big:
      return call.template operator()<ESamplePacking::k16Big>();
    case ESamplePacking::k24Little:
      return call.template operator()<ESamplePacking::k24Little>();
    case ESamplePacking::k24Big:
      return call.template operator()<ESamplePacking::k24Big>();
    case ESamplePacking::kInt32:
      break;
  }
  return call.template operator()<ESamplePacking::kInt32>();
}

}  // namespace

CLanePredictors WarmUpLanes(const CDWOPLaneJob& job, CLaneChunk& room) {
  return WithPacking(job.fPacking, [&]<ESamplePacking Packing>() {
    return job.fChannels == 1 ? WarmUp<Packing, 1>(job, room) : WarmUp<Packing, 2>(job, room);
  });
}

void PredictLanes(const CDWOPLaneJob& job, std::size_t firstFrame, std::size_t frames,
                  CLanePredictors& predictors, CLaneChunk& chunk) {
  WithPacking(job.fPacking, [&]<ESamplePacking Packing>() {
    job.fChannels == 1 ? PredictFrom<Packing, 1>(job, firstFrame, frames, predictors, chunk)
                       : PredictFrom<Packing, 2>(job, firstFrame, frames, predictors, chunk);
  });
}

}  // namespace NSTambraPacking
