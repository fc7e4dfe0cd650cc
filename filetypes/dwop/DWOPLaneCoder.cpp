#include "filetypes/dwop/DWOPLaneCoder.h"

#include <algorithm>
#include <cstring>

namespace NSTambraPacking {

namespace {

/// Two sums that are D apart meet after some 32 * (ln D + 1) values, so that most guesses are right
/// by then; those that are not cost a chunk or some.
constexpr std::size_t kWarmUpFrames = 512;
constexpr std::size_t kFewestSegmentFrames = 128;

std::size_t RoundDown(std::size_t frames) { return frames / kDWOPLaneGroup * kDWOPLaneGroup; }

std::size_t SegmentFrames(std::size_t frames, unsigned channels) {
  if (frames < kDWOPLaneRest) return 0;
  return std::min(RoundDown((frames - kDWOPLaneRest) * channels / kDWOPLanes),
                  CDWOPLaneCoder::kMostSegmentFrames);
}

/// Narrower packings cannot hold anything else.
bool LiesWithin24Bits(const CPackedFrames& frames) {
  if (frames.fPacking != ESamplePacking::kInt32) return true;
  std::uint32_t beyond = 0;
  for (std::size_t i = 0; i < frames.fFrames * frames.fChannels; ++i) {
    std::int32_t sample = 0;
    std::memcpy(&sample, frames.fBytes + i * sizeof(sample), sizeof(sample));
    beyond |= static_cast<std::uint32_t>(sample ^ (sample >> 31));
  }
  return beyond >> 23 == 0;
}

bool HasSums(const CDWOPLaneMark& mark, std::size_t lane, const CDWOPEncodeState& state) {
  for (std::size_t order = 0; order < 5; ++order) {
    if (mark.fSums[order][lane] != state.fSums[order]) return false;
  }
  return true;
}

bool CodeLanes([[maybe_unused]] EDWOPForm form, const CDWOPLaneJob& job) {
#ifdef TAMBRA_AVX2
  if (form == EDWOPForm::kAVX2) return CodeDWOPLanesAVX2(job);
#endif
  return CodeDWOPLanesPortably(job);
}

}  // namespace

bool CDWOPLaneCoder::IsWorthIt(std::size_t frames, unsigned channels) {
  return SegmentFrames(frames, channels) >= kFewestSegmentFrames;
}

std::size_t CDWOPLaneCoder::Code(EDWOPForm form, const CPackedFrames& frames,
                                 CDWOPEncodeState* states, CDWOPBitWriter& writer) {
  const std::size_t length = SegmentFrames(frames.fFrames, frames.fChannels);
  const std::size_t segments = kDWOPLanes / frames.fChannels;
  if (length < kFewestSegmentFrames || !LiesWithin24Bits(frames.Part(0, length * segments))) {
    return 0;
  }
  CDWOPLaneJob job{};
  job.fPacking = frames.fPacking;
  job.fChannels = frames.fChannels;
  job.fFrames = length;
  job.fWarmUp = std::min(kWarmUpFrames, length - kDWOPLaneLead);
  std::copy_n(states, frames.fChannels, job.fState);
  job.fCapacity = kBufferBytes / segments;
  for (std::size_t i = 0; i < segments; ++i) {
    job.fStarts[i] = frames.Part(i * length, length).fBytes;
    job.fBuffers[i] = fBuffers + i * job.fCapacity;
  }
  job.fMarks = fMarks;
  if (!CodeLanes(form, job)) return 0;
  for (std::size_t i = 0; i < segments; ++i) {
    TakeSegment(frames.Part(i * length, length), i, states, writer);
  }
  return length * segments;
}

void CDWOPLaneCoder::TakeSegment(const CPackedFrames& segment, std::size_t index,
                                 CDWOPEncodeState* states, CDWOPBitWriter& writer) const {
  const std::size_t firstLane = index * segment.fChannels;
  const std::size_t chunks = (segment.fFrames + kDWOPLaneChunk - 1) / kDWOPLaneChunk;
  std::size_t chunk = 0;
  const auto isRight = [&] {
    for (unsigned channel = 0; channel < segment.fChannels; ++channel) {
      if (!HasSums(fMarks[chunk], firstLane + channel, states[channel])) return false;
    }
    return true;
  };
  while (!isRight()) {
    const std::size_t first = chunk * kDWOPLaneChunk;
    CodeDWOPValues(segment.Part(first, std::min(kDWOPLaneChunk, segment.fFrames - first)), states,
                   writer);
    if (++chunk == chunks) return;
  }
  const CDWOPLaneMark& end = fMarks[chunks];
  const std::uint8_t* bits = fBuffers + index * (kBufferBytes * segment.fChannels / kDWOPLanes);
  writer.AppendBits(bits, fMarks[chunk].fBits[index], end.fBits[index]);
  for (unsigned channel = 0; channel < segment.fChannels; ++channel) {
    for (std::size_t order = 0; order < 5; ++order) {
      states[channel].fSums[order] = end.fSums[order][firstLane + channel];
    }
  }
  SetErrorsBehind(segment, states);
}

}  // namespace NSTambraPacking
