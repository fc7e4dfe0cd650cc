#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "Parts/TolbrookPackage/Core/Clock.h"

#include "app/PackJobChecks.h"
#include "app/ProgressView.h"
#include "app/TextResources.h"
#include "app/TimeEstimate.h"
#include "package/TambraPackingProgress.h"

namespace NSTambraPacking {

/// The phase in which a check looks at the samples; it follows phase 3.
inline constexpr int kAdvicePhase = 10;

/// The pack job's view of the progress window: turns reports into lines, a bar and a time, runs
/// the tests at the end of phase 3 and carries the user's stop request into the job. One object
/// serves one run, whose time begins with phase 0.
class CTambraPackProgress : public ITambraPackingProgress {
 public:
  struct COptions {
    bool fShowTime = true;
    bool fWarnForExternalReferences = false;
  };

  /// All three must outlive the object.
  CTambraPackProgress(const CTextResources& texts, const NSTolbrook::IClock& clock,
                      IProgressView& view, COptions options);

  /// Names the run that will report; called before its first report.
  void Attach(IPackJobChecks& job) { fJob = &job; }

  /// The user wants to stop: the next report raises XSilentAbort. Safe from any thread, and from
  /// a signal handler.
  void RequestStop() noexcept { fStopRequested.store(true); }

  /// The job waits for the user from here to EndWait; the time is left out of the estimate. Waits
  /// may lie inside each other. Called by the thread that runs the job; CWait calls both.
  void BeginWait();
  void EndWait();

  class CWait {
   public:
    explicit CWait(CTambraPackProgress& progress) : fProgress(progress) { fProgress.BeginWait(); }
    CWait(const CWait&) = delete;
    CWait& operator=(const CWait&) = delete;
    ~CWait() { fProgress.EndWait(); }

   private:
    CTambraPackProgress& fProgress;
  };

  void BeginPhase(const CTambraPacker& job, int phase, std::uint64_t count) override;
  void Item(const CTambraPacker& job, int phase, std::uint64_t index, const CPackageEntry& entry,
            const std::u16string& name) override;
  void EndPhase(CTambraPacker& job, int phase) override;
  bool StopRequested() const override { return fStopRequested.load(); }
  void ClearStopRequest() override { fStopRequested.store(false); }

 private:
  void CheckStop();
  void SetStage(int stage);
  void UpdateTimeLine(int position);

  const CTextResources& fTexts;
  const NSTolbrook::IClock& fClock;
  IProgressView& fView;
  COptions fOptions;
  IPackJobChecks* fJob = nullptr;
  std::atomic<bool> fStopRequested{false};
  static_assert(std::atomic<bool>::is_always_lock_free);

  CTimeEstimate fEstimate;
  std::uint64_t fCount = 0;      ///< items of the current phase
  std::uint64_t fStart = 0;      ///< milliseconds
  std::uint64_t fLeftOut = 0;    ///< milliseconds
  std::uint64_t fWaitStart = 0;  ///< milliseconds
  int fOpenWaits = 0;
};

}  // namespace NSTambraPacking
