#include <atomic>
#include <mutex>
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
/// The handler's thread may still be at work when the signal is given up.
std::mutex gProgressMutex;
NSTambraPacking::CTambraPackProgress* gProgress = nullptr;

void SetProgress(NSTambraPacking::CTambraPackProgress* progress) {
  const std::scoped_lock lock(gProgressMutex);
  gProgress = progress;
}

void TellProgress() {
  const std::scoped_lock lock(gProgressMutex);
  if (gProgress != nullptr) gProgress->RequestStop();
}

/// In milliseconds since the system's start; 0 before the first interrupt.
std::atomic<ULONGLONG> gFirst = 0;

/// Runs on a thread of its own. The first interrupt is noted, a late one ends the program.
BOOL WINAPI Note(DWORD event) {
  const ULONGLONG now = GetTickCount64();
  if (gRequested.exchange(true)) {
    const ULONGLONG first = gFirst;
    const std::chrono::milliseconds patience = CStopSignal::kPatience;
    if (first != 0 && now - first >= static_cast<ULONGLONG>(patience.count())) {
      TerminateProcess(GetCurrentProcess(), kExitStopped);
    }
  } else {
    gFirst = now;
  }
  TellProgress();
  // Meanwhile the program removes what it has begun, and ends.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(kCloseMilliseconds);
  return TRUE;
}

}  // namespace

CStopSignal::CStopSignal(NSTambraPacking::CTambraPackProgress* progress) {
  SetProgress(progress);
  gFirst = 0;
  gRequested = false;
  SetConsoleCtrlHandler(Note, TRUE);
}

CStopSignal::~CStopSignal() {
  SetConsoleCtrlHandler(Note, FALSE);
  SetProgress(nullptr);
}

bool CStopSignal::Requested() { return gRequested; }

}  // namespace NSTambraCli
