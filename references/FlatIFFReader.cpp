#include "references/FlatIFFReader.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "package/PartialMedia.h"

namespace NSTolbrook {

using NSBigFilePackage::SharedMedia;

CIFFReader::CIFFReader(SharedMedia media, EByteOrder order, std::uint64_t start, std::uint64_t end)
    : fMedia(std::move(media)),
      fOrder(order),
      fMediaSize(fMedia->Size()),
      fStart(start),
      fEnd(std::min(end, fMediaSize)),
      fNext(start) {}

bool CIFFReader::AtChunk() const {
  if (fNext >= fEnd || fEnd - fNext < kPlainHeaderLength) return false;
  std::array<std::uint8_t, 4> id{};
  NSBigFilePackage::ReadExactly(*fMedia, fNext, id);
  return IsValidFourCharCode(LoadBigEndian<FourCharCode>(id));
}

std::optional<CChunkInfo> CIFFReader::NextChunk() {
  const std::uint64_t remaining = fNext < fEnd ? fEnd - fNext : 0;
  if (remaining == 0 || (fNext == fStart && remaining < kPlainHeaderLength)) return std::nullopt;
  if (remaining < kPlainHeaderLength) {
    ThrowChunkFault("the data ends inside a chunk header", 0, fNext);
  }
  std::array<std::uint8_t, kPlainHeaderLength> header{};
  NSBigFilePackage::ReadExactly(*fMedia, fNext, header);

  const std::span<const std::uint8_t> bytes(header);
  CChunkInfo info;
  info.fPosition = fNext;
  info.fCode = LoadBigEndian<FourCharCode>(bytes);
  info.fSize = LoadInteger<std::uint32_t>(bytes.subspan(4), fOrder);
  if (!IsValidFourCharCode(info.fCode)) ThrowChunkFault("invalid chunk ID", info.fCode, fNext);
  if (info.fSize > fMediaSize - fNext - kPlainHeaderLength) {
    ThrowChunkFault("a chunk runs past the end of the data", info.fCode, fNext);
  }
  fNext = EvenOffset(fNext + kPlainHeaderLength + info.fSize);
  return info;
}

SharedMedia CIFFReader::OpenData(const CChunkInfo& chunk) const {
  return std::make_shared<NSBigFilePackage::CPartialMedia>(
      fMedia, chunk.fPosition + kPlainHeaderLength, chunk.fSize);
}

}  // namespace NSTolbrook
