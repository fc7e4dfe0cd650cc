#include "app/TambraPackProgress.h"

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/ExceptionResponder.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/PackageInformation.h"

namespace NSTambraPacking {

namespace {

constexpr int kFirstPhase = 0;
constexpr int kInformationPhase = 1;
constexpr int kLastCountingPhase = 2;
constexpr int kVerifyPhase = 3;
constexpr int kLastPhase = 8;

CStringNumber StageLine(int stage) {
  if (stage == kAdvicePhase) return kAdviceStageLine;
  return {kFirstStageLine.fTable, kFirstStageLine.fEntry + stage};
}

CStringNumber ItemLine(int phase) {
  if (phase == kAdvicePhase) return kAdviceItemLine;
  return {kFirstItemLine.fTable, kFirstItemLine.fEntry + phase};
}

/// The samples of a check share what packing would take up to the end.
int Position(int phase, std::uint64_t done, std::uint64_t count) {
  if (phase != kAdvicePhase) return BarPosition(phase, done, count);
  const int before = BarPosition(kVerifyPhase, 1, 1);
  const auto rest = static_cast<std::uint64_t>(BarPosition(kLastPhase, 1, 1) - before);
  return before + static_cast<int>(count == 0 ? rest : rest * done / count);
}

}  // namespace

CTambraPackProgress::CTambraPackProgress(const CTextResources& texts,
                                         const NSTolbrook::IClock& clock, IProgressView& view,
                                         COptions options)
    : fTexts(texts), fClock(clock), fView(view), fOptions(options) {}

void CTambraPackProgress::BeginWait() {
  if (fOpenWaits++ == 0) fWaitStart = fClock.Milliseconds();
}

void CTambraPackProgress::EndWait() {
  if (--fOpenWaits == 0) fLeftOut += fClock.Milliseconds() - fWaitStart;
}

void CTambraPackProgress::BeginPhase(const CTambraPacker&, int phase, std::uint64_t count) {
  CheckStop();
  if (phase == kFirstPhase) {
    fStart = fWaitStart = fClock.Milliseconds();
    fLeftOut = 0;
  }
  SetStage(phase);
  fCount = count;
}

void CTambraPackProgress::Item(const CTambraPacker&, int phase, std::uint64_t index,
                               const CPackageEntry&, const std::u16string& name) {
  CheckStop();
  const bool counts = phase <= kLastCountingPhase;
  const std::u16string argument =
      counts ? NSTolbrook::TextFromUtf8(std::to_string(index + 1)) : name;
  fView.SetItemLine(fTexts.Text(ItemLine(phase), {argument}));
  const int position = Position(phase, index, fCount);
  fView.SetBar(position);
  if (fOptions.fShowTime) UpdateTimeLine(position);
}

void CTambraPackProgress::EndPhase(CTambraPacker&, int phase) {
  CheckStop();
  NSMordel::CheckInvariant(fJob != nullptr, "a progress object must know the run that reports");
  fView.SetBar(Position(phase, fCount, fCount));
  SetStage(kIdleStage);
  if (phase == kInformationPhase) fView.SetInformation(fJob->Information());
  if (phase == kVerifyPhase) {
    fJob->CheckEntries();
    const CWait wait(*this);
    fJob->CheckExternalReferences(fOptions.fWarnForExternalReferences);
  }
}

void CTambraPackProgress::CheckStop() {
  if (fStopRequested.exchange(false)) throw NSMordel::XSilentAbort("User aborted");
}

void CTambraPackProgress::SetStage(int stage) {
  fView.SetStageLine(fTexts.Text(StageLine(stage)));
  fView.SetItemLine({});
}

void CTambraPackProgress::UpdateTimeLine(int position) {
  const std::uint64_t now = fClock.Milliseconds();
  const CTimeLine line = fEstimate.Update(position, now - fStart - fLeftOut);
  if (line.fKind != CTimeLine::EKind::kUnchanged) fView.SetTimeLine(TimeLineText(fTexts, line));
}

}  // namespace NSTambraPacking
