#include "Parts/TolbrookPackage/Core/OrderedWork.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTolbrook {

namespace {

/// How often the caller looks for a stop request while it waits.
constexpr std::chrono::milliseconds kStopInterval{20};
/// Items that a worker may be ahead of the caller, for each worker.
constexpr std::size_t kItemsAheadPerJob = 64;

void CheckStop(const COrderedWork& work) {
  if (work.fStopRequested && work.fStopRequested()) throw NSMordel::XSilentAbort("User aborted");
}

void RunAlone(const COrderedWork& work) {
  for (std::size_t index = 0; index < work.fCount; ++index) {
    work.fBegin(index);
    work.fWork(index);
    work.fFinish(index);
  }
}

/// The threads, and what they and the caller tell each other.
class CWorkers {
 public:
  explicit CWorkers(const COrderedWork& work) : fOrdered(work), fResults(work.fCount) {
    const std::size_t jobs = std::min<std::size_t>(work.fJobs, work.fCount);
    fWindow = jobs * kItemsAheadPerJob;
    fThreads.reserve(jobs);
    for (std::size_t job = 0; job < jobs; ++job) {
      try {
        fThreads.emplace_back([this] { Work(); });
      } catch (const std::system_error&) {
        if (fThreads.empty()) throw;
        break;  // fewer threads do the same work
      }
    }
  }

  CWorkers(const CWorkers&) = delete;
  CWorkers& operator=(const CWorkers&) = delete;

  ~CWorkers() {
    {
      const std::lock_guard lock(fMutex);
      fCancelled = true;
    }
    if (fTaken < fOrdered.fCount && fOrdered.fCancel) fOrdered.fCancel();
    fRoomAhead.notify_all();
    for (std::thread& thread : fThreads) thread.join();
  }

  /// Waits for the result of `index`, the next in order, and raises its exception.
  void Take(std::size_t index) {
    std::unique_lock lock(fMutex);
    while (!fResults[index].fDone) {
      fResultReady.wait_for(lock, kStopInterval);
      lock.unlock();
      CheckStop(fOrdered);
      lock.lock();
    }
    fTaken = index + 1;
    const std::exception_ptr failure = std::exchange(fResults[index].fFailure, nullptr);
    lock.unlock();
    fRoomAhead.notify_all();
    if (failure) std::rethrow_exception(failure);
  }

 private:
  struct CResult {
    bool fDone = false;
    std::exception_ptr fFailure;
  };

  void Work() {
    std::unique_lock lock(fMutex);
    while (true) {
      fRoomAhead.wait(lock, [this] {
        return fCancelled || fNext == fOrdered.fCount || fNext < fTaken + fWindow;
      });
      if (fCancelled || fNext == fOrdered.fCount) return;
      const std::size_t index = fNext++;
      lock.unlock();
      std::exception_ptr failure;
      try {
        fOrdered.fWork(index);
      } catch (...) {
        failure = std::current_exception();
      }
      lock.lock();
      fResults[index] = {true, failure};
      fResultReady.notify_one();
    }
  }

  const COrderedWork& fOrdered;
  std::mutex fMutex;
  std::condition_variable fResultReady;
  std::condition_variable fRoomAhead;
  std::vector<CResult> fResults;
  std::size_t fWindow = 0;
  std::size_t fNext = 0;
  std::size_t fTaken = 0;
  bool fCancelled = false;
  std::vector<std::thread> fThreads;
};

}  // namespace

void RunOrdered(const COrderedWork& work) {
  if (work.fJobs <= 1 || work.fCount <= 1) return RunAlone(work);
  CWorkers workers(work);
  for (std::size_t index = 0; index < work.fCount; ++index) {
    work.fBegin(index);
    workers.Take(index);
    work.fFinish(index);
  }
}

}  // namespace NSTolbrook
