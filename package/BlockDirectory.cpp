#include "package/BlockDirectory.h"

#include <algorithm>
#include <string>
#include <unordered_set>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"
#include "Parts/TolbrookPackage/Core/Exception.h"

#include "package/BlockStoreFormat.h"

namespace NSBigFilePackage {

using namespace NSBlockStoreFormat;
using NSMordel::XFormatViolation;

namespace {

using BlockSet = std::unordered_set<std::uint64_t>;

template <std::unsigned_integral T>
void Append(std::vector<std::uint8_t>& bytes, T value) {
  bytes.resize(bytes.size() + sizeof(T));
  NSTolbrook::StoreBigEndian(std::span(bytes).last(sizeof(T)), value);
}

void AppendMarker(std::vector<std::uint8_t>& bytes, std::span<const std::uint8_t> marker) {
  bytes.insert(bytes.end(), marker.begin(), marker.end());
}

/// Takes integers and markers from the front of a serialised directory.
class CDirectoryParser {
 public:
  explicit CDirectoryParser(std::span<const std::uint8_t> bytes) : fBytes(bytes) {}

  std::size_t Remaining() const { return fBytes.size(); }

  template <std::unsigned_integral T>
  T Take() {
    return NSTolbrook::LoadBigEndian<T>(TakeBytes(sizeof(T)));
  }

  void TakeMarker(std::span<const std::uint8_t> marker) {
    if (std::ranges::equal(TakeBytes(marker.size()), marker)) return;
    throw XFormatViolation("the block store's directory lacks an end marker");
  }

 private:
  std::span<const std::uint8_t> TakeBytes(std::size_t count) {
    if (count > fBytes.size()) {
      throw XFormatViolation("the block store's directory ends too early");
    }
    const auto taken = fBytes.first(count);
    fBytes = fBytes.subspan(count);
    return taken;
  }

  std::span<const std::uint8_t> fBytes;
};

void CheckBlock(std::uint64_t block, std::uint64_t blockCount, BlockSet& seen) {
  if (block >= blockCount) {
    throw XFormatViolation("the block store's directory names block " + std::to_string(block) +
                           " of " + std::to_string(blockCount));
  }
  if (!seen.insert(block).second) {
    throw XFormatViolation("the block store's directory names block " + std::to_string(block) +
                           " twice");
  }
}

CStreamRecord TakeStream(CDirectoryParser& parser, std::uint32_t blockSize,
                         std::uint64_t blockCount, BlockSet& seen) {
  CStreamRecord stream;
  stream.fLength = parser.Take<std::uint64_t>();
  const auto count = parser.Take<std::uint64_t>();
  if (count != BlocksForLength(stream.fLength, blockSize)) {
    throw XFormatViolation("a stream of " + std::to_string(stream.fLength) + " bytes has " +
                           std::to_string(count) + " blocks");
  }
  if (count > parser.Remaining() / sizeof(std::uint64_t)) {
    throw XFormatViolation("the block store's directory ends within a stream's blocks");
  }
  stream.fBlocks.reserve(static_cast<std::size_t>(count));
  for (std::uint64_t i = 0; i < count; ++i) {
    stream.fBlocks.push_back(parser.Take<std::uint64_t>());
    CheckBlock(stream.fBlocks.back(), blockCount, seen);
  }
  parser.TakeMarker(kStreamEnd);
  return stream;
}

}  // namespace

std::uint64_t BlocksForLength(std::uint64_t length, std::uint32_t blockSize) {
  return length / blockSize + (length % blockSize != 0 ? 1 : 0);
}

std::uint64_t BlocksForDirectory(std::uint64_t length, std::uint32_t blockSize) {
  return length / (blockSize - kNextBlockSize) + 1;
}

std::vector<std::uint8_t> SerialiseDirectory(const StreamMap& streams) {
  std::vector<std::uint8_t> bytes;
  Append(bytes, static_cast<std::uint32_t>(streams.size()));
  for (const auto& [identifier, stream] : streams) {
    Append(bytes, identifier);
    Append(bytes, stream.fLength);
    Append(bytes, std::uint64_t{stream.fBlocks.size()});
    for (const std::uint64_t block : stream.fBlocks) Append(bytes, block);
    AppendMarker(bytes, kStreamEnd);
  }
  AppendMarker(bytes, kDirectoryEnd);
  return bytes;
}

StreamMap ParseDirectory(std::span<const std::uint8_t> bytes, std::uint32_t blockSize,
                         std::uint64_t blockCount) {
  CDirectoryParser parser(bytes);
  StreamMap streams;
  BlockSet seen;
  const auto count = parser.Take<std::uint32_t>();
  for (std::uint32_t i = 0; i < count; ++i) {
    const auto identifier = parser.Take<std::uint32_t>();
    if (!streams.empty() && identifier <= streams.rbegin()->first) {
      throw XFormatViolation("stream " + std::to_string(identifier) +
                             " of the block store is out of order");
    }
    streams.emplace(identifier, TakeStream(parser, blockSize, blockCount, seen));
  }
  parser.TakeMarker(kDirectoryEnd);
  return streams;
}

void WriteDirectoryChain(CBlockFile& file, std::span<const std::uint64_t> chain,
                         std::span<const std::uint8_t> directory) {
  const std::size_t pieceSize = file.BlockSize() - kNextBlockSize;
  std::vector<std::uint8_t> block(file.BlockSize());
  for (std::size_t i = 0; i < chain.size(); ++i) {
    const bool last = i + 1 == chain.size();
    const auto rest = directory.subspan(i * pieceSize);
    const auto piece = rest.first(std::min(rest.size(), pieceSize));
    NSTolbrook::StoreBigEndian(std::span(block), last ? kNoBlock : chain[i + 1]);
    const auto filler = std::ranges::copy(piece, block.begin() + kNextBlockSize).out;
    std::fill(filler, block.end(), kDirectoryFiller);
    file.WriteBlock(chain[i], block, last);
  }
}

CStoredDirectory ReadDirectoryChain(const CBlockFile& file, std::uint64_t firstBlock) {
  CStoredDirectory directory;
  std::vector<std::uint8_t> bytes;
  std::vector<std::uint8_t> block(file.BlockCount() == 0 ? 0 : file.BlockSize());
  BlockSet seen;
  for (std::uint64_t next = firstBlock; next != kNoBlock;) {
    CheckBlock(next, file.BlockCount(), seen);
    directory.fChain.push_back(next);
    file.ReadPart(next, 0, block);
    next = NSTolbrook::LoadBigEndian<std::uint64_t>(block);
    bytes.insert(bytes.end(), block.begin() + kNextBlockSize, block.end());
  }
  directory.fStreams = ParseDirectory(bytes, file.BlockSize(), file.BlockCount());
  for (const auto& [identifier, stream] : directory.fStreams) {
    for (const std::uint64_t index : stream.fBlocks) CheckBlock(index, file.BlockCount(), seen);
  }
  return directory;
}

}  // namespace NSBigFilePackage
