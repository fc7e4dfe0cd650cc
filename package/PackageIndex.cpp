#include "package/PackageIndex.h"

#include <array>
#include <span>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/ExceptionResponder.h"

#include "package/PackageFormat.h"

namespace NSTambraPacking {

namespace {

using NSBigFilePackage::CMediaCursor;
using NSMordel::XFormatViolation;

// Where the items behind the name stand.
constexpr std::size_t kTypeAt = 0;
constexpr std::size_t kOffsetAt = 1;
constexpr std::size_t kSizeAt = 5;
constexpr std::size_t kFlagAt = 9;

}  // namespace

bool FitsEntryName(std::u16string_view name) {
  constexpr std::size_t kMostForUnit = 3;  // and the mark has as many
  return (name.size() + 1) * kMostForUnit <= kGreatestEntryName ||
         EncodePackageText(name).size() <= kGreatestEntryName;
}

void WriteIndexEntry(CMediaCursor& output, const CIndexEntry& entry) {
  NSMordel::CheckInvariant(entry.fTypeCode >= 0 && entry.fTypeCode <= 0xFF,
                           "an entry type code does not fit one byte");
  WriteTextField(output, entry.fName, kGreatestEntryName);
  std::array<std::uint8_t, kIndexEntryTailLength> tail{};
  tail[kTypeAt] = static_cast<std::uint8_t>(entry.fTypeCode);
  NSTolbrook::StoreBigEndian(std::span(tail).subspan(kOffsetAt), entry.fOffset);
  NSTolbrook::StoreBigEndian(std::span(tail).subspan(kSizeAt), entry.fSize);
  tail[kFlagAt] = entry.fFlag;
  output.Write(tail);
}

CIndexEntry ReadIndexEntry(CMediaCursor& input) {
  CIndexEntry entry;
  entry.fName = ReadTextField(input, kGreatestEntryName);
  if (entry.fName.empty()) throw XFormatViolation("an entry of the package has no name");
  std::array<std::uint8_t, kIndexEntryTailLength> tail{};
  if (input.Remaining() < tail.size()) {
    throw XFormatViolation("an index entry of the package is cut short");
  }
  input.ReadExactly(tail);
  entry.fTypeCode = tail[kTypeAt];
  entry.fOffset = NSTolbrook::LoadBigEndian<std::uint32_t>(std::span(tail).subspan(kOffsetAt));
  entry.fSize = NSTolbrook::LoadBigEndian<std::uint32_t>(std::span(tail).subspan(kSizeAt));
  entry.fFlag = tail[kFlagAt];
  return entry;
}

}  // namespace NSTambraPacking
