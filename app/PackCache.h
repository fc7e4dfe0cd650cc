#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/FileSystem.h"

#include "app/TextNumbers.h"
#include "filetypes/FileTypeInterfaces.h"
#include "package/ContentDigest.h"
#include "package/StreamCache.h"

namespace NSTambraPacking {

/// Ties an entry of a run to the cache.
struct CCacheTicket {
  /// Stands for the source's bytes and for all that makes packed bytes of them.
  NSBigFilePackage::CDigest fKey{};
  bool fIsTaken = false;  ///< the packed bytes are the cache's
  /// Of packed bytes that passed the verification of a finished package, in this run or, when they
  /// were taken, in an earlier one.
  std::optional<NSBigFilePackage::CDigest> fProven;
  std::uint8_t fRemarks = 0;  ///< as the cache stores them
};

/// Packed files from earlier runs. What goes wrong when it is opened, looked into or filled is
/// noted, and the run goes on without; bytes that it gave out and that cannot be read any more fail
/// a run like those of its working file. Only what a finished package was verified with gets in,
/// see docs/cache.md.
class CPackCache {
 public:
  /// Something to tell the user.
  struct CNote {
    CStringNumber fText;
    std::vector<std::u16string> fArguments;
  };
  struct CCounts {
    std::size_t fTaken = 0;   ///< files whose packed bytes were there
    std::size_t fPacked = 0;  ///< files that were packed and might have been there
    std::size_t fKept = 0;    ///< of these, now there for the next run
  };
  /// What is to be kept: a packed file with its ticket.
  struct CCandidate {
    const CCacheTicket* fTicket = nullptr;
    NSBigFilePackage::SharedMedia fData;
  };

  /// The folder need not exist. The file in it takes at most `limit` bytes.
  CPackCache(NSTolbrook::NativePath folder, std::uint64_t limit);
  ~CPackCache();

  /// The cache's file in `folder`.
  static NSTolbrook::NativePath File(const NSTolbrook::NativePath& folder);

  /// Takes the file into use; nobody else can until Close.
  void Open();
  /// What was given out cannot be read afterwards.
  void Close();

  /// The packed bytes of `source`: those in the cache, or what `pack` makes; in both cases with the
  /// remarks in `context`. Fills `ticket` when they are, or may be, kept. Throws what `pack` throws
  /// and XSilentAbort on a stop request. Safe from several threads at once.
  NSBigFilePackage::SharedMedia Pack(NSTolbrook::FourCharCode kind,
                                     const NSTolbrook::CFileItem& source, CPackContext& context,
                                     std::optional<CCacheTicket>& ticket,
                                     const std::function<NSBigFilePackage::SharedMedia()>& pack);
  /// The digest that proofs are told by. Only while open; throws what reading throws.
  NSBigFilePackage::CDigest DigestOf(const NSBigFilePackage::IMedia& media,
                                     const std::function<void()>& checkStop) const;
  /// Keeps those that are proven, as far as there is room, and saves. A stop request ends it soon,
  /// with nothing kept.
  void Keep(const std::vector<CCandidate>& candidates, const std::function<bool()>& stopRequested);

  bool IsOpen() const { return fCache != nullptr; }
  CCounts Counts() const { return {fTaken, fPacked, fKept}; }
  const std::vector<CNote>& Notes() const { return fNotes; }

 private:
  using CDigest = NSBigFilePackage::CDigest;

  /// Nothing when the source cannot be read.
  std::optional<CDigest> KeyOf(NSTolbrook::FourCharCode kind, const NSTolbrook::CFileItem& source,
                               const CPackContext& context) const;
  void NoteTrouble(const std::exception& trouble);
  std::uint64_t FreeRoom() const;

  NSTolbrook::NativePath fFolder;
  std::uint64_t fLimit;
  std::unique_ptr<NSBigFilePackage::CStreamCache> fCache;
  CDigest fProgram{};  ///< stands for all that packs and verifies
  std::atomic<std::size_t> fTaken = 0;
  std::atomic<std::size_t> fPacked = 0;
  std::atomic<std::size_t> fDamaged = 0;
  std::size_t fKept = 0;
  std::vector<CNote> fNotes;
};

}  // namespace NSTambraPacking
