#include "codecs/SoundFontParser.h"
#include "fuzz/FuzzInput.h"

/// Samples and their loops lie inside the sample data, and tables inside the file.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto media = NSFuzz::CFuzzInput(data, size).Media();
  return NSFuzz::Try([&] {
    const auto bank = NSTambraPacking::CSoundFontParser(media).Parse();
    NSFuzz::Require(bank.fSampleWords * 2 <= size);
    NSFuzz::Require(bank.fPresets.size() + bank.fInstruments.size() + bank.fSamples.size() < size);
    for (const auto& sample : bank.fSamples) {
      if (sample.fInROM) continue;
      NSFuzz::Require(sample.fStart <= sample.fEnd && sample.fEnd <= bank.fSampleWords);
      const bool hasLoop = sample.fLoopStart < sample.fLoopEnd;
      NSFuzz::Require(!hasLoop || sample.fLoopEnd <= bank.fSampleWords);
    }
  });
}
