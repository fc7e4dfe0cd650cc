#include <map>

#include "fuzz/FuzzInput.h"
#include "package/BlockStore.h"

using NSBigFilePackage::CBlockStore;

namespace {

std::map<std::uint32_t, std::vector<std::uint8_t>> Contents(const CBlockStore& store) {
  std::map<std::uint32_t, std::vector<std::uint8_t>> contents;
  for (const std::uint32_t stream : store.Streams()) {
    auto& bytes = contents[stream];
    bytes.resize(store.StreamLength(stream));
    NSFuzz::Require(store.ReadStream(stream, 0, bytes) == bytes.size());
  }
  return contents;
}

}  // namespace

/// A store that opens can be read, and what is written into it and committed is what the next one
/// finds, all other streams as they were.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto media = NSFuzz::CFuzzInput(data, size).Media();
  const auto store = NSFuzz::Read([&] { return CBlockStore::Open(media); });
  if (!store) return 0;
  auto contents = Contents(**store);
  for (auto& [stream, bytes] : contents) {
    const std::vector<std::uint8_t> piece(700, static_cast<std::uint8_t>(stream));
    const std::size_t position = bytes.size() / 2;
    bytes.resize(std::max(bytes.size(), position + piece.size()));
    std::ranges::copy(piece, bytes.begin() + static_cast<std::ptrdiff_t>(position));
    (*store)->WriteStream(stream, position, piece);
  }
  NSFuzz::Require(Contents(**store) == contents);
  (*store)->Commit();
  NSFuzz::Require(Contents(*CBlockStore::Open(media)) == contents);
  return 0;
}
