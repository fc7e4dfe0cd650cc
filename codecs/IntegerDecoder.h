#pragma once

#include <vector>

#include "codecs/SampleDecoder.h"

namespace NSTambraPacking {

/// Decodes kSigned and kUnsigned samples of 1 to 4 bytes.
class CIntegerDecoder : public ISampleDecoder {
 public:
  CIntegerDecoder(NSBigFilePackage::SharedMedia media, const CAudioFormat& format);
  void Read(std::span<std::int32_t> samples) override;

 private:
  void Convert(std::span<const std::uint8_t> bytes, std::span<std::int32_t> samples) const;

  NSBigFilePackage::SharedMedia fMedia;
  CAudioFormat fFormat;
  std::uint64_t fPosition;
  std::vector<std::uint8_t> fBuffer;
};

}  // namespace NSTambraPacking
