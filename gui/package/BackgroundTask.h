#pragma once

#include <QObject>
#include <atomic>
#include <exception>
#include <functional>
#include <list>
#include <memory>
#include <thread>

namespace NSTambraGui {

/// What work on a thread of its own needs of the window that began it.
class CTaskLink {
 public:
  CTaskLink(QObject& receiver, std::shared_ptr<std::atomic<bool>> stopped)
      : fReceiver(receiver), fStopped(std::move(stopped)) {}

  bool StopRequested() const { return *fStopped; }
  /// Throws XSilentAbort when the work is to stop.
  void CheckStop() const;
  /// Runs `show` on the window's thread, unless the work has been stopped by then.
  void Post(std::function<void()> show) const;

 private:
  QObject& fReceiver;
  std::shared_ptr<std::atomic<bool>> fStopped;
};

/// Work on a thread of its own, one piece at a time. All but the work happens on the window's
/// thread, which never waits for the work but when the object goes.
class CBackgroundTask : public QObject {
 public:
  using Work = std::function<void(const CTaskLink& link)>;
  /// Told the end of work that was not stopped; the failure is null when there was none.
  using Done = std::function<void(const std::exception_ptr& failure)>;

  explicit CBackgroundTask(QObject* parent) : QObject(parent) {}
  ~CBackgroundTask() override;

  /// Stops what is being worked on and begins something else.
  void Start(Work work, Done done);
  /// Nothing of the work is shown from now on; it ends as soon as it sees the request.
  void Stop();
  bool IsRunning() const { return fCurrent != nullptr; }

 private:
  struct CRun {
    std::thread fThread;
    std::shared_ptr<std::atomic<bool>> fStopped = std::make_shared<std::atomic<bool>>(false);
    std::atomic<bool> fEnded = false;
  };

  void JoinEnded();

  std::list<CRun> fRuns;  ///< the current one and stopped ones that have not ended yet
  CRun* fCurrent = nullptr;
};

}  // namespace NSTambraGui
