#include "package/StreamBlocks.h"

#include <algorithm>
#include <limits>
#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSBigFilePackage {
namespace {

/// The part of a range of a stream that lies in one block.
struct CPiece {
  std::uint64_t fOrdinal;
  std::size_t fOffset;
  std::size_t fSize;
};

CPiece PieceAt(std::uint64_t position, std::uint64_t size, std::uint32_t blockSize) {
  const auto offset = static_cast<std::size_t>(position % blockSize);
  return {position / blockSize, offset,
          static_cast<std::size_t>(std::min<std::uint64_t>(size, blockSize - offset))};
}

}  // namespace

std::size_t CStreamBlocks::Read(const CStreamRecord& stream, std::uint64_t position,
                                std::span<std::uint8_t> destination) const {
  if (position >= stream.fLength) return 0;
  const auto count = static_cast<std::size_t>(
      std::min<std::uint64_t>(destination.size(), stream.fLength - position));
  for (std::size_t done = 0; done < count;) {
    const CPiece piece = PieceAt(position + done, count - done, fFile.BlockSize());
    fFile.ReadPart(stream.fBlocks[static_cast<std::size_t>(piece.fOrdinal)], piece.fOffset,
                   destination.subspan(done, piece.fSize));
    done += piece.fSize;
  }
  return count;
}

void CStreamBlocks::Write(CStreamRecord& stream, std::uint64_t position,
                          std::span<const std::uint8_t> source) {
  if (source.empty()) return;
  if (source.size() > std::numeric_limits<std::uint64_t>::max() - position) {
    throw NSMordel::XOutOfSpace("a stream cannot hold bytes at offset " + std::to_string(position));
  }
  if (position > stream.fLength) GrowWithZeros(stream, position);
  for (std::size_t done = 0; done < source.size();) {
    const CPiece piece = PieceAt(position + done, source.size() - done, fFile.BlockSize());
    WritePiece(stream, piece.fOrdinal, piece.fOffset, source.subspan(done, piece.fSize));
    done += piece.fSize;
  }
  stream.fLength = std::max(stream.fLength, position + source.size());
}

void CStreamBlocks::Resize(CStreamRecord& stream, std::uint64_t size) {
  if (size > stream.fLength) return GrowWithZeros(stream, size);
  stream.fLength = size;
  Trim(stream);
}

void CStreamBlocks::Trim(CStreamRecord& stream) {
  while (stream.fBlocks.size() > BlocksForLength(stream.fLength, fFile.BlockSize())) {
    fAllocator.Release(stream.fBlocks.back());
    stream.fBlocks.pop_back();
  }
}

std::uint64_t CStreamBlocks::Allocate() {
  if (const auto free = fAllocator.TakeFree(fFile.BlockCount())) return *free;
  const std::uint64_t block = fFile.AppendBlock();
  fAllocator.Take(block);
  return block;
}

void CStreamBlocks::WritePiece(CStreamRecord& stream, std::uint64_t ordinal, std::size_t offset,
                               std::span<const std::uint8_t> piece) {
  if (ordinal == stream.fBlocks.size()) stream.fBlocks.push_back(Allocate());
  std::uint64_t& block = stream.fBlocks[static_cast<std::size_t>(ordinal)];
  if (!fAllocator.IsFrozen(block)) return fFile.WritePart(block, offset, piece);
  const std::uint64_t start = ordinal * fFile.BlockSize();
  const std::uint64_t rest = stream.fLength > start ? stream.fLength - start : 0;
  const auto used = static_cast<std::size_t>(std::min<std::uint64_t>(rest, fFile.BlockSize()));
  block = CopyWith(block, used, offset, piece);
}

std::uint64_t CStreamBlocks::CopyWith(std::uint64_t block, std::size_t used, std::size_t offset,
                                      std::span<const std::uint8_t> piece) {
  std::vector<std::uint8_t> bytes(std::max(used, offset + piece.size()));
  fFile.ReadPart(block, 0, std::span(bytes).first(used));
  std::ranges::copy(piece, bytes.begin() + static_cast<std::ptrdiff_t>(offset));
  const std::uint64_t copy = Allocate();
  fFile.WritePart(copy, 0, bytes);
  return copy;
}

void CStreamBlocks::GrowWithZeros(CStreamRecord& stream, std::uint64_t size) {
  const std::vector<std::uint8_t> zeros(
      static_cast<std::size_t>(std::min<std::uint64_t>(size - stream.fLength, fFile.BlockSize())));
  while (stream.fLength < size) {
    const CPiece piece = PieceAt(stream.fLength, size - stream.fLength, fFile.BlockSize());
    WritePiece(stream, piece.fOrdinal, piece.fOffset, std::span(zeros).first(piece.fSize));
    stream.fLength += piece.fSize;
  }
}

}  // namespace NSBigFilePackage
