#pragma once

#include <cstdint>

namespace NSTambraPacking {

class CPackageEntry;
class CTambraPacker;
class ITambraPackingProgress;

/// One phase's reports to the progress object; without one nothing is reported and no stop request
/// is seen. All calls come from the thread that runs the phase.
class CPhaseReport {
 public:
  /// Both may be null; with `progress` there must be a `job`, which is only handed on to it. Both
  /// must outlive the report. Throws XInvariantCorrupt otherwise.
  CPhaseReport(CTambraPacker* job, ITambraPackingProgress* progress, int phase);

  /// Clears the user's stop request, when there is one, and throws XSilentAbort "User aborted".
  void CheckStop() const;
  /// True while the request stands; it is not cleared.
  bool StopRequested() const;

  void Begin(std::uint64_t count) const;
  /// `index` counts from 0.
  void Item(std::uint64_t index, const CPackageEntry& entry) const;
  void End() const;

 private:
  CTambraPacker* fJob;
  ITambraPackingProgress* fProgress;
  int fPhase;
};

}  // namespace NSTambraPacking
