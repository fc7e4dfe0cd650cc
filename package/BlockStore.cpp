#include "package/BlockStore.h"

#include <array>
#include <limits>
#include <mutex>
#include <string>

#include "Parts/TolbrookPackage/Core/StdException.h"

namespace NSBigFilePackage {

using namespace NSBlockStoreFormat;
using NSMordel::NSMordelDetails::XStdInvalidArgument;

struct CBlockStore::CState {
  StreamMap fStreams;
  std::vector<std::uint64_t> fCommitted;  // blocks of the current state
  std::vector<std::uint64_t> fPrevious;   // and of the one in the other slot
  unsigned fSlot = 0;
  std::uint64_t fGeneration = 0;
};

namespace {

/// The directory's own blocks and those of all its streams.
std::vector<std::uint64_t> AllBlocks(std::vector<std::uint64_t> chain, const StreamMap& streams) {
  for (const auto& [identifier, stream] : streams) {
    chain.insert(chain.end(), stream.fBlocks.begin(), stream.fBlocks.end());
  }
  return chain;
}

/// The state that a root slot names, or nothing, with the reason in `fault`.
std::optional<CStoredDirectory> ReadState(const CBlockFile& file,
                                          const std::optional<CRootSlot>& slot,
                                          std::string& fault) {
  if (!slot) {
    fault = "wrong check value";
    return std::nullopt;
  }
  try {
    return ReadDirectoryChain(file, slot->fFirstBlock);
  } catch (const NSMordel::XFormatViolation& failure) {
    fault = failure.what();
    return std::nullopt;
  }
}

template <class Map>
auto& FindStream(Map& listed, Map& unlisted, std::uint32_t identifier) {
  if (const auto found = listed.find(identifier); found != listed.end()) return found->second;
  if (const auto found = unlisted.find(identifier); found != unlisted.end()) return found->second;
  throw XStdInvalidArgument("the block store has no stream " + std::to_string(identifier));
}

}  // namespace

CBlockStore::CBlockStore(CBlockFile file, CState state)
    : fFile(std::move(file)),
      fListed(std::move(state.fStreams)),
      fSlot(state.fSlot),
      fGeneration(state.fGeneration),
      fCommittedBlocks(std::move(state.fCommitted)) {
  if (!fListed.empty()) fNextIdentifier = std::uint64_t{fListed.rbegin()->first} + 1;
  fAllocator = AllocatorFor(fCommittedBlocks, state.fPrevious);
  // With g++ for Windows a shared mutex is made at its first use, where it does not keep out a
  // second thread: the first use is here, where there is none.
  const std::scoped_lock lock(fMutex);
}

std::shared_ptr<CBlockStore> CBlockStore::Create(SharedMedia media, ECreate mode,
                                                 std::uint32_t blockSize) {
  CBlockFile file = CBlockFile::Create(std::move(media), mode, blockSize);
  const std::vector<std::uint8_t> directory = SerialiseDirectory({});
  CState state;
  for (std::uint64_t i = 0; i < BlocksForDirectory(directory.size(), blockSize); ++i) {
    state.fCommitted.push_back(i);
  }
  WriteDirectoryChain(file, state.fCommitted, directory);
  file.WriteRootSlot(0, {0, 0});
  file.WriteRootSlot(1, {1, 0});
  file.Flush();
  state.fSlot = 1;
  state.fGeneration = 1;
  return std::shared_ptr<CBlockStore>(new CBlockStore(std::move(file), std::move(state)));
}

std::shared_ptr<CBlockStore> CBlockStore::Open(SharedMedia media) {
  CBlockFile file = CBlockFile::Open(std::move(media));
  const std::array slots = {file.ReadRootSlot(0), file.ReadRootSlot(1)};
  CState state;
  state.fSlot = slots[1] && (!slots[0] || slots[1]->fGeneration > slots[0]->fGeneration) ? 1 : 0;
  std::array<std::string, kSlotCount> faults;
  auto current = ReadState(file, slots[state.fSlot], faults[state.fSlot]);
  auto previous = ReadState(file, slots[1 - state.fSlot], faults[1 - state.fSlot]);
  if (!current) {
    if (!previous) {
      throw NSMordel::XOpen("no state of the block store can be read (" + faults[0] + "; " +
                            faults[1] + ")");
    }
    std::swap(current, previous);
    state.fSlot = 1 - state.fSlot;
  }
  state.fGeneration = slots[state.fSlot]->fGeneration;
  state.fCommitted = AllBlocks(std::move(current->fChain), current->fStreams);
  state.fStreams = std::move(current->fStreams);
  if (previous) state.fPrevious = AllBlocks(std::move(previous->fChain), previous->fStreams);
  return std::shared_ptr<CBlockStore>(new CBlockStore(std::move(file), std::move(state)));
}

std::uint64_t CBlockStore::Generation() const {
  const std::shared_lock lock(fMutex);
  return fGeneration;
}

std::vector<std::uint32_t> CBlockStore::Streams() const {
  const std::shared_lock lock(fMutex);
  std::vector<std::uint32_t> identifiers;
  for (const auto& [identifier, stream] : fListed) identifiers.push_back(identifier);
  return identifiers;
}

CStreamRecord CBlockStore::Lookup(std::uint32_t identifier) const {
  const std::shared_lock lock(fMutex);
  return Find(identifier);
}

std::shared_ptr<IStream> CBlockStore::NewStream() {
  const std::scoped_lock lock(fMutex);
  const std::uint32_t identifier = TakeIdentifier();
  fListed.try_emplace(identifier);
  return std::make_shared<CStream>(shared_from_this(), identifier);
}

std::shared_ptr<IStream> CBlockStore::OpenStream(std::uint32_t identifier) {
  const std::shared_lock lock(fMutex);
  Find(identifier);
  return std::make_shared<CStream>(shared_from_this(), identifier);
}

void CBlockStore::RemoveStream(std::uint32_t identifier) {
  const std::scoped_lock lock(fMutex);
  fBlocks.Resize(Find(identifier), 0);
  if (fListed.erase(identifier) == 0) fUnlisted.erase(identifier);
  if (identifier == fSmallItems) fSmallItems = 0;
}

std::unique_ptr<CTemporaryStream> CBlockStore::BeginItem() {
  return std::make_unique<CTemporaryStream>(shared_from_this());
}

void CBlockStore::Commit() {
  const std::scoped_lock lock(fMutex);
  if (fGeneration == std::numeric_limits<std::uint64_t>::max()) {
    throw NSMordel::XOutOfItems("the block store has no generation left");
  }
  for (auto& [identifier, stream] : fListed) fBlocks.Trim(stream);
  const std::vector<std::uint8_t> directory = SerialiseDirectory(fListed);
  std::vector<std::uint64_t> blocks(
      static_cast<std::size_t>(BlocksForDirectory(directory.size(), fFile.BlockSize())));
  for (std::uint64_t& block : blocks) block = fBlocks.Allocate();
  const std::uint64_t first = blocks.front();
  // The flush with its last block puts the streams' bytes on stable storage, too, so that no slot
  // ever names what is not there.
  WriteDirectoryChain(fFile, blocks, directory);

  blocks = AllBlocks(std::move(blocks), fListed);
  CBlockAllocator allocator = AllocatorFor(blocks, fCommittedBlocks);
  // If the slot fails, nobody knows which state a crash brings back: both stay untouched.
  fAllocator.Freeze(blocks);
  fFile.WriteRootSlot(1 - fSlot, {fGeneration + 1, first});
  fFile.Flush();

  fSlot = 1 - fSlot;
  ++fGeneration;
  fCommittedBlocks = std::move(blocks);
  fAllocator = std::move(allocator);
}

std::uint64_t CBlockStore::StreamLength(std::uint32_t identifier) const {
  const std::shared_lock lock(fMutex);
  return Find(identifier).fLength;
}

std::size_t CBlockStore::ReadStream(std::uint32_t identifier, std::uint64_t position,
                                    std::span<std::uint8_t> destination) const {
  const std::shared_lock lock(fMutex);
  return fBlocks.Read(Find(identifier), position, destination);
}

void CBlockStore::WriteStream(std::uint32_t identifier, std::uint64_t position,
                              std::span<const std::uint8_t> source) {
  const std::scoped_lock lock(fMutex);
  fBlocks.Write(Find(identifier), position, source);
}

void CBlockStore::ResizeStream(std::uint32_t identifier, std::uint64_t size) {
  const std::scoped_lock lock(fMutex);
  fBlocks.Resize(Find(identifier), size);
}

std::uint32_t CBlockStore::NewUnlistedStream() {
  const std::scoped_lock lock(fMutex);
  const std::uint32_t identifier = TakeIdentifier();
  fUnlisted.try_emplace(identifier);
  return identifier;
}

void CBlockStore::ListStream(std::uint32_t identifier) {
  const std::scoped_lock lock(fMutex);
  Find(identifier);
  fListed.insert(fUnlisted.extract(identifier));
}

std::pair<std::uint32_t, std::uint64_t> CBlockStore::AppendSmallItem(
    std::span<const std::uint8_t> bytes) {
  const std::scoped_lock lock(fMutex);
  if (fSmallItems == 0) {
    const std::uint32_t identifier = TakeIdentifier();
    fListed.try_emplace(identifier);
    fSmallItems = identifier;
  }
  CStreamRecord& stream = Find(fSmallItems);
  const std::uint64_t offset = stream.fLength;
  fBlocks.Write(stream, offset, bytes);
  return {fSmallItems, offset};
}

const CStreamRecord& CBlockStore::Find(std::uint32_t identifier) const {
  return FindStream(fListed, fUnlisted, identifier);
}

CStreamRecord& CBlockStore::Find(std::uint32_t identifier) {
  return FindStream(fListed, fUnlisted, identifier);
}

std::uint32_t CBlockStore::TakeIdentifier() {
  if (fNextIdentifier > std::numeric_limits<std::uint32_t>::max()) {
    throw NSMordel::XOutOfItems("the block store has no stream identifier left");
  }
  return static_cast<std::uint32_t>(fNextIdentifier++);
}

CBlockAllocator CBlockStore::AllocatorFor(std::span<const std::uint64_t> current,
                                          std::span<const std::uint64_t> previous) const {
  CBlockAllocator allocator;
  for (const auto& [identifier, stream] : fUnlisted) {
    for (const std::uint64_t block : stream.fBlocks) allocator.Take(block);
  }
  allocator.Freeze(current);
  allocator.Freeze(previous);
  return allocator;
}

}  // namespace NSBigFilePackage
