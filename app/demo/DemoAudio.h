#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/demo/DemoSynthesis.h"

namespace NSTambraPacking {

/// A sampled sound with what the file formats can say about it.
struct CDemoSound {
  std::uint32_t fRate = 44'100;
  std::uint16_t fChannels = 1;
  /// 8, 16 or 24: how the file stores the samples.
  std::uint16_t fBits = 16;
  /// Interleaved, signed 24-bit integers.
  DemoSamples fSamples;
  std::uint8_t fRootKey = 60;
  /// Cents, 0 to 99.
  std::uint8_t fFineTune = 0;
  /// 0 no loop, 1 forward, 2 forward and backward.
  std::uint8_t fLoopMode = 0;
  /// Frames [fLoopStart, fLoopEnd), within the sound.
  std::uint32_t fLoopStart = 0;
  std::uint32_t fLoopEnd = 0;

  std::uint32_t Frames() const { return static_cast<std::uint32_t>(fSamples.size() / fChannels); }
};

enum class EWAVEForm {
  kPlain,       ///< format and samples, nothing else
  kInstrument,  ///< with "inst": key and tuning, no loop
  kSampler,     ///< with "smpl": key, tuning and loop
  kBroadcast,   ///< as kSampler, and descriptive chunks before and behind the samples
};

std::vector<std::uint8_t> WriteDemoWAVE(const CDemoSound& sound, EWAVEForm form,
                                        const std::string& title = {});

enum class EAIFFForm {
  kPlain,
  kInstrument,    ///< with "INST" and "MARK"
  kLittleEndian,  ///< as kInstrument, in AIFF-C with coding "sowt"; 16 bits
};

std::vector<std::uint8_t> WriteDemoAIFF(const CDemoSound& sound, EAIFFForm form,
                                        const std::string& title = {});

}  // namespace NSTambraPacking
