#include "package/StreamCache.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "package/CacheCatalogue.h"

namespace NSBigFilePackage {

using NSTolbrook::CFile;
using NSTolbrook::NativePath;

namespace {

/// Small, so that short samples waste little.
constexpr std::uint32_t kBlockSize = 16'384;
constexpr std::uint32_t kCatalogueStream = 1;
/// Streams may take this much of the limit; the rest is for directory and catalogue, of which the
/// file holds up to three states.
constexpr std::uint64_t kStreamShare = 7;
constexpr std::uint64_t kShares = 8;
/// Another process may only be looking or about to end.
constexpr int kLockTries = 10;
constexpr std::chrono::milliseconds kLockPause{20};

/// The file, made when it is not there, and locked; it still has its name then.
CFile OpenAndLock(const NativePath& path) {
  for (int attempt = 0; attempt < kLockTries; ++attempt) {
    if (attempt > 0) std::this_thread::sleep_for(kLockPause);
    try {
      const bool isThere =
          NSTolbrook::FileStatus(path, false).fKind != NSTolbrook::EFileKind::kMissing;
      CFile file =
          isThere ? CFile::OpenForUpdate(path) : CFile::Create(path, CFile::ECreate::kPrivate);
      if (file.TryLock() && NSTolbrook::FileStatus(path, true).fIdentity == file.Identity()) {
        return file;
      }
    } catch (const NSMordel::XAlreadyExists&) {
      continue;  // somebody else was quicker
    } catch (const NSMordel::XNotFound&) {
      if (attempt + 1 == kLockTries) throw;
    }
  }
  throw NSMordel::XLocked("another run uses it",
                          {{NSMordel::kTargetObjectType, "file"},
                           {NSMordel::kTargetObjectId, NSTolbrook::DisplayText(path)}});
}

}  // namespace

CStreamCache::CStreamCache(std::shared_ptr<CStdioMedia> media, std::uint64_t limit)
    : fMedia(std::move(media)), fLimit(limit) {}

CStreamCache::~CStreamCache() {
  try {
    fMedia->Close();
  } catch (const std::exception&) {
    return;  // all that counts was flushed when it was saved
  }
}

std::unique_ptr<CStreamCache> CStreamCache::Open(const NativePath& file, std::uint64_t limit) {
  return OpenLocked(OpenAndLock(file), limit);
}

std::unique_ptr<CStreamCache> CStreamCache::OpenLocked(CFile file, std::uint64_t limit) {
  const std::uint64_t size = file.Size();
  const auto media =
      std::make_shared<CStdioMedia>(std::move(file), CStdioMedia::EAccess::kReadWrite);
  media->SetFlush(CStdioMedia::EFlush::kAsWritten);
  std::unique_ptr<CStreamCache> cache(new CStreamCache(media, limit));
  if (size == 0 || size > limit) {
    cache->Begin();
    return cache;
  }
  try {
    cache->Load(CBlockStore::Open(media));
  } catch (const NSMordel::CExceptionBodyMixin&) {
    cache->fWasDamaged = true;
    cache->Begin();
  }
  return cache;
}

std::unique_ptr<CStreamCache> CStreamCache::OpenForReading(const NativePath& file) {
  const auto media = CStdioMedia::OpenForReading(file);
  std::unique_ptr<CStreamCache> cache(new CStreamCache(media, media->Size()));
  cache->Load(CBlockStore::Open(media));
  return cache;
}

bool CStreamCache::Remove(const NativePath& file) {
  if (NSTolbrook::FileStatus(file, false).fKind == NSTolbrook::EFileKind::kMissing) return false;
  const CFile held = OpenAndLock(file);
  return NSTolbrook::RemoveFile(file);
}

std::uint64_t CStreamCache::FileSize() const { return fMedia->Size(); }

void CStreamCache::Begin() {
  fStore = CBlockStore::Create(fMedia, CBlockStore::ECreate::kReplace, kBlockSize);
  fStore->NewStream();  // the first identifier: the catalogue's
  fRecords.clear();
  fSaves = 0;
  fSecret.emplace(CDigestSecret::NewSeed());
  Save();
}

void CStreamCache::Load(std::shared_ptr<CBlockStore> store) {
  if (store->BlockSize() != kBlockSize || store->Streams().empty() ||
      store->Streams().front() != kCatalogueStream) {
    throw NSMordel::XFormatViolation("the block store holds no catalogue");
  }
  CCacheCatalogue catalogue = ReadCacheCatalogue(*store->OpenStream(kCatalogueStream));
  for (const auto& [key, record] : catalogue.fRecords) {
    // The store's own directory has no check value: what it says has to agree.
    if (store->StreamLength(record.fIdentifier) != record.fLength) {
      throw NSMordel::XFormatViolation("a stream is not as long as the catalogue says");
    }
  }
  fStore = std::move(store);
  fSecret.emplace(catalogue.fSeed);
  fRecords = std::move(catalogue.fRecords);
  fSaves = catalogue.fSaves;
}

CStreamCache::ESearch CStreamCache::Find(const CDigest& key, CFound& found,
                                         const std::function<void()>& checkStop) {
  const auto record = fRecords.find(key);
  if (record == fRecords.end()) return ESearch::kMissing;
  const auto& [identifier, length, digest, lastUse, note] = record->second;
  SharedMedia stream;
  bool isSound = false;
  try {
    stream = fStore->OpenStream(identifier);
    isSound = DigestOf(*stream, *fSecret, checkStop) == digest;
  } catch (const NSMordel::XRead&) {
    isSound = false;
  }
  const std::scoped_lock lock(fMutex);
  if (!isSound) {
    fDamaged.insert(key);
    return ESearch::kDamaged;
  }
  fUsed.insert(key);
  found = {std::move(stream), digest, note};
  return ESearch::kFound;
}

void CStreamCache::DropDamaged() {
  for (const CDigest& key : fDamaged) {
    const auto record = fRecords.find(key);
    if (record == fRecords.end()) continue;
    fStore->RemoveStream(record->second.fIdentifier);
    fRecords.erase(record);
  }
  fDamaged.clear();
}

std::uint64_t CStreamCache::RoomFor(std::uint64_t length) {
  return (length / kBlockSize + 1) * kBlockSize;
}

std::uint64_t CStreamCache::RoomTaken() const {
  std::uint64_t taken = 0;
  for (const auto& [key, record] : fRecords) taken += RoomFor(record.fLength);
  return taken;
}

std::uint64_t CStreamCache::MakeRoom(std::uint64_t bytes) {
  bool isChanged = !fDamaged.empty();
  DropDamaged();
  const std::uint64_t most = fLimit / kShares * kStreamShare;
  std::uint64_t taken = RoomTaken();
  std::vector<std::pair<std::uint64_t, CDigest>> unused;
  for (const auto& [key, record] : fRecords) {
    if (!fUsed.contains(key)) unused.emplace_back(record.fLastUse, key);
  }
  std::ranges::sort(unused);
  for (const auto& [lastUse, key] : unused) {
    if (taken <= most && bytes <= most - taken) break;
    const CRecord& record = fRecords.at(key);
    taken -= RoomFor(record.fLength);
    fStore->RemoveStream(record.fIdentifier);
    fRecords.erase(key);
    isChanged = true;
  }
  if (isChanged) {
    // Their blocks belong to the last state until there are two later ones.
    WriteCatalogue();
    fStore->Commit();
    fStore->Commit();
  }
  return taken < most ? std::min(bytes, most - taken) : 0;
}

bool CStreamCache::Keep(const CDigest& key, const IMedia& stream, const CDigest& digest,
                        std::uint8_t note, const std::function<void()>& checkStop) {
  const auto copy = fStore->NewStream();
  try {
    CDigester digester(*fSecret);
    CMediaCursor cursor(*copy);
    ReadThrough(stream, [&](std::span<const std::uint8_t> piece) {
      checkStop();
      digester.Add(piece);
      cursor.Write(piece);
    });
    if (digester.Finish() == digest) {
      fRecords.insert_or_assign(
          key, CRecord{copy->Identifier(), cursor.Position(), digest, fSaves, note});
      fUsed.insert(key);
      return true;
    }
  } catch (...) {
    fStore->RemoveStream(copy->Identifier());
    throw;
  }
  fStore->RemoveStream(copy->Identifier());
  return false;
}

void CStreamCache::Save() {
  DropDamaged();
  ++fSaves;
  for (const CDigest& key : fUsed) {
    if (const auto record = fRecords.find(key); record != fRecords.end()) {
      record->second.fLastUse = fSaves;
    }
  }
  WriteCatalogue();
  fStore->Commit();
}

void CStreamCache::WriteCatalogue() {
  const std::vector<std::uint8_t> bytes =
      SerialiseCacheCatalogue({fSecret->Seed(), fSaves, fRecords});
  const auto stream = fStore->OpenStream(kCatalogueStream);
  stream->SetSize(0);
  stream->Write(0, bytes);
}

}  // namespace NSBigFilePackage
