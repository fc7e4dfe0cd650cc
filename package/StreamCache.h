#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>

#include "Parts/TolbrookPackage/Core/FileSystem.h"

#include "package/BlockStore.h"
#include "package/ContentDigest.h"
#include "package/StdioMedia.h"

namespace NSBigFilePackage {

/// Streams that outlast the run that made them, each under a key, in one block store with a
/// catalogue as its first stream. One process at a time holds the file; a crash leaves what was
/// saved last.
///
/// Nothing in the file is trusted: a stream is given out only when its bytes have the digest that
/// the catalogue tells, and the catalogue only when it has its own.
class CStreamCache {
 public:
  struct CRecord {
    std::uint32_t fIdentifier = 0;  ///< in the block store
    std::uint64_t fLength = 0;      ///< bytes
    CDigest fDigest{};
    std::uint64_t fLastUse = 0;  ///< number of the save after which it was last given out
    std::uint8_t fNote = 0;      ///< the owner's
  };
  struct CFound {
    SharedMedia fMedia;  ///< read-only; lasts as long as the cache is open
    CDigest fDigest{};
    std::uint8_t fNote = 0;
  };
  /// What came of a search.
  enum class ESearch { kFound, kMissing, kDamaged };

  /// Opens the file, or makes it. One that cannot be used, and one that is longer than `limit`
  /// bytes, is begun anew. Throws XLocked when another process holds it, and as CFile.
  static std::unique_ptr<CStreamCache> Open(const NSTolbrook::NativePath& file,
                                            std::uint64_t limit);
  /// As it was saved last, for looking only: it is neither locked nor changed. Throws XOpen and
  /// XFormatViolation when it cannot be used.
  static std::unique_ptr<CStreamCache> OpenForReading(const NSTolbrook::NativePath& file);
  /// Removes the file; returns false when there was none. Throws XLocked when it is in use.
  static bool Remove(const NSTolbrook::NativePath& file);

  CStreamCache(const CStreamCache&) = delete;
  CStreamCache& operator=(const CStreamCache&) = delete;
  /// Closes the file, and with it all that was given out. What was not saved is lost.
  ~CStreamCache();

  const CDigestSecret& Secret() const { return *fSecret; }
  /// True when there was a file that could not be used.
  bool WasDamaged() const { return fWasDamaged; }
  std::size_t Count() const { return fRecords.size(); }
  /// Bytes of the file.
  std::uint64_t FileSize() const;

  bool Contains(const CDigest& key) const { return fRecords.contains(key); }
  /// Reads the stream of `key` from end to end and gives it out when it is what it was; a damaged
  /// one leaves the cache with the next save. Safe from several threads at once. Throws only what
  /// `checkStop` does.
  ESearch Find(const CDigest& key, CFound& found, const std::function<void()>& checkStop);

  /// Lets streams go that were not given out since the cache was opened, the longest unused first,
  /// until `bytes` more fit; fewer when that is all. Returns how many bytes fit. What was found
  /// stays readable. Throws as CBlockStore::Commit.
  std::uint64_t MakeRoom(std::uint64_t bytes);
  /// The room that a stream of so many bytes takes.
  static std::uint64_t RoomFor(std::uint64_t length);
  /// Copies `stream` in under `key`, which must be new, as long as its bytes have `digest`; returns
  /// false when they do not. Throws what reading, writing and `checkStop` throw, and nothing is
  /// kept then.
  bool Keep(const CDigest& key, const IMedia& stream, const CDigest& digest, std::uint8_t note,
            const std::function<void()>& checkStop);
  /// Makes all changes last. Throws as CBlockStore::Commit.
  void Save();

 private:
  CStreamCache(std::shared_ptr<CStdioMedia> media, std::uint64_t limit);

  static std::unique_ptr<CStreamCache> OpenLocked(NSTolbrook::CFile file, std::uint64_t limit);
  void Begin();
  void Load(std::shared_ptr<CBlockStore> store);
  void DropDamaged();
  void WriteCatalogue();
  std::uint64_t RoomTaken() const;

  std::shared_ptr<CStdioMedia> fMedia;
  std::uint64_t fLimit;
  std::shared_ptr<CBlockStore> fStore;
  std::optional<CDigestSecret> fSecret;
  std::map<CDigest, CRecord> fRecords;
  std::uint64_t fSaves = 0;  ///< counts them
  bool fWasDamaged = false;

  std::mutex fMutex;  ///< over the two below
  std::set<CDigest> fUsed;
  std::set<CDigest> fDamaged;
};

}  // namespace NSBigFilePackage
