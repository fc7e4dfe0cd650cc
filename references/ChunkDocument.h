#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/FourCharCode.h"
#include "Parts/TolbrookPackage/Core/Media.h"

#include "references/IFFReader.h"
#include "references/ReferenceChunk.h"

namespace NSTambraPacking {

enum class EChunkDocumentKind {
  /// Its device is described by the first "DESC" chunk directly in the outer group.
  kPatch,
  /// Each "DESC" chunk inside a group of type "DEVL", at any depth, describes a device that it
  /// uses.
  kSong
};

/// Levels of groups that a document may have. Real ones have a handful; the limit bounds the memory
/// that a hostile one can cost.
inline constexpr std::size_t kGreatestGroupDepth = 4096;

/// A patch or song: exactly one IFF group chunk of any type (a pad byte may follow), with reference
/// chunks ("REFE") at any depth. What is not a reference is neither kept in memory nor changed.
class CChunkDocument {
 public:
  /// Walks the whole document and reads its references and device descriptions. `media` must stay
  /// as it is while the document is used. Throws XFormatViolation, XVersionTooNew, XVersionTooOld;
  /// a fault inside a chunk carries the context value "chunk_offset" (bytes from the start).
  CChunkDocument(NSBigFilePackage::SharedMedia media, EChunkDocumentKind kind);

  /// The type of the outer group.
  NSTolbrook::FourCharCode Type() const { return fType; }
  /// In the order of the document.
  const std::vector<CSF10ReferenceChunk>& References() const { return fReferences; }
  /// A patch has at most one.
  const std::vector<std::u16string>& DeviceNames() const { return fDeviceNames; }

  /// Copies the document to `output` with `replacements` in the place of References(), as many and
  /// in the same order. Sizes of enclosing groups and pad bytes are put right; every other byte is
  /// as it was. Throws XFormatViolation when a size no longer fits 32 bits.
  void Write(NSBigFilePackage::CMediaCursor& output,
             std::span<const CSampleReference> replacements) const;

 private:
  static constexpr std::size_t kNoPlace = static_cast<std::size_t>(-1);

  /// Where a reference chunk, or a group on the way to one, stands. Positions count from the start
  /// of the media.
  struct CPlace {
    std::uint64_t fPosition;
    std::uint32_t fSize;
    /// Pad bytes behind it: 0 or 1.
    std::uint32_t fPad;
    /// Index of the enclosing group's place, which is always the lower one; kNoPlace at the top.
    std::size_t fParent;
    /// Index of the reference; kNoPlace for a group.
    std::size_t fReference;
  };

  /// A group whose chunks are being walked.
  struct CLevel {
    NSTolbrook::CIFFReader2 fReader;
    NSTolbrook::CChunkInfo fGroup;
    std::uint64_t fPosition;
    std::uint32_t fPad;
    std::size_t fPlace;
    bool fStarted;
    NSTolbrook::CChunkInfo fCurrent;
  };

  /// A piece of the media that is replaced.
  struct CEdit {
    std::uint64_t fPosition;
    std::uint64_t fRemoved;
    std::vector<std::uint8_t> fInserted;
  };

  void Walk(EChunkDocumentKind kind);
  void Enter(std::vector<CLevel>& levels, const NSTolbrook::CIFFReader2& reader,
             const NSTolbrook::CChunkInfo& group) const;
  void ReadReference(std::vector<CLevel>& levels);
  void ReadDescription(const std::vector<CLevel>& levels, EChunkDocumentKind kind);
  std::vector<CEdit> Edits(std::span<const CSampleReference> replacements) const;
  std::vector<std::uint8_t> BodyOf(std::size_t reference, const CSampleReference& content) const;

  NSBigFilePackage::SharedMedia fMedia;
  NSTolbrook::FourCharCode fType = 0;
  std::vector<CSF10ReferenceChunk> fReferences;
  std::vector<std::u16string> fDeviceNames;
  std::vector<CPlace> fPlaces;
};

}  // namespace NSTambraPacking
