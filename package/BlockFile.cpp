#include "package/BlockFile.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/CRC16.h"
#include "Parts/TolbrookPackage/Core/StdException.h"

#include "package/BlockStoreFormat.h"

namespace NSBigFilePackage {

using namespace NSBlockStoreFormat;
using NSMordel::NSMordelDetails::XStdInvalidArgument;
using NSTolbrook::LoadBigEndian;
using NSTolbrook::StoreBigEndian;

namespace {

void Empty(IMedia& media, CBlockFile::ECreate mode) {
  if (media.Size() == 0) return;
  if (mode == CBlockFile::ECreate::kNew) {
    throw NSMordel::XAlreadyExists("the media of a new block store is not empty");
  }
  try {
    media.SetSize(0);
  } catch (const NSMordel::XReadOnly& failure) {
    throw NSMordel::XAlreadyExists(
        std::string("the media of a new block store cannot be replaced: ") + failure.what());
  }
}

}  // namespace

CBlockFile::CBlockFile(SharedMedia media, std::uint32_t blockSize, std::uint64_t firstBlock,
                       std::uint64_t blockCount)
    : fMedia(std::move(media)),
      fBlockSize(blockSize),
      fFirstBlock(firstBlock),
      fBlockCount(blockCount) {}

CBlockFile CBlockFile::Create(SharedMedia media, ECreate mode, std::uint32_t blockSize) {
  if (blockSize < kMinimumBlockSize) {
    throw XStdInvalidArgument("blocks of " + std::to_string(blockSize) +
                              " bytes cannot hold a directory");
  }
  Empty(*media, mode);
  std::vector<std::uint8_t> header(kRootAreaOffset + kRootAreaSize, kRootAreaFiller);
  const std::span<std::uint8_t> bytes(header);
  StoreBigEndian(bytes.subspan(kSignatureOffset), kSignature);
  StoreBigEndian(bytes.subspan(kBlockSizeOffset), blockSize);
  StoreBigEndian(bytes.subspan(kRootAreaSizeOffset), kRootAreaSize);
  media->Write(0, header);
  return {std::move(media), blockSize, header.size(), 0};
}

CBlockFile CBlockFile::Open(SharedMedia media) {
  std::array<std::uint8_t, kRootAreaOffset> header{};
  const std::span<const std::uint8_t> bytes(header);
  if (media->Read(0, header) < header.size() ||
      LoadBigEndian<std::uint64_t>(bytes.subspan(kSignatureOffset)) != kSignature) {
    throw NSMordel::XOpen("the file is no block store: it does not begin with \"Q27_FILE\"");
  }
  const auto blockSize = LoadBigEndian<std::uint32_t>(bytes.subspan(kBlockSizeOffset));
  if (blockSize < kMinimumBlockSize) {
    throw NSMordel::XOpen("the block store has blocks of " + std::to_string(blockSize) + " bytes");
  }
  const auto rootAreaSize = LoadBigEndian<std::uint32_t>(bytes.subspan(kRootAreaSizeOffset));
  if (rootAreaSize < kRootAreaSize) {
    throw NSMordel::XOpen("the block store has a root area of " + std::to_string(rootAreaSize) +
                          " bytes, which is too small for two slots");
  }
  const std::uint64_t firstBlock = std::uint64_t{rootAreaSize} + kRootAreaOffset;
  const std::uint64_t size = media->Size();
  const std::uint64_t blockCount = size < firstBlock ? 0 : (size - firstBlock) / blockSize;
  return {std::move(media), blockSize, firstBlock, blockCount};
}

std::uint64_t CBlockFile::WriteBlock(std::uint64_t index, std::span<const std::uint8_t> block,
                                     bool flush) {
  if (index > fBlockCount) {
    throw XStdInvalidArgument("block " + std::to_string(index) + " cannot be written behind " +
                              std::to_string(fBlockCount) + " blocks");
  }
  if (block.size() != fBlockSize) {
    throw XStdInvalidArgument("a block of " + std::to_string(fBlockSize) + " bytes cannot be " +
                              std::to_string(block.size()) + " bytes");
  }
  fMedia->Write(fFirstBlock + index * fBlockSize, block);
  fBlockCount = std::max(fBlockCount, index + 1);
  if (flush) fMedia->Flush();
  return fBlockCount;
}

std::size_t CBlockFile::ReadBlock(std::uint64_t index, std::span<std::uint8_t> destination) const {
  const std::size_t size = std::min<std::size_t>(destination.size(), fBlockSize);
  return fMedia->Read(PartPosition(index, 0, size), destination.first(size));
}

std::uint64_t CBlockFile::AppendBlock() {
  fMedia->SetSize(fFirstBlock + (fBlockCount + 1) * fBlockSize);
  return fBlockCount++;
}

void CBlockFile::WritePart(std::uint64_t index, std::size_t offset,
                           std::span<const std::uint8_t> part) {
  fMedia->Write(PartPosition(index, offset, part.size()), part);
}

void CBlockFile::ReadPart(std::uint64_t index, std::size_t offset,
                          std::span<std::uint8_t> part) const {
  ReadExactly(*fMedia, PartPosition(index, offset, part.size()), part);
}

std::optional<CRootSlot> CBlockFile::ReadRootSlot(unsigned slot) const {
  std::array<std::uint8_t, kSlotSize> bytes{};
  if (fMedia->Read(SlotPosition(slot), bytes) < bytes.size()) return std::nullopt;
  const std::span<const std::uint8_t> all(bytes);
  const auto check = LoadBigEndian<std::uint16_t>(all.subspan(kSlotCheckedSize));
  if (check != NSTolbrook::CRC16(all.first(kSlotCheckedSize))) return std::nullopt;
  return CRootSlot{LoadBigEndian<std::uint64_t>(all), LoadBigEndian<std::uint64_t>(all.subspan(8))};
}

void CBlockFile::WriteRootSlot(unsigned slot, const CRootSlot& root) {
  std::array<std::uint8_t, kSlotSize> bytes{};
  const std::span<std::uint8_t> all(bytes);
  StoreBigEndian(all, root.fGeneration);
  StoreBigEndian(all.subspan(8), root.fFirstBlock);
  StoreBigEndian(all.subspan(kSlotCheckedSize), NSTolbrook::CRC16(all.first(kSlotCheckedSize)));
  fMedia->Write(SlotPosition(slot), bytes);
}

std::uint64_t CBlockFile::PartPosition(std::uint64_t index, std::size_t offset,
                                       std::size_t size) const {
  if (index >= fBlockCount) {
    throw XStdInvalidArgument("there is no block " + std::to_string(index) + " among " +
                              std::to_string(fBlockCount));
  }
  if (offset > fBlockSize || size > fBlockSize - offset) {
    throw XStdInvalidArgument(std::to_string(size) + " bytes at offset " + std::to_string(offset) +
                              " do not lie inside a block of " + std::to_string(fBlockSize));
  }
  return fFirstBlock + index * fBlockSize + offset;
}

std::uint64_t CBlockFile::SlotPosition(unsigned slot) {
  if (slot < kSlotCount) return kRootAreaOffset + slot * kSlotSize;
  throw XStdInvalidArgument("root slot " + std::to_string(slot) + " lies outside the root area");
}

}  // namespace NSBigFilePackage
