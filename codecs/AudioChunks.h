#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "codecs/AudioFormat.h"
#include "references/ChunkInfo.h"

namespace NSTambraPacking {

/// The chunks inside the outer chunk of a WAVE or AIFF file. Of chunks with the same ID the first
/// counts. The walk takes each chunk whose header lies inside the outer chunk; rubbish where an ID
/// should stand ends it, and what lies behind the outer chunk is not looked at.
class CAudioChunks {
 public:
  /// `start` and `end` bound the outer chunk's contents. Throws XFormatViolation when a chunk runs
  /// past the end of the file.
  CAudioChunks(NSBigFilePackage::SharedMedia media, NSTolbrook::EByteOrder order,
               std::uint64_t start, std::uint64_t end);

  /// Null when there is none.
  const NSTolbrook::CChunkInfo* Find(NSTolbrook::FourCharCode id) const;
  /// Throws XFormatViolation when there is none.
  const NSTolbrook::CChunkInfo& Get(NSTolbrook::FourCharCode id) const;

  /// The first `length` bytes of a chunk's data; throws XFormatViolation when it is shorter.
  std::vector<std::uint8_t> Read(const NSTolbrook::CChunkInfo& chunk, std::uint32_t length) const;

  /// Fills in what the layout says of the sample chunk, whose contents begin `leading` bytes
  /// behind its header; throws XFormatViolation when it is shorter.
  CSampleChunkLayout Layout(const NSTolbrook::CChunkInfo& samples, std::uint32_t leading) const;

  const NSBigFilePackage::SharedMedia& Media() const { return fMedia; }

 private:
  NSBigFilePackage::SharedMedia fMedia;
  std::map<NSTolbrook::FourCharCode, NSTolbrook::CChunkInfo> fChunks;
};

}  // namespace NSTambraPacking
