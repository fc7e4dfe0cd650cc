#pragma once

#include <memory>
#include <string>
#include <vector>

#include "codecs/SampleDecoder.h"

namespace NSTambraPacking {

/// Decodes kFloat, kMuLaw and kALaw samples by libsndfile, which is told the coding and sees
/// nothing but the sample bytes.
class CRawLibraryDecoder : public ISampleDecoder {
 public:
  /// Throws XUnsupportedFormat when the library cannot decode the format.
  CRawLibraryDecoder(NSBigFilePackage::SharedMedia media, const CAudioFormat& format);
  ~CRawLibraryDecoder() override;
  void Read(std::span<std::int32_t> samples) override;

 private:
  class CRawFile;
  std::unique_ptr<CRawFile> fFile;
  bool fIsFloat;
  std::vector<double> fDoubles;
  std::vector<std::int16_t> fShorts;
};

/// Name and version of libsndfile, as it is linked.
std::string SoundLibraryVersion();

}  // namespace NSTambraPacking
