#pragma once

#include <cstddef>
#include <cstdint>
#include <immintrin.h>

#include "filetypes/dwop/DWOPLanes.h"

/// The stages of the lane coder with AVX2, each in a file of its own. They work on a chunk of
/// frames at a time: each has a short loop of which the processor can run several rounds at once,
/// while one loop for all would wait for its own long chain (division, shifts, stores). What they
/// hand on lies in the first-level cache.
///
/// Only for files named *_avx2.cpp; see cmake/Compile.cmake.
namespace NSTambraPacking {

/// The predictors of all lanes, as CDWOPEncodeState but for errors that are doubled.
struct CLanePredictors {
  __m256i fErrors[4];
  __m256i fSums[5];
};

/// Where the segments are read.
struct CLaneRows {
  const std::uint8_t* fSegment[kDWOPLanes];
};

/// What the stages hand on.
struct CLaneChunk {
  /// Of the chosen order; a vector a frame.
  __m256i fZigzag[kDWOPLaneChunk];
  __m256i fModulus[kDWOPLaneChunk];
  /// A unit is the joined code of two values: a stereo frame, or two mono frames. It has a lane of
  /// 64 bits; lane i has segment i of stereo. Of mono the first half of the units has the segments
  /// 2i, the second half the segments 2i + 1.
  __m256i fCode[kDWOPLaneChunk];
  /// In bits.
  __m256i fLength[kDWOPLaneChunk];
  /// The longest unit in each lane, and the longest two that lie side by side.
  __m256i fLongest;
  __m256i fLongestPair;
};

/// Where four segments write: lanes of 64 bits.
struct CLaneWriters {
  /// Address of the byte that is being filled.
  __m256i fPlace;
  /// Its bits so far, from the top of the lane down, and their number, 0 to 7.
  __m256i fBegun;
  __m256i fBegunBits;
};

/// The bits that one append takes: 64 less those of a byte that has been begun.
inline constexpr int kMostLaneUnitBits = 57;

/// Predictors behind the warm-up. The first segment's are those that the job gives.
CLanePredictors WarmUpLanes(const CDWOPLaneJob& job, CLaneChunk& room);

/// Stage 1: errors and moduli of `frames` frames from `firstFrame` of each segment on.
void PredictLanes(const CDWOPLaneJob& job, std::size_t firstFrame, std::size_t frames,
                  CLanePredictors& predictors, CLaneChunk& chunk);

/// Stage 2: codes the chunk's values and joins them to units. Values of 16-bit samples are coded
/// faster when `has16Bits` tells so.
void CodeLanes(unsigned channels, bool has16Bits, std::size_t frames, CLaneChunk& chunk);

/// Stage 3: appends the units to the segments' bits; one writer for stereo, two for mono.
void WriteLanes(unsigned channels, std::size_t frames, const CLaneChunk& chunk,
                CLaneWriters* writers);

}  // namespace NSTambraPacking
