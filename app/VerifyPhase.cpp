#include <exception>
#include <new>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/OrderedWork.h"

#include "app/PackPhases.h"
#include "app/ReferenceTree.h"
#include "app/SkipRules.h"
#include "filetypes/FileTypeRegistry.h"
#include "references/StandardReferenceResolver.h"
#include "references/XMLReader.h"

namespace NSTambraPacking {

namespace {

/// What the verifier made of one entry; filled by a worker, taken up in order.
struct CVerdict {
  CVerifyContext fContext;
  bool fIsUnsupported = false;
  bool fFailed = false;
  std::string fReason;
};

/// What is wrong with the file, with the place in its XML text where there is one.
std::string ReasonOf(const std::exception& failure) {
  const auto* const body = dynamic_cast<const NSMordel::CExceptionBodyMixin*>(&failure);
  const std::string* const detail =
      body == nullptr ? nullptr : body->FindContext(NSTolbrook::kXMLMessage);
  return detail == nullptr ? failure.what() : failure.what() + (": " + *detail);
}

class CVerifyPhase {
 public:
  explicit CVerifyPhase(const CPhaseContext& context)
      : fPhase(context),
        fState(context.fState),
        fReport(context.Report(3)),
        fReferences(fState),
        fResolver(fReferences.Lookup(), fState.fInformation.fName, kNoneIncluded) {
    for (std::size_t index = 0; index < fState.fEntries.size(); ++index) {
      if (fState.fEntries[index].TakesPart()) fIndices.push_back(index);
    }
    fVerdicts.resize(fIndices.size());
  }

  void Run() {
    fReport.CheckStop();
    fReport.Begin(fIndices.size());
    NSTolbrook::RunOrdered({.fCount = fIndices.size(),
                            .fJobs = fState.fSettings.fJobs,
                            .fBegin = [this](std::size_t item) { Begin(item); },
                            .fWork = [this](std::size_t item) { Work(item); },
                            .fFinish = [this](std::size_t item) { Finish(item); },
                            .fStopRequested = [this] { return fPhase.StopRequested(); },
                            .fCancel = [this] { fCancelled = true; }});
    ApplySkipRules(fState);
    fReport.End();
  }

 private:
  static inline const IncludedPaths kNoneIncluded;

  CJobEntry& Entry(std::size_t item) { return fState.fEntries[fIndices[item]]; }

  void Begin(std::size_t item) { fReport.Item(item, *Entry(item).fEntry); }

  void Work(std::size_t item) {
    const CJobEntry& entry = Entry(item);
    CVerdict& verdict = fVerdicts[item];
    if (!entry.fFile.fFault.empty()) {
      verdict.fFailed = true;
      verdict.fReason = entry.fFile.fFault;
      return;
    }
    const CFileTypeRegistry& registry = CFileTypeRegistry::Instance();
    verdict.fIsUnsupported = registry.FindVerifier(entry.fFile.fItem) == nullptr;
    if (verdict.fIsUnsupported) return;
    CVerifyContext& context = verdict.fContext;
    context.fPath = entry.fFile.fPath;
    context.fStopRequested = [this] { return fCancelled || fPhase.StopRequested(); };
    context.fProhibitedDevices = fState.fOptions.fProhibitedDevices;
    context.fResolver = &fResolver;
    context.fSlicedLoopLibrary = fState.fSettings.fSlicedLoopLibrary;
    Verify(registry, entry, verdict);
    context.fStopRequested = nullptr;
  }

  /// A failure is noted against the file; only an abort and a lack of memory go on to the run.
  static void Verify(const CFileTypeRegistry& registry, const CJobEntry& entry, CVerdict& verdict) {
    try {
      registry.VerifyFile(entry.fFile.fItem, verdict.fContext);
    } catch (const NSMordel::XSilentAbort&) {
      throw;
    } catch (const NSMordel::XAbort&) {
      throw;
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& e) {
      verdict.fFailed = true;
      verdict.fReason = ReasonOf(e);
    }
  }

  void Finish(std::size_t item) {
    CJobEntry& entry = Entry(item);
    CVerdict verdict = std::move(fVerdicts[item]);
    entry.fFailed = verdict.fFailed;
    entry.fReason = std::move(verdict.fReason);
    entry.fSize = verdict.fContext.fSourceSize;
    entry.fReferences = std::move(verdict.fContext.fReferences);
    entry.fProhibitedDevices = std::move(verdict.fContext.fProhibitedDevicesUsed);
    entry.fRemarks = std::move(verdict.fContext.fRemarks);
    if (!verdict.fIsUnsupported) return;
    entry.fReason = "No verifier found for format";
    if (IsKnownStray(entry) || fPhase.fAlerts.Ask(kAlertUnsupported, {entry.fFile.fPath})) {
      entry.fLeftOut = ELeftOut::kUnsupported;
    } else {
      entry.fFailed = true;
    }
  }

  /// The publisher has said of such a file that it is no error.
  bool IsKnownStray(const CJobEntry& entry) const {
    const CAdviceRules* const rules = fState.fSettings.fAdviceRules;
    return rules != nullptr &&
           rules->SeverityOf(EAdvice::kStrayFile, entry.fFile.fPath) < ESeverity::kError;
  }

  const CPhaseContext& fPhase;
  CPackJobState& fState;
  CPhaseReport fReport;
  CReferenceTree fReferences;
  CStandardReferenceResolver fResolver;
  std::vector<std::size_t> fIndices;  ///< of the entries that take part
  std::vector<CVerdict> fVerdicts;    ///< one for each of them
  std::atomic<bool> fCancelled = false;
};

}  // namespace

void VerifyEntries(const CPhaseContext& context) { CVerifyPhase(context).Run(); }

}  // namespace NSTambraPacking
