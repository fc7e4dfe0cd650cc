#pragma once

#include <cstdint>
#include <optional>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "references/ChunkInfo.h"

namespace NSTolbrook {

/// Walks the chunks of one range of a media: all of it, or the contents of a group. Positions in
/// a CChunkInfo count from the start of the range of the reader that gave it, and belong to that
/// reader only. However deep groups are nested, a reader stands directly on the outermost media.
/// `Dialect` is CIFFDialect or CRIFFDialect.
///
/// Faults of the contents are XFormatViolation with the chunk's ID and its offset from the start
/// of the media; the reader then stays at the header that failed. Failures of the media pass.
template <class Dialect>
class TChunkReader {
 public:
  explicit TChunkReader(NSBigFilePackage::SharedMedia media);

  /// The chunk at the start of the range, or nothing when the range holds fewer than 8 bytes.
  std::optional<CChunkInfo> FirstChunk();

  /// The chunk at the first even offset behind `chunk`, or nothing when that is the range's end or
  /// lies behind it.
  std::optional<CChunkInfo> NextChunk(const CChunkInfo& chunk);

  /// A reader of the contents of a group. Throws XFormatViolation as GroupDataSize.
  TChunkReader EnterGroup(const CChunkInfo& group) const;

  /// The first group of this kind and type in the range, walked from its start; nothing when the
  /// range ends first.
  std::optional<CChunkInfo> FindGroup(EChunkKind kind, FourCharCode type);

  /// Bytes behind the type; throws XFormatViolation when the stored size has no room for a type,
  /// XStdLogicError for a plain chunk.
  std::uint32_t GroupDataSize(const CChunkInfo& group) const;

  /// The bytes behind the header, for reading only.
  NSBigFilePackage::SharedMedia OpenData(const CChunkInfo& chunk) const;

  /// 8 or 12.
  std::uint32_t HeaderLength(const CChunkInfo& chunk) const;

  /// Where the header read last, or tried last, begins, counted from the start of the range.
  std::uint64_t Position() const { return fPosition; }
  /// Bytes in the range.
  std::uint64_t Size() const { return fSize; }
  /// The start of the range, in bytes from the start of the media.
  std::uint64_t Start() const { return fStart; }

 private:
  TChunkReader(NSBigFilePackage::SharedMedia media, std::uint64_t start, std::uint64_t size);
  CChunkInfo ReadHeader();

  NSBigFilePackage::SharedMedia fMedia;
  std::uint64_t fStart;
  std::uint64_t fSize;
  std::uint64_t fPosition = 0;
};

extern template class TChunkReader<CIFFDialect>;
extern template class TChunkReader<CRIFFDialect>;

/// Big-endian chunk files: AIFF, patches and songs.
using CIFFReader2 = TChunkReader<CIFFDialect>;
/// Little-endian chunk files: WAVE and SoundFont banks.
using CRIFFReader2 = TChunkReader<CRIFFDialect>;

}  // namespace NSTolbrook
