#include "app/ProvenEntryVerifier.h"

#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraPacking {

CProvenEntryVerifier::CProvenEntryVerifier(IEntryVerifier& verifier, const CPackCache& cache,
                                           CTickets tickets, std::function<bool()> stopRequested)
    : fVerifier(verifier),
      fCache(cache),
      fTickets(std::move(tickets)),
      fStopRequested(std::move(stopRequested)) {}

void CProvenEntryVerifier::TakeEntries(const std::vector<std::shared_ptr<CPackageEntry>>& entries) {
  fVerifier.TakeEntries(entries);
}

std::vector<std::u16string> CProvenEntryVerifier::Verify(const CPackageEntry& entry,
                                                         bool resolveReferences) const {
  const auto found = fTickets.find(entry.Path());
  if (found == fTickets.end()) return fVerifier.Verify(entry, resolveReferences);
  CCacheTicket& ticket = *found->second;
  const NSBigFilePackage::CDigest digest = fCache.DigestOf(*entry.Data(), [this] {
    if (fCancelled || fStopRequested()) throw NSMordel::XSilentAbort("User aborted");
  });
  if (ticket.fProven == digest) return {};
  std::vector<std::u16string> broken = fVerifier.Verify(entry, resolveReferences);
  if (ticket.fIsTaken) {
    throw NSMordel::XFormatViolation("the bytes in the package are not those that were packed");
  }
  ticket.fProven = digest;
  return broken;
}

void CProvenEntryVerifier::Cancel() {
  fCancelled = true;
  fVerifier.Cancel();
}

}  // namespace NSTambraPacking
