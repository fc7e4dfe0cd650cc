#include <atomic>
#include <windows.h>

#include "app/TambraPackProgress.h"
#include "cli/StopSignal.h"

namespace NSTambraCli {

namespace {

std::atomic<bool> gRequested = false;
std::atomic<NSTambraPacking::CTambraPackProgress*> gProgress = nullptr;

/// FALSE hands the second interrupt on to the default handler, which ends the program.
BOOL WINAPI Note(DWORD) {
  if (gRequested.exchange(true)) return FALSE;
  if (auto* const progress = gProgress.load()) progress->RequestStop();
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
