#include "filetypes/dwop/DWOPLaneStages.h"

namespace NSTambraPacking {

namespace {

using CVector = __m256i;

/// Of one value, with all escapes that 32 bits allow, in bytes.
constexpr std::size_t kMostValueBytes = 18;
/// The buffers of four segments: group g has those of the segments groups * lane + g.
CLaneWriters StartWriters(const CDWOPLaneJob& job, std::size_t groups, std::size_t group) {
  CLaneWriters writers{_mm256_setzero_si256(), _mm256_setzero_si256(), _mm256_setzero_si256()};
  for (std::size_t lane = 0; lane < 4; ++lane) {
    reinterpret_cast<std::uint64_t*>(&writers.fPlace)[lane] =
        reinterpret_cast<std::uint64_t>(job.fBuffers[groups * lane + group]);
  }
  return writers;
}

/// Notes the state; false when a buffer may not hold what the next chunk can add.
bool Mark(const CDWOPLaneJob& job, const CLanePredictors& state, const CLaneWriters* writers,
          CDWOPLaneMark& mark) {
  const std::size_t groups = 2 / job.fChannels;
  const std::size_t chunkBytes =
      kDWOPLaneChunk * job.fChannels * kMostValueBytes + sizeof(std::uint64_t);
  for (std::size_t order = 0; order < 5; ++order) {
    _mm256_store_si256(reinterpret_cast<CVector*>(mark.fSums[order]), state.fSums[order]);
  }
  bool hasRoom = true;
  for (std::size_t group = 0; group < groups; ++group) {
    for (std::size_t lane = 0; lane < 4; ++lane) {
      const std::size_t segment = groups * lane + group;
      const std::uint64_t bytes =
          reinterpret_cast<const std::uint64_t*>(&writers[group].fPlace)[lane] -
          reinterpret_cast<std::uint64_t>(job.fBuffers[segment]);
      mark.fBits[segment] =
          bytes * 8 + reinterpret_cast<const std::uint64_t*>(&writers[group].fBegunBits)[lane];
      hasRoom = hasRoom && bytes + chunkBytes <= job.fCapacity;
    }
  }
  return hasRoom;
}

}  // namespace

bool CodeDWOPLanesAVX2(const CDWOPLaneJob& job) {
  const bool has16Bits =
      job.fPacking == ESamplePacking::k16Little || job.fPacking == ESamplePacking::k16Big;
  CLaneChunk chunk;
  CLanePredictors predictors = WarmUpLanes(job, chunk);
  CLaneWriters writers[2];
  const std::size_t groups = 2 / job.fChannels;
  for (std::size_t i = 0; i < groups; ++i) writers[i] = StartWriters(job, groups, i);
  CDWOPLaneMark* mark = job.fMarks;
  for (std::size_t first = 0; first < job.fFrames; first += kDWOPLaneChunk) {
    if (!Mark(job, predictors, writers, *mark++)) return false;
    const std::size_t rest = job.fFrames - first;
    const std::size_t frames = rest < kDWOPLaneChunk ? rest : kDWOPLaneChunk;
    PredictLanes(job, first, frames, predictors, chunk);
    CodeLanes(job.fChannels, has16Bits, frames, chunk);
    WriteLanes(job.fChannels, frames, chunk, writers);
  }
  Mark(job, predictors, writers, *mark);
  return true;
}

}  // namespace NSTambraPacking
