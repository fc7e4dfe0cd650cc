#include <atomic>
#include <signal.h>
#include <time.h>
#include <unistd.h>

#include "app/TambraPackProgress.h"
#include "cli/ExitStatus.h"
#include "cli/StopSignal.h"

namespace NSTambraCli {

namespace {

std::atomic<bool> gRequested = false;
std::atomic<NSTambraPacking::CTambraPackProgress*> gProgress = nullptr;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

timespec Now() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now;
}

/// Read and written by the handler alone, which does not interrupt itself.
timespec gFirst;

/// The first interrupt is noted, a late one ends the program.
void Note(int) {
  if (gRequested.exchange(true)) {
    if (Now().tv_sec - gFirst.tv_sec >= CStopSignal::kPatience.count()) _exit(kExitStopped);
    return;
  }
  gFirst = Now();
  if (auto* const progress = gProgress.load()) progress->RequestStop();
}

struct sigaction gInterrupt, gTerminate;

}  // namespace

CStopSignal::CStopSignal(NSTambraPacking::CTambraPackProgress* progress) {
  gProgress = progress;
  gRequested = false;
  struct sigaction action {};
  action.sa_handler = Note;
  action.sa_flags = 0;  // output that a full pipe holds up ends, too
  sigemptyset(&action.sa_mask);
  sigaddset(&action.sa_mask, SIGINT);
  sigaddset(&action.sa_mask, SIGTERM);
  sigaction(SIGINT, &action, &gInterrupt);
  sigaction(SIGTERM, &action, &gTerminate);
}

CStopSignal::~CStopSignal() {
  sigaction(SIGINT, &gInterrupt, nullptr);
  sigaction(SIGTERM, &gTerminate, nullptr);
  gProgress = nullptr;
}

bool CStopSignal::Requested() { return gRequested; }

}  // namespace NSTambraCli
