#include "filetypes/dwop/DWOPWordSource.h"

#include <algorithm>

namespace NSTambraPacking {

CDWOPWordSource::CDWOPWordSource(const NSBigFilePackage::IMedia& media, std::uint64_t position)
    : fMedia(&media), fPosition(position) {}

std::size_t CDWOPWordSource::ReadWords(std::span<std::uint8_t> destination) {
  const std::uint64_t size = fMedia->Size();
  const std::uint64_t remaining = fPosition < size ? size - fPosition : 0;
  const std::uint64_t words =
      std::min<std::uint64_t>({remaining / sizeof(std::uint32_t),
                               destination.size() / sizeof(std::uint32_t), kDWOPReadWords});
  const auto count = static_cast<std::size_t>(words * sizeof(std::uint32_t));
  if (count == 0) return 0;
  NSBigFilePackage::ReadExactly(*fMedia, fPosition, destination.first(count));
  fPosition += count;
  return count;
}

}  // namespace NSTambraPacking
