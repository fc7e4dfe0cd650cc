#pragma once

#include <map>
#include <vector>

#include "package/BlockFile.h"

namespace NSBigFilePackage {

/// One stream of a block store: byte k is byte k mod block size of block fBlocks[k div block size].
struct CStreamRecord {
  std::uint64_t fLength = 0;           ///< bytes
  std::vector<std::uint64_t> fBlocks;  ///< block numbers in stream order
  friend bool operator==(const CStreamRecord&, const CStreamRecord&) = default;
};

/// The streams of a block store by identifier.
using StreamMap = std::map<std::uint32_t, CStreamRecord>;

/// The number of blocks that hold `length` bytes.
std::uint64_t BlocksForLength(std::uint64_t length, std::uint32_t blockSize);

/// The number of chain blocks that hold a serialised directory of `length` bytes. There is always
/// room left in the last one: a directory that fills its blocks exactly takes one block more.
std::uint64_t BlocksForDirectory(std::uint64_t length, std::uint32_t blockSize);

std::vector<std::uint8_t> SerialiseDirectory(const StreamMap& streams);

/// Reads a serialised directory; bytes behind its end marker are ignored. Throws XFormatViolation
/// unless markers are right, identifiers ascend, every block count is the one that the length
/// needs, and no block number reaches `blockCount` or occurs twice.
StreamMap ParseDirectory(std::span<const std::uint8_t> bytes, std::uint32_t blockSize,
                         std::uint64_t blockCount);

/// Writes a serialised directory to the blocks named by `chain`, of which there are exactly
/// BlocksForDirectory, each either there or next to be appended; flushes with the last one.
void WriteDirectoryChain(CBlockFile& file, std::span<const std::uint64_t> chain,
                         std::span<const std::uint8_t> directory);

/// A directory as it stands in a block store.
struct CStoredDirectory {
  StreamMap fStreams;
  std::vector<std::uint64_t> fChain;  ///< its own blocks
};

/// Reads the chain that begins at `firstBlock` and parses it. Throws as ParseDirectory, and when
/// the chain leaves the file, runs in a circle or meets a block of a stream.
CStoredDirectory ReadDirectoryChain(const CBlockFile& file, std::uint64_t firstBlock);

}  // namespace NSBigFilePackage
