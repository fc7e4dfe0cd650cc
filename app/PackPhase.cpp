#include <atomic>
#include <exception>
#include <optional>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/OrderedWork.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/PackPhases.h"
#include "app/ReferenceTree.h"
#include "package/PackageFormat.h"
#include "references/StandardReferenceRelocator.h"

namespace NSTambraPacking {

namespace {

/// What the packer made of one entry; filled by a worker, taken up in order.
struct CPacked {
  CPackContext fContext;
  NSBigFilePackage::SharedMedia fData;
  std::optional<CCacheTicket> fTicket;
  std::exception_ptr fFailure;
};

bool ConcernsReference(const NSMordel::CExceptionBodyMixin& failure) {
  const std::string* const type = failure.FindContext(NSMordel::kTargetObjectType);
  return type != nullptr && *type == "reference";
}

class CPackPhase {
 public:
  explicit CPackPhase(const CPhaseContext& context)
      : fPhase(context),
        fState(context.fState),
        fReport(context.Report(4)),
        fReferences(fState),
        fRelocator(fReferences.Lookup(), fState.fInformation.fName, fState.fInformation.fURL) {
    for (std::size_t index = 0; index < fState.fEntries.size(); ++index) {
      if (fState.fEntries[index].TakesPart()) fIndices.push_back(index);
    }
    fPacked.resize(fIndices.size());
  }

  void Run() {
    fReport.CheckStop();
    fReport.Begin(fIndices.size());
    OpenStore();
    NSTolbrook::RunOrdered({.fCount = fIndices.size(),
                            .fJobs = fState.fSettings.fJobs,
                            .fWeights = Sizes(),
                            .fBegin = [this](std::size_t item) { Begin(item); },
                            .fWork = [this](std::size_t item) { Work(item); },
                            .fFinish = [this](std::size_t item) { Finish(item); },
                            .fStopRequested = [this] { return fPhase.StopRequested(); },
                            .fCancel = [this] { fCancelled = true; }});
    fState.fStore->Commit();
    fReport.End();
  }

 private:
  CJobEntry& Entry(std::size_t item) { return fState.fEntries[fIndices[item]]; }

  std::vector<std::uint64_t> Sizes() const {
    std::vector<std::uint64_t> sizes;
    for (const std::size_t index : fIndices) sizes.push_back(fState.fEntries[index].fSize);
    return sizes;
  }

  void OpenStore() {
    fState.fWorkingFile.emplace(fState.fSettings.fOutputFolder.Path());
    fState.fWorkingFile->SetFlush(NSBigFilePackage::CStdioMedia::EFlush::kNever);
    fState.fStore = NSBigFilePackage::CBlockStore::Create(fState.fWorkingFile->Media());
    if (fState.fSettings.fCache != nullptr) fState.fSettings.fCache->Open();
  }

  void Begin(std::size_t item) { fReport.Item(item, *Entry(item).fEntry); }

  void Work(std::size_t item) {
    const CJobEntry& entry = Entry(item);
    CPacked& packed = fPacked[item];
    CPackContext& context = packed.fContext;
    context.fPath = entry.fFile.fPath;
    context.fStopRequested = [this] { return fCancelled || fPhase.StopRequested(); };
    context.fRelocator = &fRelocator;
    try {
      const auto pack = [&] {
        const auto stream = fState.fStore->BeginItem();
        entry.fPacker->Pack(entry.fFile.fItem, *stream, context);
        return stream->Finish();
      };
      CPackCache* const cache = fState.fSettings.fCache;
      packed.fData = cache == nullptr ? pack()
                                      : cache->Pack(entry.fPacker->CacheKind(), entry.fFile.fItem,
                                                    context, packed.fTicket, pack);
    } catch (...) {
      packed.fFailure = std::current_exception();
    }
    context.fStopRequested = nullptr;
  }

  void Finish(std::size_t item) {
    CJobEntry& entry = Entry(item);
    CPacked packed = std::move(fPacked[item]);
    entry.fRemarks.insert(packed.fContext.fRemarks.begin(), packed.fContext.fRemarks.end());
    if (packed.fFailure) {
      JudgeFailure(entry, packed);
      return;
    }
    entry.fPackedSize = packed.fData->Size();
    fPackedSize += entry.fPackedSize;
    FitPackageLimit(fPackedSize, "the package's data");
    entry.fCacheTicket = packed.fTicket;
    entry.fEntry->SetData(std::move(packed.fData));
  }

  /// Notes what leaves the file out of the package and raises again what ends the run.
  void JudgeFailure(CJobEntry& entry, CPacked& packed) {
    try {
      std::rethrow_exception(packed.fFailure);
    } catch (const NSMordel::XResolve& e) {
      entry.fReason = e.what();
      entry.fLeftOut = ELeftOut::kUnresolved;
      fState.fLists.fUnresolved.push_back(
          {entry.fFile.fPath, std::move(packed.fContext.fUnresolved)});
    } catch (const NSMordel::XUnsupportedFormat& e) {
      entry.fReason = e.what();
      if (ConcernsReference(e)) {
        entry.fLeftOut = ELeftOut::kNotPackable;
        fState.fLists.fFailed.push_back(entry.fFile.fPath);
      } else {
        AskToContinueWithout(entry);
      }
    } catch (const NSMordel::XFormatViolation& e) {
      entry.fReason = e.what();
      AskToContinueWithout(entry);
    } catch (NSMordel::CExceptionBodyMixin& e) {
      e.AddContext(NSMordel::kTargetObjectType, "file");
      e.AddContext(NSMordel::kTargetObjectId, NSTolbrook::Utf8FromText(entry.fFile.fPath));
      fState.fCurrentFile = entry.fFile.fPath;
      throw;
    } catch (...) {
      fState.fCurrentFile = entry.fFile.fPath;
      throw;
    }
  }

  void AskToContinueWithout(CJobEntry& entry) {
    if (!fPhase.fAlerts.Ask(kAlertContinueWithout, {entry.fFile.fPath})) {
      throw NSMordel::XAbort(
          "the user does not want to go on without the file",
          {{NSMordel::kTargetObjectType, "file"},
           {NSMordel::kTargetObjectId, NSTolbrook::Utf8FromText(entry.fFile.fPath)}});
    }
    entry.fLeftOut = ELeftOut::kBadFormat;
  }

  const CPhaseContext& fPhase;
  CPackJobState& fState;
  CPhaseReport fReport;
  CReferenceTree fReferences;
  CStandardReferenceRelocator fRelocator;
  std::vector<std::size_t> fIndices;  ///< of the entries that take part
  std::vector<CPacked> fPacked;       ///< one for each of them
  std::uint64_t fPackedSize = 0;      ///< bytes
  std::atomic<bool> fCancelled = false;
};

}  // namespace

void PackEntries(const CPhaseContext& context) { CPackPhase(context).Run(); }

}  // namespace NSTambraPacking
