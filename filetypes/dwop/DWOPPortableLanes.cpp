#include <algorithm>
#include <bit>

#include "codecs/SampleUnpacking.h"
#include "filetypes/dwop/DWOPBitWriter.h"
#include "filetypes/dwop/DWOPLanes.h"

namespace NSTambraPacking {

namespace {

/// Vectors of the compiler, which uses what the processor it builds for has. All steps are such
/// that the oldest vector units have them; four lanes are what their registers hold.
constexpr std::size_t kWidth = 4;
constexpr std::size_t kVectors = kDWOPLanes / kWidth;
using CInts [[gnu::vector_size(16)]] = std::int32_t;
using CNumbers [[gnu::vector_size(16)]] = std::uint32_t;
using CFloats [[gnu::vector_size(16)]] = float;

constexpr std::int32_t kExactLimit = 1 << 23;

/// A chunk between the stages; a row a frame, a column a lane.
struct CChunk {
  /// By segment, interleaved.
  std::int32_t fSamples[kDWOPLanes][2 * kDWOPLaneChunk];
  CNumbers fZigzag[kDWOPLaneChunk][kVectors];
  CNumbers fModulus[kDWOPLaneChunk][kVectors];
  std::uint32_t fCode[kDWOPLaneChunk][kDWOPLanes];
  /// In bits; 0 for a value that is left to the bit writer.
  std::uint32_t fLength[kDWOPLaneChunk][kDWOPLanes];
};

struct CPredictors {
  CNumbers fErrors[4];
  CNumbers fSums[5];
};

CNumbers Zigzag(CNumbers error) {
  return (error << 1) ^ std::bit_cast<CNumbers>(std::bit_cast<CInts>(error) >> 31);
}

CNumbers Select(CNumbers mask, CNumbers where, CNumbers elsewhere) {
  return (where & mask) | (elsewhere & ~mask);
}

/// One frame; see the class that codes single values.
template <bool Choose>
void Advance(CPredictors& state, CNumbers value, CNumbers& zigzag, CNumbers& modulus) {
  CNumbers sum = state.fSums[0];
  CNumbers error = value;
  for (std::size_t order = 0; order < 5; ++order) {
    const CNumbers folded = Zigzag(error);
    const CNumbers before = state.fSums[order];
    if constexpr (Choose) {
      if (order == 0) {
        zigzag = folded;
      } else {
        const auto isLess = std::bit_cast<CNumbers>(before < sum);
        sum = Select(isLess, before, sum);
        zigzag = Select(isLess, folded, zigzag);
      }
    }
    state.fSums[order] = (before + folded) - (before >> 5);
    if (order < 4) {
      const CNumbers next = error - state.fErrors[order];
      state.fErrors[order] = error;
      error = next;
    }
  }
  if constexpr (Choose) {
    modulus = (sum + sum + sum + 36) >> 7;
    modulus -= std::bit_cast<CNumbers>(modulus == 0);
  }
}

/// The value of a lane.
template <unsigned Channels>
std::uint32_t ValueOf(const CChunk& chunk, std::size_t frame, std::size_t lane) {
  const std::int32_t* samples = chunk.fSamples[lane / Channels] + Channels * frame;
  const auto first = static_cast<std::uint32_t>(samples[0]);
  if (Channels == 1 || lane % 2 == 0) return first;
  return static_cast<std::uint32_t>(samples[1]) - first;
}

/// Stage 1 for the lanes of one vector: errors and moduli of the chunk's samples, or only the
/// state.
template <unsigned Channels, bool Choose>
void Predict(CChunk& chunk, std::size_t frames, std::size_t vector, CPredictors& predictors) {
  CPredictors state = predictors;
  const std::size_t lane = vector * kWidth;
  for (std::size_t frame = 0; frame < frames; ++frame) {
    const CNumbers value = {
        ValueOf<Channels>(chunk, frame, lane), ValueOf<Channels>(chunk, frame, lane + 1),
        ValueOf<Channels>(chunk, frame, lane + 2), ValueOf<Channels>(chunk, frame, lane + 3)};
    Advance<Choose>(state, value, chunk.fZigzag[frame][vector], chunk.fModulus[frame][vector]);
  }
  predictors = state;
}

/// Stage 2: quotient, remainder and code by floats, which are exact below 2^23; see the AVX2 form
/// for the proof.
void MakeCodes(CChunk& chunk, std::size_t frames) {
  for (std::size_t frame = 0; frame < frames; ++frame) {
    for (std::size_t vector = 0; vector < kVectors; ++vector) {
      const auto z = std::bit_cast<CInts>(chunk.fZigzag[frame][vector]);
      const auto m = std::bit_cast<CInts>(chunk.fModulus[frame][vector]);
      const auto floatZ = __builtin_convertvector(z, CFloats);
      const auto floatM = __builtin_convertvector(m, CFloats);
      const auto quotient = __builtin_convertvector(floatZ / floatM, CInts);
      const auto remainder = __builtin_convertvector(
          floatZ - __builtin_convertvector(quotient, CFloats) * floatM, CInts);
      // A float's exponent is that of the highest bit of m, alone it is that bit.
      const auto exponent = std::bit_cast<CInts>(floatM) & 0x7F800000;
      const auto power = __builtin_convertvector(std::bit_cast<CFloats>(exponent), CInts);
      const CInts code = power + remainder;
      const CInts limit = power + power + power - m;
      const CInts isShort = code < limit;
      const CInts length = quotient + (exponent >> 23) - 125 + isShort;
      const CInts isExact = ((z | m) < kExactLimit) & (quotient < 7);
      const auto codes = std::bit_cast<CNumbers>(code + (limit & ~isShort));
      const auto lengths = std::bit_cast<CNumbers>(length & isExact);
      for (std::size_t lane = 0; lane < kWidth; ++lane) {
        chunk.fCode[frame][vector * kWidth + lane] = codes[lane];
        chunk.fLength[frame][vector * kWidth + lane] = lengths[lane];
      }
    }
  }
}

/// Stage 3: writes the codes of one segment.
template <unsigned Channels>
void Write(const CChunk& chunk, std::size_t frames, std::size_t segment,
           CDWOPBitPosition& position) {
  CDWOPBitPosition at = position;
  for (std::size_t frame = 0; frame < frames; ++frame) {
    for (std::size_t channel = 0; channel < Channels; ++channel) {
      const std::size_t lane = Channels * segment + channel;
      const std::uint32_t length = chunk.fLength[frame][lane];
      if (length > 0) [[likely]] {
        at.Append(chunk.fCode[frame][lane], length);
      } else {
        at.AppendResidual(chunk.fZigzag[frame][lane / kWidth][lane % kWidth],
                          chunk.fModulus[frame][lane / kWidth][lane % kWidth]);
      }
    }
  }
  position = at;
}

/// Codes a job in chunks.
template <unsigned Channels>
class CPortableLanes {
 public:
  explicit CPortableLanes(const CDWOPLaneJob& job) : fJob(job) {
    for (std::size_t i = 0; i < kSegments; ++i) fPositions[i].fPlace = job.fBuffers[i];
  }

