#pragma once

#include <array>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "codecs/AudioFormat.h"

namespace NSTambraPacking {

/// What the extra info of a stream holds: an audio file whose samples, with everything else in
/// their chunk and its pad byte, are taken out. The sample chunk's size says so, the outer size is
/// lessened by what was taken out (modulo 2^32, since files lie about it), all else is verbatim.
/// A read-only media over the source file.
class CSourceWithoutSamples : public NSBigFilePackage::IMedia {
 public:
  /// Throws XRead when `layout` does not fit the source.
  CSourceWithoutSamples(NSBigFilePackage::SharedMedia source, EAudioContainer container,
                        const CSampleChunkLayout& layout);

  std::uint64_t Size() const override;
  std::size_t Read(std::uint64_t position, std::span<std::uint8_t> destination) const override;
  /// Throws XReadOnly.
  void Write(std::uint64_t position, std::span<const std::uint8_t> source) override;
  /// Throws XReadOnly.
  void SetSize(std::uint64_t size) override;
  void Flush() override {}

 private:
  /// A u32 of the source with another value.
  struct CChangedField {
    std::uint64_t fPosition = 0;
    std::array<std::uint8_t, 4> fBytes{};
  };

  /// The field at `position`, lessened by what was taken out.
  CChangedField Lessened(std::uint64_t position, std::uint64_t takenOut) const;

  NSBigFilePackage::SharedMedia fSource;
  NSTolbrook::EByteOrder fOrder;
  std::uint64_t fCut;        // position of the first byte taken out
  std::uint64_t fCutLength;  // bytes taken out
  std::array<CChangedField, 2> fChanges;
};

}  // namespace NSTambraPacking
