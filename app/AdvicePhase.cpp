#include <atomic>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/OrderedWork.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FileTypeNames.h"
#include "app/FolderAdvice.h"
#include "app/PackPhases.h"
#include "app/SampleAdvice.h"

namespace NSTambraPacking {

namespace {

class CAdvicePhase {
 public:
  explicit CAdvicePhase(const CPhaseContext& context)
      : fPhase(context),
        fState(context.fState),
        fReport(context.Report(kAdvicePhase)),
        fAdvice(*fState.fSettings.fAdviceRules) {
    for (const CJobEntry& entry : fState.fEntries) {
      const bool isSample = entry.fEntry->TypeCode() == kSampleEntryType;
      if (isSample && entry.TakesPart() && !entry.fFailed)
        fSamples.push_back({&entry, {}, {}, {}, {}});
    }
  }

  void Run() {
    fReport.CheckStop();
    fReport.Begin(fSamples.size());
    NSTolbrook::RunOrdered({.fCount = fSamples.size(),
                            .fJobs = fState.fSettings.fJobs,
                            .fWeights = Sizes(),
                            .fBegin = [this](std::size_t item) { Begin(item); },
                            .fWork = [this](std::size_t item) { Work(item); },
                            .fFinish = [this](std::size_t item) { Finish(item); },
                            .fStopRequested = [this] { return fPhase.StopRequested(); },
                            .fCancel = [this] { fCancelled = true; }});
    AdviseOnRootKeys(fSamples, fAdvice);
    AdviseOnDuplicates(fSamples, fAdvice);
    AdviseOnStrayFiles(fState, fAdvice);
    AdviseOnReferencesFoundBySearch(fState, fAdvice);
    AdviseOnCase(fState, fAdvice);
    AdviseOnNames(fState, fAdvice);
    AdviseOnSize(fState, fSampleBytes, fAdvice);
    fState.fAdvice = fAdvice.TakeSorted();
    fReport.End();
  }

 private:
  std::vector<std::uint64_t> Sizes() const {
    std::vector<std::uint64_t> sizes;
    for (const CSampleFacts& facts : fSamples) sizes.push_back(facts.fEntry->fSize);
    return sizes;
  }

  void Begin(std::size_t item) { fReport.Item(item, *fSamples[item].fEntry->fEntry); }

  void CheckStop() const {
    if (fCancelled || fPhase.StopRequested()) throw NSMordel::XSilentAbort("User aborted");
  }

  void Work(std::size_t item) {
    const CJobEntry& entry = *fSamples[item].fEntry;
    try {
      fSamples[item] = GatherSampleFacts(entry, [this] { CheckStop(); });
    } catch (NSMordel::CExceptionBodyMixin& e) {
      e.AddContext(NSMordel::kTargetObjectType, "file");
      e.AddContext(NSMordel::kTargetObjectId, NSTolbrook::Utf8FromText(entry.fFile.fPath));
      throw;
    }
  }

  void Finish(std::size_t item) {
    AdviseOnSample(fSamples[item], fAdvice);
    fSampleBytes += fSamples[item].fMeasures.fPackedSize;
  }

  const CPhaseContext& fPhase;
  CPackJobState& fState;
  CPhaseReport fReport;
  CAdviceList fAdvice;
  std::vector<CSampleFacts> fSamples;
  std::uint64_t fSampleBytes = 0;
  std::atomic<bool> fCancelled = false;
};

}  // namespace

void GiveAdvice(const CPhaseContext& context) { CAdvicePhase(context).Run(); }

}  // namespace NSTambraPacking
