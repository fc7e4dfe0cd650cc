#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "filetypes/dwop/DWOPFormat.h"

namespace NSTambraPacking {

/// The 32-bit words of a media from a position to its end, in pieces of up to 16,384. Bytes at the
/// end that make up no whole word are never read. The media must outlive the source.
class CDWOPWordSource {
 public:
  CDWOPWordSource(const NSBigFilePackage::IMedia& media, std::uint64_t position);

  /// Reads the next words that `destination` has room for, as they are stored (big-endian), and
  /// returns the number of their bytes, 0 behind the last word. Throws as Read of the media.
  std::size_t ReadWords(std::span<std::uint8_t> destination);

 private:
  const NSBigFilePackage::IMedia* fMedia;
  std::uint64_t fPosition;
};

}  // namespace NSTambraPacking
