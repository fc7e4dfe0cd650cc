#include <algorithm>
#include <optional>

#include "app/PackPhases.h"
#include "app/ProvenEntryVerifier.h"
#include "filetypes/PackedEntryVerifier.h"
#include "package/PackageVerifier.h"
#include "package/StdioMedia.h"

namespace NSTambraPacking {

namespace {

/// Files that failed while packing come before those that fail now; the log wants entry order.
void SortByEntry(const CPackJobState& state, std::vector<std::u16string>& paths) {
  const auto place = [&state](const std::u16string& path) {
    const auto found = state.fEntryOfPath.find(path);
    return found == state.fEntryOfPath.end() ? state.fEntries.size() : found->second;
  };
  std::stable_sort(paths.begin(), paths.end(),
                   [&](const auto& left, const auto& right) { return place(left) < place(right); });
}

CProvenEntryVerifier::CTickets Tickets(CPackJobState& state) {
  CProvenEntryVerifier::CTickets tickets;
  for (CJobEntry& entry : state.fEntries) {
    if (entry.fCacheTicket) tickets.emplace(entry.fFile.fPath, &*entry.fCacheTicket);
  }
  return tickets;
}

}  // namespace

void VerifyPackage(const CPhaseContext& context) {
  CPackJobState& state = context.fState;
  context.Report(kFinalVerifyPhase).CheckStop();
  const NSBigFilePackage::SharedMedia package =
      NSBigFilePackage::CStdioMedia::OpenForReading(state.fOutputFile.Path());
  CPackedEntryVerifier entryVerifier(state.fInformation.fName, state.fSettings.fSlicedLoopLibrary,
                                     [&context] { return context.StopRequested(); });
  std::optional<CProvenEntryVerifier> provenVerifier;
  CPackCache* const cache = state.fSettings.fCache;
  if (cache != nullptr && cache->IsOpen()) {
    provenVerifier.emplace(entryVerifier, *cache, Tickets(state),
                           [&context] { return context.StopRequested(); });
  }
  IEntryVerifier& first =
      provenVerifier ? static_cast<IEntryVerifier&>(*provenVerifier) : entryVerifier;
  const CPackageVerifier verifier(first, context.fJob, context.fProgress);
  CVerificationOptions options;
  options.fExpectedHeader = &state.fHeader;
  options.fJobs = state.fSettings.fJobs;
  const CVerificationResult result = verifier.Verify(package, options);
  for (const CFailedEntry& failed : result.fFailed) {
    state.fLists.fFailed.push_back(failed.fEntry->Path());
    const auto source = state.fEntryOfPath.find(failed.fEntry->Path());
    if (source != state.fEntryOfPath.end()) {
      state.fEntries[source->second].fReason = failed.fMessage;
    }
  }
  SortByEntry(state, state.fLists.fFailed);
  for (const CBrokenEntry& broken : result.fBroken) {
    state.fLists.fBroken.push_back({broken.fEntry->Path(), broken.fReferences});
  }
}

void KeepPackedEntries(CPackJobState& state, const CTambraPackProgress& progress) {
  if (state.fSettings.fCache == nullptr) return;
  std::vector<CPackCache::CCandidate> candidates;
  for (const CJobEntry& entry : state.fEntries) {
    if (entry.fCacheTicket) candidates.push_back({&*entry.fCacheTicket, entry.fEntry->Data()});
  }
  state.fSettings.fCache->Keep(candidates, [&progress] { return progress.StopRequested(); });
}

}  // namespace NSTambraPacking
