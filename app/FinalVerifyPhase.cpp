#include <algorithm>

#include "app/PackPhases.h"
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

}  // namespace

void VerifyPackage(const CPhaseContext& context) {
  CPackJobState& state = context.fState;
  context.Report(kFinalVerifyPhase).CheckStop();
  const NSBigFilePackage::SharedMedia package =
      NSBigFilePackage::CStdioMedia::OpenForReading(state.fOutputFile.Path());
  CPackedEntryVerifier entryVerifier(state.fInformation.fName, state.fSettings.fSlicedLoopLibrary,
                                     [&context] { return context.StopRequested(); });
  const CPackageVerifier verifier(entryVerifier, context.fJob, context.fProgress);
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

}  // namespace NSTambraPacking
