#pragma once

#include "package/BlockAllocator.h"
#include "package/BlockDirectory.h"

namespace NSBigFilePackage {

/// Reads and writes the bytes of streams in the blocks of a block store. Frozen blocks are never
/// written: a write copies them first. A write that fails leaves the stream's length as it was;
/// blocks that it took in vain stay with the stream, to be used next or trimmed.
class CStreamBlocks {
 public:
  /// Both must outlive this object.
  CStreamBlocks(CBlockFile& file, CBlockAllocator& allocator)
      : fFile(file), fAllocator(allocator) {}

  /// As IMedia::Read.
  std::size_t Read(const CStreamRecord& stream, std::uint64_t position,
                   std::span<std::uint8_t> destination) const;
  /// As IMedia::Write.
  void Write(CStreamRecord& stream, std::uint64_t position, std::span<const std::uint8_t> source);
  /// As IMedia::SetSize.
  void Resize(CStreamRecord& stream, std::uint64_t size);
  /// Gives back the blocks that the stream's length does not need.
  void Trim(CStreamRecord& stream);

  /// A block that is free, or a new one at the file's end.
  std::uint64_t Allocate();

 private:
  /// Writes bytes of one block, the `ordinal`-th of the stream or the one to follow its last.
  void WritePiece(CStreamRecord& stream, std::uint64_t ordinal, std::size_t offset,
                  std::span<const std::uint8_t> piece);
  /// The copy of a frozen block's bytes that count, with the piece in its place, in a new block.
  std::uint64_t CopyWith(std::uint64_t block, std::size_t used, std::size_t offset,
                         std::span<const std::uint8_t> piece);
  /// Blocks are used again with what they held, so growing has to write the zeros.
  void GrowWithZeros(CStreamRecord& stream, std::uint64_t size);

  CBlockFile& fFile;
  CBlockAllocator& fAllocator;
};

}  // namespace NSBigFilePackage
