#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "codecs/SoundFontFormat.h"

namespace NSTambraPacking {

/// One table of a bank: records of equal length, the last one the terminal record.
class CSoundFontTable {
 public:
  /// `data` holds the records. Throws XFormatViolation when it is no multiple of the record's
  /// length or holds too few records.
  CSoundFontTable(NSBigFilePackage::SharedMedia data, const NSSoundFont::CTableLayout& layout);

  /// With the terminal record; at least 1.
  std::uint32_t RecordCount() const { return fRecordCount; }
  /// Without the terminal record.
  std::uint32_t ItemCount() const { return fRecordCount - 1; }

  /// Calls `visit(index, record)` for each record in order, the terminal one last. The record's
  /// bytes are valid during the call only.
  template <class Visitor>
  void ForEachRecord(Visitor visit) const {
    std::array<std::uint8_t, 8192> buffer;
    const std::uint32_t length = fLayout.fRecordLength;
    const auto batch = static_cast<std::uint32_t>(buffer.size()) / length;
    for (std::uint32_t first = 0; first < fRecordCount; first += batch) {
      const std::uint32_t count = std::min(batch, fRecordCount - first);
      const std::span bytes = std::span(buffer).first(std::size_t{count} * length);
      NSBigFilePackage::ReadExactly(*fData, std::uint64_t{first} * length, bytes);
      for (std::uint32_t i = 0; i < count; ++i) {
        visit(first + i,
              std::span<const std::uint8_t>(bytes.subspan(std::size_t{i} * length, length)));
      }
    }
  }

  /// Throws XFormatViolation with the table's chunk ID and the record's index.
  [[noreturn]] void ThrowFault(const char* what, std::uint32_t index) const;

 private:
  NSBigFilePackage::SharedMedia fData;
  NSSoundFont::CTableLayout fLayout;
  std::uint32_t fRecordCount;
};

}  // namespace NSTambraPacking
