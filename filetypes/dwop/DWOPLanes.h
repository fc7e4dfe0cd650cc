#pragma once

#include <cstddef>
#include <cstdint>

#include "codecs/SamplePacking.h"

/// Plain data and the entry of the encoder's form that codes eight values at a time. No functions
/// are defined here, since the file that holds the form is compiled for another processor.
///
/// A block is cut into segments that are coded side by side: a vector holds one value of each. Mono
/// has eight segments, segment s in lane s; stereo has four, the left channel of segment s in lane
/// 2s, the difference of right and left in lane 2s + 1.
namespace NSTambraPacking {

inline constexpr std::size_t kDWOPLanes = 8;
/// Segments are multiples of so many frames.
inline constexpr std::size_t kDWOPLaneGroup = 8;
/// Frames that the stages of the coder hand on at a time.
inline constexpr std::size_t kDWOPLaneChunk = 64;
/// Frames before a segment from which only its errors come, ahead of the warm-up.
inline constexpr std::size_t kDWOPLaneLead = 8;
/// Frames that must lie readable behind the last segment.
inline constexpr std::size_t kDWOPLaneRest = 2;

/// What the predictor of a channel knows: the errors of orders 0 to 3 for the last value (that of
/// order 4 is not needed again) and the running sums of orders 0 to 4.
struct CDWOPEncodeState {
  std::uint32_t fErrors[4];
  std::uint32_t fSums[5];
};

/// The state between two chunks.
struct alignas(32) CDWOPLaneMark {
  std::uint32_t fSums[5][kDWOPLanes];
  /// By segment: the bits that it has in its buffer.
  std::uint64_t fBits[kDWOPLanes];
};

struct CDWOPLaneJob {
  ESamplePacking fPacking;
  unsigned fChannels;
  /// The segments' first bytes, one behind the other in one block.
  const std::uint8_t* fStarts[kDWOPLanes];
  /// Of each segment; a multiple of kDWOPLaneGroup.
  std::size_t fFrames;
  /// A multiple of kDWOPLaneGroup; with kDWOPLaneLead at most fFrames.
  std::size_t fWarmUp;
  /// Of the block's start. The first segment starts with it; the others start with its sums
  /// fWarmUp frames ahead of their first frame.
  CDWOPEncodeState fState[2];
  /// By segment, fCapacity bytes each.
  std::uint8_t* fBuffers[kDWOPLanes];
  std::size_t fCapacity;
  /// One before each chunk, and one behind the last.
  CDWOPLaneMark* fMarks;
};

/// Codes all segments into their buffers. Values must lie within 24 bits. False when a buffer might
/// not hold its bits: nothing that was written counts then.
bool CodeDWOPLanesPortably(const CDWOPLaneJob& job);
bool CodeDWOPLanesAVX2(const CDWOPLaneJob& job);

}  // namespace NSTambraPacking
