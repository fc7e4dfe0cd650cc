#include <atomic>
#include <windows.h>

#include "cli/StopSignal.h"

namespace NSTambraCli {

namespace {

std::atomic<bool> gRequested = false;

/// FALSE hands the second interrupt on to the default handler, which ends the program.
BOOL WINAPI Note(DWORD) { return gRequested.exchange(true) ? FALSE : TRUE; }

}  // namespace

CStopSignal::CStopSignal() {
  gRequested = false;
  SetConsoleCtrlHandler(Note, TRUE);
}

CStopSignal::~CStopSignal() { SetConsoleCtrlHandler(Note, FALSE); }

bool CStopSignal::Requested() { return gRequested; }

}  // namespace NSTambraCli
