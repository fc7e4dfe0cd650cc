#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "Parts/TolbrookPackage/Core/FormatVersion.h"
#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTambraPacking {

/// The header at the start of a package file, its members in the order of the file.
struct CPackageHeader {
  std::u16string fTambraName;
  std::u16string fComment;
  std::u16string fURL;
  std::u16string fCopyright;
  /// Number of entries in the index.
  std::uint32_t fFileCount = 0;
  /// Offset in bytes of the first index entry from the file's start.
  std::uint32_t fIndexStart = 0;
  /// Offset in bytes of the data region from the file's start; entry offsets count from there.
  std::uint32_t fDataStart = 0;
  NSTolbrook::CFormatVersion fVersion;
  /// Where the splash picture's bytes are: offset from fDataStart, and length.
  std::uint32_t fSplashOffset = 0;
  std::uint32_t fSplashSize = 0;

  friend bool operator==(const CPackageHeader&, const CPackageHeader&) = default;
};

/// The fewest bytes that a header takes: four empty texts and the short form of the version.
inline constexpr std::size_t kLeastHeaderLength = 4 * 4 + 3 * 4 + 5 + 2 * 4;

/// Writes the nine fields at the output's position, which moves on behind them.
void WritePackageHeader(NSBigFilePackage::CMediaCursor& output, const CPackageHeader& header);

/// Reads the nine fields; the position moves on behind them. That the offsets fit the file is not
/// looked at. Throws XFormatViolation when a field is cut short or unreadable, and XVersionTooNew
/// when the version is later than the supported one.
CPackageHeader ReadPackageHeader(NSBigFilePackage::CMediaCursor& input);

}  // namespace NSTambraPacking
