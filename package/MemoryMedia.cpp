#include "package/MemoryMedia.h"

#include <algorithm>
#include <string>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSBigFilePackage {
namespace {

std::size_t ReadBytes(std::span<const std::uint8_t> bytes, std::uint64_t position,
                      std::span<std::uint8_t> destination) {
  if (position >= bytes.size()) return 0;
  const auto start = static_cast<std::size_t>(position);
  const std::size_t count = std::min(destination.size(), bytes.size() - start);
  std::ranges::copy(bytes.subspan(start, count), destination.begin());
  return count;
}

}  // namespace

CMemoryMedia::CMemoryMedia(std::vector<std::uint8_t> bytes) : fBytes(std::move(bytes)) {}

std::vector<std::uint8_t> CMemoryMedia::TakeBytes() { return std::exchange(fBytes, {}); }

std::size_t CMemoryMedia::Read(std::uint64_t position, std::span<std::uint8_t> destination) const {
  return ReadBytes(fBytes, position, destination);
}

void CMemoryMedia::Write(std::uint64_t position, std::span<const std::uint8_t> source) {
  if (source.empty()) return;
  const std::uint64_t limit = fBytes.max_size();
  if (position > limit || source.size() > limit - position) {
    throw NSMordel::XOutOfSpace("memory cannot hold " + std::to_string(source.size()) +
                                " bytes at offset " + std::to_string(position));
  }
  const auto start = static_cast<std::size_t>(position);
  if (start + source.size() > fBytes.size()) fBytes.resize(start + source.size());
  std::ranges::copy(source, fBytes.begin() + static_cast<std::ptrdiff_t>(start));
}

void CMemoryMedia::SetSize(std::uint64_t size) {
  if (size > fBytes.max_size()) {
    throw NSMordel::XOutOfSpace("memory cannot hold " + std::to_string(size) + " bytes");
  }
  fBytes.resize(static_cast<std::size_t>(size));
}

std::size_t CMemoryView::Read(std::uint64_t position, std::span<std::uint8_t> destination) const {
  return ReadBytes(fBytes, position, destination);
}

void CMemoryView::Write(std::uint64_t, std::span<const std::uint8_t>) {
  throw NSMordel::XReadOnly("a view of bytes in memory cannot be written");
}

void CMemoryView::SetSize(std::uint64_t) {
  throw NSMordel::XReadOnly("the size of a view of bytes in memory cannot be changed");
}

}  // namespace NSBigFilePackage