  bool Code() {
    WarmUp();
    CDWOPLaneMark* mark = fJob.fMarks;
    for (std::size_t first = 0; first < fJob.fFrames; first += kDWOPLaneChunk) {
      if (!Mark(*mark++)) return false;
      const std::size_t frames = std::min(kDWOPLaneChunk, fJob.fFrames - first);
      Load(static_cast<std::ptrdiff_t>(first), frames);
      for (std::size_t i = 0; i < kVectors; ++i) {
        Predict<Channels, true>(fChunk, frames, i, fPredictors[i]);
      }
      MakeCodes(fChunk, frames);
      for (std::size_t i = 0; i < kSegments; ++i) Write<Channels>(fChunk, frames, i, fPositions[i]);
    }
    Mark(*mark);
    return true;
  }

 private:
  static constexpr std::size_t kSegments = kDWOPLanes / Channels;

  /// Unpacks frames from `first` on, counted from each segment's start; before the block it is the
  /// second segment's.
  void Load(std::ptrdiff_t first, std::size_t frames) {
    const std::size_t frameBytes = SampleBytes(fJob.fPacking) * Channels;
    for (std::size_t i = 0; i < kSegments; ++i) {
      const std::uint8_t* start = fJob.fStarts[first < 0 ? std::max<std::size_t>(i, 1) : i];
      UnpackSamples(fJob.fPacking,
                    {start + first * static_cast<std::ptrdiff_t>(frameBytes), frames * frameBytes},
                    std::span(fChunk.fSamples[i]).first(frames * Channels));
    }
  }

  void Follow(std::ptrdiff_t first, std::size_t frames) {
    Load(first, frames);
    for (std::size_t i = 0; i < kVectors; ++i) {
      Predict<Channels, false>(fChunk, frames, i, fPredictors[i]);
    }
  }

  void WarmUp() {
    const auto ahead = static_cast<std::ptrdiff_t>(fJob.fWarmUp);
    Follow(-ahead - static_cast<std::ptrdiff_t>(kDWOPLaneLead), kDWOPLaneLead);
    SetSums(kDWOPLanes);
    for (std::ptrdiff_t left = ahead; left > 0; left -= kDWOPLaneChunk) {
      Follow(-left, std::min(kDWOPLaneChunk, static_cast<std::size_t>(left)));
    }
    SetSums(Channels);
    for (std::size_t order = 0; order < 4; ++order) {
      for (std::size_t lane = 0; lane < Channels; ++lane) {
        fPredictors[0].fErrors[order][lane] = fJob.fState[lane].fErrors[order];
      }
    }
  }

  /// Gives the first `lanes` the sums of the block's start.
  void SetSums(std::size_t lanes) {
    for (std::size_t order = 0; order < 5; ++order) {
      for (std::size_t lane = 0; lane < lanes; ++lane) {
        fPredictors[lane / kWidth].fSums[order][lane % kWidth] =
            fJob.fState[lane % Channels].fSums[order];
      }
    }
  }

  /// Notes the state; false when a buffer may not hold what the next chunk can add.
  bool Mark(CDWOPLaneMark& mark) const {
    constexpr std::size_t kChunkBytes =
        kDWOPLaneChunk * Channels * kDWOPLongestCode + sizeof(std::uint64_t);
    for (std::size_t order = 0; order < 5; ++order) {
      for (std::size_t lane = 0; lane < kDWOPLanes; ++lane) {
        mark.fSums[order][lane] = fPredictors[lane / kWidth].fSums[order][lane % kWidth];
      }
    }
    bool hasRoom = true;
    for (std::size_t i = 0; i < kSegments; ++i) {
      const auto bytes = static_cast<std::size_t>(fPositions[i].fPlace - fJob.fBuffers[i]);
      mark.fBits[i] = std::uint64_t{bytes} * 8 + fPositions[i].fBegunBits;
      hasRoom = hasRoom && bytes + kChunkBytes <= fJob.fCapacity;
    }
    return hasRoom;
  }

  const CDWOPLaneJob& fJob;
  CPredictors fPredictors[kVectors] = {};
  CDWOPBitPosition fPositions[kSegments];
  CChunk fChunk;
};

}  // namespace

bool CodeDWOPLanesPortably(const CDWOPLaneJob& job) {
  return job.fChannels == 1 ? CPortableLanes<1>(job).Code() : CPortableLanes<2>(job).Code();
}

}  // namespace NSTambraPacking
