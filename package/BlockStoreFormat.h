#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// The byte layout of a block store; all integers are big-endian.
///
///   offset  0  u64  signature
///   offset  8  u32  block size B in bytes
///   offset 12  u32  size R of the root area in bytes
///   offset 16       root area: slots 0 and 1, each u64 generation, u64 first directory block,
///                   u16 CRC-16/XMODEM of these 16 bytes
///   offset 16 + R   block 0, block 1, ... of B bytes each
///
///   directory block: u64 next directory block or kNoBlock, B - 8 bytes of the directory; behind
///                    the directory's end kDirectoryFiller
///   directory:       u32 stream count; the streams by ascending identifier; kDirectoryEnd
///   stream:          u32 identifier, u64 length in bytes, u64 block count, u64 block number each,
///                    kStreamEnd
namespace NSBigFilePackage::NSBlockStoreFormat {

inline constexpr std::uint64_t kSignature = 0x5132375F46494C45;  // "Q27_FILE"
inline constexpr std::uint32_t kDefaultBlockSize = 0x00040000;

inline constexpr std::size_t kSignatureOffset = 0;
inline constexpr std::size_t kBlockSizeOffset = 8;
inline constexpr std::size_t kRootAreaSizeOffset = 12;
inline constexpr std::size_t kRootAreaOffset = 16;

inline constexpr unsigned kSlotCount = 2;
inline constexpr std::size_t kSlotSize = 18;
inline constexpr std::size_t kSlotCheckedSize = 16;  ///< bytes that the check value covers
inline constexpr std::uint32_t kRootAreaSize = kSlotCount * kSlotSize;
inline constexpr std::uint8_t kRootAreaFiller = 0xBA;

inline constexpr std::size_t kNextBlockSize = 8;
/// A directory block holds its next index and at least one byte.
inline constexpr std::uint32_t kMinimumBlockSize = kNextBlockSize + 1;
inline constexpr std::uint64_t kNoBlock = 0xFFFFFFFFFFFFFFFF;
inline constexpr std::uint8_t kDirectoryFiller = 0xFE;

inline constexpr std::array<std::uint8_t, 4> kDirectoryEnd = {0xB0, 0xBA, 0xFE, 0x77};
inline constexpr std::array<std::uint8_t, 4> kStreamEnd = {0xC0, 0xCA, 0xC0, 0x1A};

/// Bytes of a stream's entry without its block numbers.
inline constexpr std::size_t kStreamEntrySize = 4 + 8 + 8 + kStreamEnd.size();

}  // namespace NSBigFilePackage::NSBlockStoreFormat
