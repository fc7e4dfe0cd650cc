#pragma once

#include <chrono>

namespace NSTambraPacking {
class CTambraPackProgress;
}

namespace NSTambraCli {

/// Turns the user's interrupt (Ctrl-C, SIGTERM) into a stop request while it is alive. An interrupt
/// that comes kPatience later or after that ends the program at once, whatever it leaves behind;
/// one that comes sooner is the same key held down or struck twice. One object at a time.
class CStopSignal {
 public:
  /// Far longer than any command takes to stop and to remove what it has begun.
  static constexpr std::chrono::seconds kPatience{2};

  /// `progress`, which may be null and must outlive the object, is told of the first interrupt.
  explicit CStopSignal(NSTambraPacking::CTambraPackProgress* progress = nullptr);
  CStopSignal(const CStopSignal&) = delete;
  CStopSignal& operator=(const CStopSignal&) = delete;
  ~CStopSignal();

  /// True from the first interrupt on. Safe from any thread.
  static bool Requested();
};

/// Throws XSilentAbort "User aborted" once an interrupt came.
void ThrowIfStopped();

}  // namespace NSTambraCli
