#include "app/PackPhases.h"
#include "filetypes/PackedEntryVerifier.h"
#include "package/PackageVerifier.h"
#include "package/StdioMedia.h"

namespace NSTambraPacking {

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
  }
  for (const CBrokenEntry& broken : result.fBroken) {
    state.fLists.fBroken.push_back({broken.fEntry->Path(), broken.fReferences});
  }
}

}  // namespace NSTambraPacking
