#pragma once

namespace NSTambraPacking {
class CTambraPackProgress;
}

namespace NSTambraCli {

/// Turns the user's interrupt (Ctrl-C, SIGTERM) into a stop request while it is alive; a second
/// interrupt ends the program at once. One object at a time.
class CStopSignal {
 public:
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
