#pragma once

#include <cstdint>
#include <string>

namespace NSTambraPacking {

class CTambraPacker;
class CPackageEntry;

/// What a pack run tells about itself while it lasts, and where it learns that the user wants to
/// stop. All calls come from one thread, in order, whatever works behind them.
class ITambraPackingProgress {
 public:
  virtual ~ITambraPackingProgress() = default;

  /// Phase `phase` (0 to 8) of `count` items begins. Throws XSilentAbort on a stop request.
  virtual void BeginPhase(const CTambraPacker& job, int phase, std::uint64_t count) = 0;
  /// Item `index` (from 0) of the phase is taken up. Throws XSilentAbort on a stop request.
  virtual void Item(const CTambraPacker& job, int phase, std::uint64_t index,
                    const CPackageEntry& entry, const std::u16string& name) = 0;
  /// The phase is over. Throws XSilentAbort on a stop request, and XAbort where the end of a phase
  /// is also a test that the run must pass.
  virtual void EndPhase(CTambraPacker& job, int phase) = 0;

  /// True while the user's stop request stands. Safe from any thread.
  virtual bool StopRequested() const = 0;
  /// Takes the stop request back (whoever raises XSilentAbort for it clears it first).
  virtual void ClearStopRequest() = 0;
};

}  // namespace NSTambraPacking
