#include <atomic>
#include <windows.h>

#include "app/TambraPackProgress.h"
#include "cli/ExitStatus.h"
#include "cli/StopSignal.h"

namespace NSTambraCli {

namespace {

/// The system ends a program whose window was closed after five seconds, or as soon as the handler
/// returns.
constexpr DWORD kCloseMilliseconds = 5000;

std::atomic<bool> gRequested = false;
std::atomic<NSTambraPacking::CTambraPackProgress*> gProgress = nullptr;

/// Runs on a thread of its own. The first interrupt is noted, a second one ends the program.
BOOL WINAPI Note(DWORD event) {
  if (gRequested.exchange(true)) TerminateProcess(GetCurrentProcess(), kExitStopped);
  if (auto* const progress = gProgress.load()) progress->RequestStop();
  // Meanwhile the program removes what it has begun, and ends.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(kCloseMilliseconds);
  return TRUE;
}

}  // namespace

CStopSignal::CStopSignal(NSTambraPacking::CTambraPackProgress* progress) {
  gProgress = progress;
  gRequested = false;
  SetConsoleCtrlHandler(Note, TRUE);
}

CStopSignal::~CStopSignal() {
  SetConsoleCtrlHandler(Note, FALSE);
  gProgress = nullptr;
}

bool CStopSignal::Requested() { return gRequested; }

}  // namespace NSTambraCli
