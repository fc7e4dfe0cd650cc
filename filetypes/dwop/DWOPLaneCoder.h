#pragma once

#include <cstddef>
#include <cstdint>

#include "filetypes/dwop/DWOPBitWriter.h"
#include "filetypes/dwop/DWOPForm.h"
#include "filetypes/dwop/DWOPLanes.h"
#include "filetypes/dwop/DWOPValueCoder.h"

namespace NSTambraPacking {

/// Codes blocks in segments side by side.
///
/// Predictors follow the samples alone, so that a segment can be coded without its forerunner but
/// for the running sums that it starts with. Those are a contraction: a - (a >> 5) draws two
/// different sums together, and after some hundred values they are the same. So each segment but
/// the first starts with a guess, some way ahead of its first frame. When a segment's forerunner is
/// done, its true sums are known: where they differ from what the segment started with, the segment
/// is coded again value by value, up to the chunk at which both are the same; the bits behind it
/// hold. The stream is always that of the value coder; only the speed depends on the guess.
class CDWOPLaneCoder {
 public:
  /// Frames that are coded in one go, at most.
  static constexpr std::size_t kMostSegmentFrames = 4096;

  /// True when segments of `frames` are long enough to be worth it.
  static bool IsWorthIt(std::size_t frames, unsigned channels);

  /// Codes the front of `frames` and returns how much of it, which is 0 when the values or their
  /// codes are too large. Throws as Write of the writer's media.
  std::size_t Code(EDWOPForm form, const CPackedFrames& frames, CDWOPEncodeState* states,
                   CDWOPBitWriter& writer);

 private:
  static constexpr std::size_t kBufferBytes = 40960 * 4;
  static constexpr std::size_t kMarks = kMostSegmentFrames / kDWOPLaneChunk + 1;

  /// Brings the states behind a segment that was coded from a start that may have been wrong.
  void TakeSegment(const CPackedFrames& segment, std::size_t index, CDWOPEncodeState* states,
                   CDWOPBitWriter& writer) const;

  CDWOPLaneMark fMarks[kMarks];
  std::uint8_t fBuffers[kBufferBytes];
};

}  // namespace NSTambraPacking
