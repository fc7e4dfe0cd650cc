#pragma once

#include <unordered_map>

#include "app/PackCache.h"
#include "package/PackageVerifier.h"

namespace NSTambraPacking {

/// Takes the entries whose bytes, as read back, are those that an earlier verification found no
/// fault with as verified, and leaves all others to another verifier. Notes the proof for those
/// that pass it.
class CProvenEntryVerifier : public IEntryVerifier {
 public:
  /// By path. Only of entries whose verdict depends on nothing but their bytes.
  using CTickets = std::unordered_map<std::u16string, CCacheTicket*>;

  /// All must outlive the verifier; the tickets' proofs are filled in. `cache` is open.
  CProvenEntryVerifier(IEntryVerifier& verifier, const CPackCache& cache, CTickets tickets,
                       std::function<bool()> stopRequested);

  void TakeEntries(const std::vector<std::shared_ptr<CPackageEntry>>& entries) override;
  std::vector<std::u16string> Verify(const CPackageEntry& entry,
                                     bool resolveReferences) const override;
  void Cancel() override;

 private:
  IEntryVerifier& fVerifier;
  const CPackCache& fCache;
  CTickets fTickets;
  std::function<bool()> fStopRequested;
  std::atomic<bool> fCancelled = false;
};

}  // namespace NSTambraPacking
