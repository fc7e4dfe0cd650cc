#include "package/BufferedReader.h"

#include <algorithm>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSBigFilePackage {

CBufferedReader::CBufferedReader(SharedMedia media, std::size_t bufferSize)
    : fMedia(std::move(media)), fSize(fMedia->Size()), fBuffer(bufferSize) {}

std::size_t CBufferedReader::Read(std::uint64_t position,
                                  std::span<std::uint8_t> destination) const {
  if (position >= fSize) return 0;
  destination = destination.first(
      static_cast<std::size_t>(std::min<std::uint64_t>(destination.size(), fSize - position)));
  const std::scoped_lock lock(fMutex);
  const std::size_t held = ReadFromWindow(position, destination);
  if (held == destination.size()) return held;
  position += held;
  destination = destination.subspan(held);
  if (destination.size() >= fBuffer.size()) return held + fMedia->Read(position, destination);
  fWindowLength = 0;  // a read that fails leaves no window
  const std::size_t fetched = fMedia->Read(position, fBuffer);
  fWindowStart = position;
  fWindowLength = fetched;
  return held + ReadFromWindow(position, destination);
}

std::size_t CBufferedReader::ReadFromWindow(std::uint64_t position,
                                            std::span<std::uint8_t> destination) const {
  if (position < fWindowStart || position - fWindowStart >= fWindowLength) return 0;
  const auto start = static_cast<std::size_t>(position - fWindowStart);
  const std::size_t count = std::min(destination.size(), fWindowLength - start);
  std::copy_n(fBuffer.begin() + static_cast<std::ptrdiff_t>(start), count, destination.begin());
  return count;
}

void CBufferedReader::Write(std::uint64_t, std::span<const std::uint8_t>) {
  throw NSMordel::XReadOnly("a buffered reader cannot write");
}

void CBufferedReader::SetSize(std::uint64_t) {
  throw NSMordel::XReadOnly("a buffered reader cannot change its media's size");
}

}  // namespace NSBigFilePackage
