#pragma once

namespace NSTambraCli {

/// Turns the user's interrupt (Ctrl-C, SIGTERM) into a stop request while it is alive; a second
/// interrupt ends the program at once. One object at a time.
class CStopSignal {
 public:
  CStopSignal();
  CStopSignal(const CStopSignal&) = delete;
  CStopSignal& operator=(const CStopSignal&) = delete;
  ~CStopSignal();

  /// True from the first interrupt on. Safe from any thread.
  static bool Requested();
};

}  // namespace NSTambraCli
