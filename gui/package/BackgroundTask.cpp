#include "gui/package/BackgroundTask.h"

#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraGui {

void CTaskLink::CheckStop() const {
  if (StopRequested()) throw NSMordel::XSilentAbort("User aborted");
}

void CTaskLink::Post(std::function<void()> show) const {
  QMetaObject::invokeMethod(
      &fReceiver,
      [stopped = fStopped, show = std::move(show)] {
        if (!*stopped) show();
      },
      Qt::QueuedConnection);
}

CBackgroundTask::~CBackgroundTask() {
  Stop();
  for (CRun& run : fRuns) run.fThread.join();
}

void CBackgroundTask::Start(Work work, Done done) {
  Stop();
  JoinEnded();
  CRun& run = fRuns.emplace_back();
  fCurrent = &run;
  run.fThread = std::thread([this, &run, work = std::move(work), done = std::move(done)] {
    const CTaskLink link(*this, run.fStopped);
    std::exception_ptr failure;
    try {
      work(link);
    } catch (...) {
      failure = std::current_exception();
    }
    link.Post([this, done, failure] {
      fCurrent = nullptr;
      done(failure);
    });
    run.fEnded = true;
  });
}

void CBackgroundTask::Stop() {
  if (fCurrent == nullptr) return;
  *fCurrent->fStopped = true;
  fCurrent = nullptr;
}

void CBackgroundTask::JoinEnded() {
  fRuns.remove_if([](CRun& run) {
    if (!run.fEnded) return false;
    run.fThread.join();
    return true;
  });
}

}  // namespace NSTambraGui
