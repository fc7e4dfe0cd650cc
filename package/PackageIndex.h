#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSTambraPacking {

/// The flag of an entry that is taken as it is; any other value: its references are resolved.
inline constexpr std::uint8_t kEntryTakenAsItIs = 1;

/// One file of the index, its members in the order of the file.
struct CIndexEntry {
  /// The path inside the package, components joined with "/".
  std::u16string fName;
  /// 0 to 255: one byte in the file.
  std::int32_t fTypeCode = 0;
  /// Start of the entry's bytes, counted from the header's fDataStart.
  std::uint32_t fOffset = 0;
  /// Length of the entry's bytes.
  std::uint32_t fSize = 0;
  std::uint8_t fFlag = kEntryTakenAsItIs;

  friend bool operator==(const CIndexEntry&, const CIndexEntry&) = default;
};

/// Bytes of an index entry behind its name.
inline constexpr std::size_t kIndexEntryTailLength = 10;
/// The fewest bytes that an index entry takes: the count of its name and the tail.
inline constexpr std::size_t kLeastIndexEntryLength = 4 + kIndexEntryTailLength;

/// The longest name of an entry that is written and read, in bytes of its text field: what the
/// longest path of a POSIX system takes. Each of many references may make a reader repeat a name.
inline constexpr std::uint32_t kGreatestEntryName = 4096;

/// Whether an entry can have the name, as far as its length goes. Throws XFormatViolation for a
/// surrogate without its partner.
bool FitsEntryName(std::u16string_view name);

/// Writes the entry at the output's position, which moves on behind it. Throws XInvariantCorrupt
/// when the type code does not fit its byte, XFormatViolation when the name does not fit.
void WriteIndexEntry(NSBigFilePackage::CMediaCursor& output, const CIndexEntry& entry);

/// Reads the name and exactly ten bytes; the position moves on behind them. Throws
/// XFormatViolation when the entry is cut short or its name is empty, too long or unreadable.
CIndexEntry ReadIndexEntry(NSBigFilePackage::CMediaCursor& input);

}  // namespace NSTambraPacking
