#include "package/PhaseReport.h"

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/ExceptionResponder.h"

#include "package/PackageEntry.h"
#include "package/TambraPackingProgress.h"

namespace NSTambraPacking {

CPhaseReport::CPhaseReport(CTambraPacker* job, ITambraPackingProgress* progress, int phase)
    : fJob(job), fProgress(progress), fPhase(phase) {
  NSMordel::CheckInvariant(job != nullptr || progress == nullptr,
                           "a phase is reported without its job");
}

bool CPhaseReport::StopRequested() const {
  return fProgress != nullptr && fProgress->StopRequested();
}

void CPhaseReport::CheckStop() const {
  if (!StopRequested()) return;
  fProgress->ClearStopRequest();
  throw NSMordel::XSilentAbort("User aborted");
}

void CPhaseReport::Begin(std::uint64_t count) const {
  if (fProgress != nullptr) fProgress->BeginPhase(*fJob, fPhase, count);
}

void CPhaseReport::Item(std::uint64_t index, const CPackageEntry& entry) const {
  if (fProgress != nullptr) fProgress->Item(*fJob, fPhase, index, entry, entry.Name());
}

void CPhaseReport::End() const {
  if (fProgress != nullptr) fProgress->EndPhase(*fJob, fPhase);
}

}  // namespace NSTambraPacking
