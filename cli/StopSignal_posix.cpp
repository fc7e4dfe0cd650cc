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
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<time_t>::is_always_lock_free,
              "a signal handler sets them");

/// The second of the first interrupt, 0 before it. Two threads may be interrupted at once.
std::atomic<time_t> gFirst = 0;

/// Never 0.
time_t Now() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec + 1;
}

/// The first interrupt is noted, a late one ends the program.
void Note(int) {
  const time_t now = Now();
  time_t first = 0;
  if (!gFirst.compare_exchange_strong(first, now)) {
    if (now - first >= CStopSignal::kPatience.count()) _exit(kExitStopped);
    return;
  }
  gRequested = true;
  if (auto* const progress = gProgress.load()) progress->RequestStop();
}

struct sigaction gInterrupt, gTerminate;

}  // namespace

CStopSignal::CStopSignal(NSTambraPacking::CTambraPackProgress* progress) {
  gProgress = progress;
  gFirst = 0;
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
