#pragma once

#include <shared_mutex>
#include <utility>

#include "package/BlockStoreFormat.h"
#include "package/Stream.h"
#include "package/StreamBlocks.h"
#include "package/TemporaryStream.h"

namespace NSBigFilePackage {

/// Many independent byte streams in one media, held in blocks. What was committed last is what a
/// crash leaves; everything since then is lost by it, whatever the order in which the disk wrote.
///
/// Streams may be used from several threads at once, each object by one thread at a time, and
/// finished items by any number; nobody else may touch the media. Errors of the media pass
/// through: the store stays usable and readable, and a commit may be tried again.
class CBlockStore : public std::enable_shared_from_this<CBlockStore> {
 public:
  using ECreate = CBlockFile::ECreate;

  /// A store without streams. A media that is not empty throws XAlreadyExists with kNew, and with
  /// kReplace when it cannot be written.
  static std::shared_ptr<CBlockStore> Create(
      SharedMedia media, ECreate mode = ECreate::kNew,
      std::uint32_t blockSize = NSBlockStoreFormat::kDefaultBlockSize);
  /// Takes the newest state that reads without fault. Throws XOpen when there is none.
  static std::shared_ptr<CBlockStore> Open(SharedMedia media);

  std::uint32_t BlockSize() const { return fFile.BlockSize(); }
  /// Of the last commit; 1 for a new store.
  std::uint64_t Generation() const;
  /// Identifiers of all streams that the next commit will list, ascending.
  std::vector<std::uint32_t> Streams() const;
  /// Throws XStdInvalidArgument for an unknown identifier, as all below do.
  CStreamRecord Lookup(std::uint32_t identifier) const;

  /// An empty stream with the next identifier; they count up from 1.
  std::shared_ptr<IStream> NewStream();
  std::shared_ptr<IStream> OpenStream(std::uint32_t identifier);
  void RemoveStream(std::uint32_t identifier);

  /// A packed item to be written. Many may be open at once.
  std::unique_ptr<CTemporaryStream> BeginItem();

  /// Makes all streams, as they are, the state that a crash leaves. Items that are not finished
  /// are no part of it. Costs two flushes and a directory, however much changed.
  void Commit();

  /// The operations of the streams' objects.
  std::uint64_t StreamLength(std::uint32_t identifier) const;
  std::size_t ReadStream(std::uint32_t identifier, std::uint64_t position,
                         std::span<std::uint8_t> destination) const;
  void WriteStream(std::uint32_t identifier, std::uint64_t position,
                   std::span<const std::uint8_t> source);
  void ResizeStream(std::uint32_t identifier, std::uint64_t size);

  /// The operations of CTemporaryStream: a stream that no commit lists until it is told to, and
  /// bytes put behind those of all earlier small items. Returns their stream and offset.
  std::uint32_t NewUnlistedStream();
  void ListStream(std::uint32_t identifier);
  std::pair<std::uint32_t, std::uint64_t> AppendSmallItem(std::span<const std::uint8_t> bytes);

 private:
  struct CState;  // what the constructor starts from

  CBlockStore(CBlockFile file, CState state);

  const CStreamRecord& Find(std::uint32_t identifier) const;
  CStreamRecord& Find(std::uint32_t identifier);
  std::uint32_t TakeIdentifier();
  /// What may be given out once `current` is the committed state.
  CBlockAllocator AllocatorFor(std::span<const std::uint64_t> current,
                               std::span<const std::uint64_t> previous) const;

  mutable std::shared_mutex fMutex;  // over all below; shared for reading streams
  CBlockFile fFile;
  CBlockAllocator fAllocator;
  CStreamBlocks fBlocks{fFile, fAllocator};
  StreamMap fListed;    ///< the next commit's directory
  StreamMap fUnlisted;  ///< streams of unfinished items
  std::uint64_t fNextIdentifier = 1;
  std::uint32_t fSmallItems = 0;  ///< the small items' stream; 0: none yet
  unsigned fSlot;                 ///< the root slot of the last commit
  std::uint64_t fGeneration;
  std::vector<std::uint64_t> fCommittedBlocks;  ///< all that the last commit uses
};

}  // namespace NSBigFilePackage
