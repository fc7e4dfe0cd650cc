#include "codecs/AudioFormat.h"

#include <algorithm>

namespace NSTambraPacking {

unsigned CAudioFormat::CodedWidth() const { return fSampleBytes <= 2 ? 16 : 24; }

bool CAudioFormat::KeptBitForBit() const {
  const bool isInteger = fCoding == ESampleCoding::kSigned || fCoding == ESampleCoding::kUnsigned;
  return isInteger && fSampleBytes <= 3;
}

void CInstrument::SetLoop(std::uint8_t mode, std::uint64_t start, std::uint64_t end,
                          std::uint64_t frames) {
  end = std::min(end, frames);
  if (start >= end) return;
  fLoopMode = mode;
  fLoopStart = start;
  fLoopEnd = end;
}

}  // namespace NSTambraPacking
