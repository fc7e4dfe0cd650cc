#pragma once

#include <span>

#include "app/AdviceList.h"
#include "app/PackJobState.h"
#include "codecs/SampleMeasures.h"
#include "filetypes/dwop/DWOPFileEncoder.h"

namespace NSTambraPacking {

/// A sample of the library and what its file and its audio are like.
struct CSampleFacts {
  const CJobEntry* fEntry = nullptr;
  CAudioFormat fFormat;
  CInstrument fInstrument;
  CSampleMeasures fMeasures;
  CKeptReport fKept;

  const std::u16string& Path() const { return fEntry->fFile.fPath; }
};

/// Opens the sample and reads it once; throws as CAudioFile::Open and MeasureSample.
CSampleFacts GatherSampleFacts(const CJobEntry& entry, const std::function<void()>& checkStop);

/// True when nothing in the sample is louder than one step of 16 bits.
bool IsSilent(const CSampleMeasures& measures);

/// What each sample says of itself: empty, silent, clipped, offset, a loop that clicks, not kept.
void AdviseOnSample(const CSampleFacts& facts, CAdviceList& advice);

/// What the samples of one folder say of each other: root keys that are missing where the others
/// form an instrument, at least three in four of them and four in all, with three keys or more.
void AdviseOnRootKeys(std::span<const CSampleFacts> samples, CAdviceList& advice);

/// Samples that are as long, as fast and the same in each value as an earlier one.
void AdviseOnDuplicates(std::span<const CSampleFacts> samples, CAdviceList& advice);

}  // namespace NSTambraPacking
