#include "references/IFFReader.h"

#include <algorithm>
#include <array>
#include <memory>
#include <span>
#include <utility>

#include "Parts/TolbrookPackage/Core/StdException.h"

#include "package/PartialMedia.h"

namespace NSTolbrook {

using NSBigFilePackage::CPartialMedia;
using NSBigFilePackage::SharedMedia;

template <class Dialect>
TChunkReader<Dialect>::TChunkReader(SharedMedia media)
    : fMedia(std::move(media)), fStart(0), fSize(fMedia->Size()) {}

template <class Dialect>
TChunkReader<Dialect>::TChunkReader(SharedMedia media, std::uint64_t start, std::uint64_t size)
    : fMedia(std::move(media)), fStart(start), fSize(size) {}

template <class Dialect>
std::optional<CChunkInfo> TChunkReader<Dialect>::FirstChunk() {
  fPosition = 0;
  if (fSize < kPlainHeaderLength) return std::nullopt;
  return ReadHeader();
}

template <class Dialect>
std::optional<CChunkInfo> TChunkReader<Dialect>::NextChunk(const CChunkInfo& chunk) {
  const std::uint64_t end = EvenOffset(chunk.fPosition + kPlainHeaderLength + chunk.fSize);
  if (end >= fSize) return std::nullopt;
  fPosition = end;
  return ReadHeader();
}

template <class Dialect>
CChunkInfo TChunkReader<Dialect>::ReadHeader() {
  const std::uint64_t offset = fStart + fPosition;
  const std::uint64_t remaining = fSize - fPosition;
  std::array<std::uint8_t, kGroupHeaderLength> header{};
  const std::size_t length = std::min<std::uint64_t>(header.size(), remaining);
  NSBigFilePackage::ReadExactly(*fMedia, offset, std::span(header).first(length));

  const std::span<const std::uint8_t> bytes(header);
  const auto id = LoadBigEndian<FourCharCode>(bytes);
  if (length < 4) ThrowChunkFault("the data ends inside a chunk ID", id, offset);
  if (!IsValidFourCharCode(id)) ThrowChunkFault("invalid chunk ID", id, offset);
  if (length < kPlainHeaderLength) ThrowChunkFault("the data ends inside a size", id, offset);
  CChunkInfo info;
  info.fPosition = fPosition;
  info.fSize = LoadInteger<std::uint32_t>(bytes.subspan(4), Dialect::kByteOrder);
  info.fKind = ChunkKindOfID(id, Dialect::kFormID);
  info.fCode = id;
  if (info.fSize > remaining - kPlainHeaderLength) {
    ThrowChunkFault("a chunk runs past the end of the data", id, offset);
  }
  if (info.fKind == EChunkKind::kPlain) return info;

  if (length < kGroupHeaderLength) ThrowChunkFault("the data ends inside a type", id, offset);
  info.fCode = LoadBigEndian<FourCharCode>(bytes.subspan(kPlainHeaderLength));
  if (!IsValidFourCharCode(info.fCode)) ThrowChunkFault("invalid group type", id, offset);
  return info;
}

template <class Dialect>
TChunkReader<Dialect> TChunkReader<Dialect>::EnterGroup(const CChunkInfo& group) const {
  const std::uint32_t size = GroupDataSize(group);
  return TChunkReader(fMedia, fStart + group.fPosition + kGroupHeaderLength, size);
}

template <class Dialect>
std::optional<CChunkInfo> TChunkReader<Dialect>::FindGroup(EChunkKind kind, FourCharCode type) {
  std::optional<CChunkInfo> chunk = FirstChunk();
  while (chunk && !(chunk->fKind == kind && chunk->fCode == type)) chunk = NextChunk(*chunk);
  return chunk;
}

template <class Dialect>
std::uint32_t TChunkReader<Dialect>::GroupDataSize(const CChunkInfo& group) const {
  const FourCharCode id = GroupID(group.fKind, Dialect::kFormID);
  if (group.fSize < kGroupTypeLength) {
    ThrowChunkFault("a group is smaller than its type", id, fStart + group.fPosition);
  }
  return group.fSize - kGroupTypeLength;
}

template <class Dialect>
SharedMedia TChunkReader<Dialect>::OpenData(const CChunkInfo& chunk) const {
  const bool isPlain = chunk.fKind == EChunkKind::kPlain;
  const std::uint32_t size = isPlain ? chunk.fSize : GroupDataSize(chunk);
  const std::uint64_t start = fStart + chunk.fPosition + HeaderLength(chunk);
  return std::make_shared<CPartialMedia>(fMedia, start, size);
}

template <class Dialect>
std::uint32_t TChunkReader<Dialect>::HeaderLength(const CChunkInfo& chunk) const {
  return NSTolbrook::HeaderLength(chunk.fKind);
}

template class TChunkReader<CIFFDialect>;
template class TChunkReader<CRIFFDialect>;

}  // namespace NSTolbrook
