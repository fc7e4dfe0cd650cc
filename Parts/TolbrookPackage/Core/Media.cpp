#include "Parts/TolbrookPackage/Core/Media.h"

#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSBigFilePackage {

void ReadExactly(const IMedia& media, std::uint64_t position, std::span<std::uint8_t> destination) {
  const std::size_t count = media.Read(position, destination);
  if (count == destination.size()) return;
  throw NSMordel::XRead("expected " + std::to_string(destination.size()) + " bytes at offset " +
                        std::to_string(position) + " but found only " + std::to_string(count));
}

CMediaCursor::CMediaCursor(IMedia& media, std::uint64_t position)
    : fMedia(&media), fPosition(position) {}

std::uint64_t CMediaCursor::Remaining() const {
  const std::uint64_t size = fMedia->Size();
  return fPosition < size ? size - fPosition : 0;
}

std::size_t CMediaCursor::Read(std::span<std::uint8_t> destination) {
  const std::size_t count = fMedia->Read(fPosition, destination);
  fPosition += count;
  return count;
}

void CMediaCursor::ReadExactly(std::span<std::uint8_t> destination) {
  NSBigFilePackage::ReadExactly(*fMedia, fPosition, destination);
  fPosition += destination.size();
}

void CMediaCursor::Write(std::span<const std::uint8_t> source) {
  fMedia->Write(fPosition, source);
  fPosition += source.size();
}

}  // namespace NSBigFilePackage
