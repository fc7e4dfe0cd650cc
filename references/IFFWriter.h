#pragma once

#include <cstdint>
#include <optional>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "references/ChunkInfo.h"

namespace NSTolbrook {

/// Writes chunks one behind the other, one of them open at a time; the children of a group are
/// written by a second writer that starts at the group's data. `Dialect` is CIFFDialect or
/// CRIFFDialect. Positions count from the start of the media. Failures of the media pass.
template <class Dialect>
class TChunkWriter {
 public:
  /// The first chunk begins at `position`, which is even.
  explicit TChunkWriter(NSBigFilePackage::SharedMedia media, std::uint64_t position = 0);

  /// Writes a plain chunk's header with a size of 0 and returns a window on its data, which the
  /// caller writes. Throws XStdInvalidArgument for an ID that is not valid or belongs to groups,
  /// XIllegalCallSequence while a chunk is open.
  NSBigFilePackage::SharedMedia OpenChunk(FourCharCode id);

  /// As OpenChunk, for a group; the window begins behind its type.
  NSBigFilePackage::SharedMedia OpenGroup(EChunkKind kind, FourCharCode type);

  /// Stores the open chunk's size (`dataLength` bytes of data, and a group's type) and pads it to
  /// an even end. Throws XIllegalCallSequence when no chunk is open, XOutOfSpace when the size
  /// does not fit in 32 bits.
  void CloseChunk(std::uint64_t dataLength);

  bool IsOpen() const { return fOpenKind.has_value(); }
  /// Where the open chunk's data begins, or, when none is open, where the next chunk will begin.
  std::uint64_t Position() const;

 private:
  NSBigFilePackage::SharedMedia Open(EChunkKind kind, FourCharCode id, FourCharCode type);

  NSBigFilePackage::SharedMedia fMedia;
  /// Of the open chunk, or the next one, its header's first byte.
  std::uint64_t fChunkStart;
  std::optional<EChunkKind> fOpenKind;
};

extern template class TChunkWriter<CIFFDialect>;
extern template class TChunkWriter<CRIFFDialect>;

/// Big-endian chunk files: AIFF, patches and songs.
using CIFFWriter2 = TChunkWriter<CIFFDialect>;
/// Little-endian chunk files: WAVE and SoundFont banks.
using CRIFFWriter2 = TChunkWriter<CRIFFDialect>;

}  // namespace NSTolbrook
