#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "references/IFFReader.h"
#include "references/IFFWriter.h"

namespace NSTolbrook {

/// Names one open group of a CIFFFileReader or CIFFFileWriter. No number is used twice by the same
/// reader or writer, so that a level once closed can never be taken for a later one.
struct CIFFFileLevel {
  std::uint64_t fNumber = 0;
};

/// Reads nested big-endian chunks: a stack of open groups, of which the innermost is walked. The
/// stack takes memory in proportion to the nesting and no call is recursive. Contents' faults are
/// those of CIFFReader2.
class CIFFFileReader {
 public:
  explicit CIFFFileReader(NSBigFilePackage::SharedMedia media);

  /// The first chunk of the innermost level; it becomes that level's current chunk.
  std::optional<CChunkInfo> FirstChunk();
  /// The chunk behind the innermost level's current one. Throws XIllegalCallSequence when the
  /// level has no current chunk.
  std::optional<CChunkInfo> NextChunk();
  /// The first group of this kind and type in the innermost level, walked from its start; it
  /// becomes the current chunk.
  std::optional<CChunkInfo> FindGroup(EChunkKind kind, FourCharCode type);

  /// Opens the current chunk, a group, as the new innermost level.
  CIFFFileLevel OpenLevel();
  /// Goes back to the level outside, at the group that was opened. Throws XIllegalCallSequence
  /// when `level` is not the innermost.
  void CloseLevel(CIFFFileLevel level);
  /// Number of open groups.
  std::size_t Depth() const { return fLevels.size() - 1; }

  /// The current chunk's data, for reading only.
  NSBigFilePackage::SharedMedia OpenData() const;

 private:
  struct CLevel {
    CIFFFileLevel fLevel;
    CIFFReader2 fReader;
    std::optional<CChunkInfo> fCurrent;
  };
  const CChunkInfo& Current() const;

  /// The first is the file itself, level 0, which is never closed.
  std::vector<CLevel> fLevels;
  std::uint64_t fLastNumber = 0;
};

/// Writes nested big-endian chunks: a stack of open groups, of which the innermost is written.
class CIFFFileWriter {
 public:
  /// The first chunk begins at `position`, which is even.
  explicit CIFFFileWriter(NSBigFilePackage::SharedMedia media, std::uint64_t position = 0);

  /// Begins a group in the innermost level; it is the new innermost level.
  CIFFFileLevel OpenLevel(EChunkKind kind, FourCharCode type);
  /// Ends the innermost group behind what was written. Throws XIllegalCallSequence when `level`
  /// is not the innermost or when a plain chunk is still open in it.
  void CloseLevel(CIFFFileLevel level);
  /// Number of open groups.
  std::size_t Depth() const { return fLevels.size() - 1; }

  /// As OpenChunk and CloseChunk of CIFFWriter2, in the innermost level.
  NSBigFilePackage::SharedMedia OpenChunk(FourCharCode id);
  void CloseChunk(std::uint64_t dataLength);
  void WriteChunk(FourCharCode id, std::span<const std::uint8_t> data);

 private:
  struct CLevel {
    CIFFFileLevel fLevel;
    std::uint64_t fDataStart;
    CIFFWriter2 fWriter;
  };

  NSBigFilePackage::SharedMedia fMedia;
  /// The first is the file itself, level 0, which is never closed.
  std::vector<CLevel> fLevels;
  std::uint64_t fLastNumber = 0;
};

}  // namespace NSTolbrook
