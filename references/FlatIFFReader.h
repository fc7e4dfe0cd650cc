#pragma once

#include <cstdint>
#include <optional>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "references/ChunkInfo.h"

namespace NSTolbrook {

/// Walks one level of chunks and takes every chunk, group or not, as plain: ID, size and data.
/// Positions count from the start of the media.
class CIFFReader {
 public:
  /// Walks the chunks whose headers lie in the bytes [start, end) of the media; their data may
  /// run past `end` but not past the media. `end` is cut to the media's size.
  CIFFReader(NSBigFilePackage::SharedMedia media, EByteOrder order, std::uint64_t start = 0,
             std::uint64_t end = UINT64_MAX);

  /// True when a whole header with a valid ID stands at the position of the next chunk; a caller
  /// that takes rubbish for the end of the walk asks before each NextChunk.
  bool AtChunk() const;

  /// The next chunk (at first the one at `start`), or nothing when fewer than 8 bytes remain at
  /// the start or none remain behind a chunk. Throws XFormatViolation for a header that is cut
  /// off, has no valid ID, or whose data runs past the media's end.
  std::optional<CChunkInfo> NextChunk();

  /// The data of a chunk, for reading only.
  NSBigFilePackage::SharedMedia OpenData(const CChunkInfo& chunk) const;

 private:
  NSBigFilePackage::SharedMedia fMedia;
  EByteOrder fOrder;
  std::uint64_t fMediaSize;
  std::uint64_t fStart;
  std::uint64_t fEnd;
  std::uint64_t fNext;
};

}  // namespace NSTolbrook
