#include "filetypes/dwop/DWOPWordSource.h"

#include <algorithm>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraPacking {

CDWOPWordSource::CDWOPWordSource(const NSBigFilePackage::IMedia& media, std::uint64_t position)
    : fMedia(&media), fPosition(position) {}

std::span<const std::uint32_t> CDWOPWordSource::ReadWords() {
  const std::uint64_t size = fMedia->Size();
  const std::uint64_t remaining = fPosition < size ? size - fPosition : 0;
  const auto count = static_cast<std::size_t>(
      std::min<std::uint64_t>(remaining / sizeof(std::uint32_t), kDWOPReadWords));
  if (count == 0) throw NSMordel::XFormatViolation("zero length sample");
  fBytes.resize(count * sizeof(std::uint32_t));
  fWords.resize(count);
  NSBigFilePackage::ReadExactly(*fMedia, fPosition, fBytes);
  fPosition += fBytes.size();
  for (std::size_t i = 0; i < count; ++i) {
    fWords[i] = NSTolbrook::LoadBigEndian<std::uint32_t>(
        std::span<const std::uint8_t>(fBytes).subspan(i * sizeof(std::uint32_t)));
  }
  return fWords;
}

}  // namespace NSTambraPacking
