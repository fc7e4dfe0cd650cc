#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "filetypes/dwop/DWOPFormat.h"

namespace NSTambraPacking {

/// Writes bits, the most significant first, as big-endian 32-bit words. The cursor must outlive
/// the writer. What was written is complete only after Finish.
class CDWOPBitWriter {
 public:
  explicit CDWOPBitWriter(NSBigFilePackage::CMediaCursor& output);

  /// The lowest `count` (0 to 32) bits of `value`; the bits above them must be 0. Throws as Write
  /// of the media, as do the others.
  void WriteBits(std::uint32_t value, unsigned count);

  /// The residual code of `value`: zero bits that count the modulus (at least 1), with escapes, a
  /// one bit, and the remainder in truncated binary.
  void WriteResidual(std::uint32_t value, std::uint32_t modulus);

  /// Fills a word that has been begun with zero bits and writes what is buffered.
  void Finish();

 private:
  void StoreWord();
  void WriteBuffer();

  NSBigFilePackage::CMediaCursor* fOutput;
  std::uint32_t fAccumulator = 0;
  unsigned fFreeBits = 32;
  std::size_t fBuffered = 0;
  std::array<std::uint8_t, kDWOPWriteBufferLength> fBuffer;
};

}  // namespace NSTambraPacking
