#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "filetypes/dwop/DWOPFormat.h"

namespace NSTambraPacking {

/// The 32-bit words of a media from a position to its end, in pieces. Bytes at the end that make
/// up no whole word are never read. The media must outlive the source.
class CDWOPWordSource {
 public:
  CDWOPWordSource(const NSBigFilePackage::IMedia& media, std::uint64_t position);

  /// The next 1 to 16,384 words; they stay valid until the next call. Throws XFormatViolation
  /// "zero length sample" when there are none, and as Read of the media.
  std::span<const std::uint32_t> ReadWords();

 private:
  const NSBigFilePackage::IMedia* fMedia;
  std::uint64_t fPosition;
  std::vector<std::uint8_t> fBytes;
  std::vector<std::uint32_t> fWords;
};

}  // namespace NSTambraPacking
