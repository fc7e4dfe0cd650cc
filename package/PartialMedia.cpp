#include "package/PartialMedia.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSBigFilePackage {

CPartialMedia::CPartialMedia(SharedMedia media, std::uint64_t start, std::uint64_t length)
    : fMedia(std::move(media)), fStart(start), fLength(length) {
  const std::uint64_t size = fMedia->Size();
  if (start <= size && length <= size - start) return;
  throw NSMordel::XFormatViolation("a window of " + std::to_string(length) + " bytes at offset " +
                                   std::to_string(start) + " does not lie inside " +
                                   std::to_string(size) + " bytes");
}

std::size_t CPartialMedia::Read(std::uint64_t position, std::span<std::uint8_t> destination) const {
  if (position >= fLength) return 0;
  const std::uint64_t count = std::min<std::uint64_t>(destination.size(), fLength - position);
  return fMedia->Read(fStart + position, destination.first(static_cast<std::size_t>(count)));
}

void CPartialMedia::Write(std::uint64_t, std::span<const std::uint8_t>) {
  throw NSMordel::XReadOnly("a partial media cannot be written");
}

void CPartialMedia::SetSize(std::uint64_t) {
  throw NSMordel::XReadOnly("the size of a partial media cannot be changed");
}

CWritablePartialMedia::CWritablePartialMedia(SharedMedia media, std::uint64_t start)
    : fMedia(std::move(media)), fStart(start) {}

std::uint64_t CWritablePartialMedia::Size() const {
  const std::uint64_t size = fMedia->Size();
  return fStart < size ? size - fStart : 0;
}

std::size_t CWritablePartialMedia::Read(std::uint64_t position,
                                        std::span<std::uint8_t> destination) const {
  if (position >= Size()) return 0;
  return fMedia->Read(fStart + position, destination);
}

void CWritablePartialMedia::Write(std::uint64_t position, std::span<const std::uint8_t> source) {
  fMedia->Write(OuterPosition(position), source);
}

void CWritablePartialMedia::SetSize(std::uint64_t size) { fMedia->SetSize(OuterPosition(size)); }

void CWritablePartialMedia::Flush() { fMedia->Flush(); }

std::uint64_t CWritablePartialMedia::OuterPosition(std::uint64_t position) const {
  if (position <= std::numeric_limits<std::uint64_t>::max() - fStart) return fStart + position;
  throw NSMordel::XOutOfSpace("position " + std::to_string(position) +
                              " of a partial media lies behind every possible media");
}

}  // namespace NSBigFilePackage
