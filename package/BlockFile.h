#pragma once

#include <optional>

#include "Parts/TolbrookPackage/Core/Media.h"

namespace NSBigFilePackage {

/// What a root slot names.
struct CRootSlot {
  std::uint64_t fGeneration = 0;
  std::uint64_t fFirstBlock = 0;  ///< of the directory's chain
  friend bool operator==(const CRootSlot&, const CRootSlot&) = default;
};

/// The block level of a block store: a media cut into equal blocks behind a header and two root
/// slots. It knows nothing of what the blocks hold. Wrong arguments throw XStdInvalidArgument
/// before anything is written; errors of the media pass through.
class CBlockFile {
 public:
  enum class ECreate { kNew, kReplace };

  /// Writes the header and a root area of filler; the file has no blocks. A media that is not
  /// empty throws XAlreadyExists with kNew, and with kReplace when it cannot be written.
  static CBlockFile Create(SharedMedia media, ECreate mode, std::uint32_t blockSize);
  /// Throws XOpen when the media does not begin with the header of a block store.
  static CBlockFile Open(SharedMedia media);

  std::uint32_t BlockSize() const { return fBlockSize; }
  /// Whole blocks; a part of a block at the end does not count.
  std::uint64_t BlockCount() const { return fBlockCount; }

  /// Writes block `index` and, when asked to, flushes the media. An index equal to the block count
  /// appends. `block` is exactly one block. Returns the new block count.
  std::uint64_t WriteBlock(std::uint64_t index, std::span<const std::uint8_t> block, bool flush);
  /// Reads the first bytes of block `index`, up to destination.size() and at most the block.
  /// Returns the number of bytes read.
  std::size_t ReadBlock(std::uint64_t index, std::span<std::uint8_t> destination) const;

  /// Makes the media one block longer without writing the block, so that it takes no room on a
  /// disk that knows holes. Returns its index.
  std::uint64_t AppendBlock();
  /// Writes a part of block `index`, from `offset` in the block on.
  void WritePart(std::uint64_t index, std::size_t offset, std::span<const std::uint8_t> part);
  /// Fills `part` from block `index`, from `offset` in the block on. Throws XRead.
  void ReadPart(std::uint64_t index, std::size_t offset, std::span<std::uint8_t> part) const;

  /// `slot` is 0 or 1. Nothing when the slot's check value is wrong.
  std::optional<CRootSlot> ReadRootSlot(unsigned slot) const;
  /// Not flushed.
  void WriteRootSlot(unsigned slot, const CRootSlot& root);

  void Flush() { fMedia->Flush(); }

 private:
  CBlockFile(SharedMedia media, std::uint32_t blockSize, std::uint64_t firstBlock,
             std::uint64_t blockCount);

  /// Of a byte in a block; checks the block number and that the part lies inside the block.
  std::uint64_t PartPosition(std::uint64_t index, std::size_t offset, std::size_t size) const;
  /// Checks the slot's number.
  static std::uint64_t SlotPosition(unsigned slot);

  SharedMedia fMedia;
  std::uint32_t fBlockSize;
  std::uint64_t fFirstBlock;  ///< media offset of block 0
  std::uint64_t fBlockCount;
};

}  // namespace NSBigFilePackage
