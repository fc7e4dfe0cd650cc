#include "Parts/TolbrookPackage/Core/OrderedWork.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <numeric>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTolbrook {

namespace {

/// How often the caller looks for finished items and for a stop request. It is not woken for each
/// item: that would cost more than many an item's work.
constexpr std::chrono::milliseconds kLookInterval{20};

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

/// Says which item is begun next: the first one left, or the heaviest one left when it is as much
/// work as a thread's share of half of all that is left. The half allows for items that take longer
/// than their weight tells.
class CItemChoice {
 public:
  explicit CItemChoice(const COrderedWork& work)
      : fWork(work), fBegun(work.fCount), fByWeight(work.fWeights.size()) {
    std::iota(fByWeight.begin(), fByWeight.end(), std::size_t{0});
    std::stable_sort(fByWeight.begin(), fByWeight.end(), [&work](std::size_t a, std::size_t b) {
      return work.fWeights[a] > work.fWeights[b];
    });
    for (const std::uint64_t weight : work.fWeights) fWeightLeft += static_cast<double>(weight);
  }

  std::size_t BegunCount() const { return fBegunCount; }
  bool IsNoneLeft() const { return fBegunCount == fWork.fCount; }
  bool IsBegun(std::size_t index) const { return fBegun[index]; }

  /// There must be one left.
  std::size_t Begin(bool inOrder) {
    while (fBegun[fFirst]) ++fFirst;
    const std::size_t index = inOrder || fByWeight.empty() ? fFirst : Choose();
    fBegun[index] = true;
    ++fBegunCount;
    if (!fByWeight.empty()) fWeightLeft -= static_cast<double>(fWork.fWeights[index]);
    return index;
  }

 private:
  std::size_t Choose() {
    while (fBegun[fByWeight[fHeaviest]]) ++fHeaviest;
    const std::size_t heaviest = fByWeight[fHeaviest];
    const double weight = static_cast<double>(fWork.fWeights[heaviest]);
    return weight * 2 * fWork.fJobs >= fWeightLeft ? heaviest : fFirst;
  }

  const COrderedWork& fWork;
  std::vector<bool> fBegun;
  std::vector<std::size_t> fByWeight;  ///< heaviest first; empty when all weigh the same
  std::size_t fBegunCount = 0;
  std::size_t fFirst = 0;     ///< all items before it are begun
  std::size_t fHeaviest = 0;  ///< in fByWeight; all before it are begun
  double fWeightLeft = 0;     ///< of the items that are not begun
};

/// The threads, and what they and the caller tell each other.
class CWorkers {
 public:
  explicit CWorkers(const COrderedWork& work)
      : fOrdered(work), fChoice(work), fResults(work.fCount) {
    const std::size_t jobs = std::min<std::size_t>(work.fJobs, work.fCount);
    fThreads.reserve(jobs);
    for (std::size_t job = 0; job < jobs; ++job) {
      try {
        fThreads.emplace_back([this] { Work(); });
      } catch (const std::exception&) {  // no more threads, or no memory for one
        break;                           // fewer threads do the same work
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
    if (!IsEmpty() && fTaken < fOrdered.fCount && fOrdered.fCancel) fOrdered.fCancel();
    fRoomAhead.notify_all();
    for (std::thread& thread : fThreads) thread.join();
  }

  /// Not one thread could be started.
  bool IsEmpty() const { return fThreads.empty(); }

  /// Waits for the result of `index`, the next in order, and raises its exception.
  void Take(std::size_t index) {
    std::unique_lock lock(fMutex);
    while (!fResults[index].fDone) {
      fLookNow.wait_for(lock, kLookInterval);
      lock.unlock();
      CheckStop(fOrdered);
      lock.lock();
    }
    fTaken = index + 1;
    const std::exception_ptr failure = std::exchange(fResults[index].fFailure, nullptr);
    const bool isRoomAwaited = fThreadsWaiting > 0;
    lock.unlock();
    if (isRoomAwaited) fRoomAhead.notify_all();
    if (failure) std::rethrow_exception(failure);
  }

 private:
  struct CResult {
    bool fDone = false;
    std::exception_ptr fFailure;
  };

  bool IsRoomAhead() const { return fChoice.BegunCount() < fTaken + kMostItemsAhead; }
  /// Even without room ahead the item that the caller waits for has to be begun.
  bool MayBegin() const { return IsRoomAhead() || !fChoice.IsBegun(fTaken); }

  /// Nothing when there is nothing left to do.
  std::optional<std::size_t> Begin(std::unique_lock<std::mutex>& lock) {
    while (!fCancelled && !fChoice.IsNoneLeft()) {
      if (MayBegin()) return fChoice.Begin(!IsRoomAhead());
      ++fThreadsWaiting;
      fLookNow.notify_one();
      fRoomAhead.wait(lock);
      --fThreadsWaiting;
    }
    return std::nullopt;
  }

  void Work() {
    std::unique_lock lock(fMutex);
    while (const std::optional<std::size_t> index = Begin(lock)) {
      lock.unlock();
      std::exception_ptr failure;
      try {
        fOrdered.fWork(*index);
      } catch (...) {
        failure = std::current_exception();
      }
      lock.lock();
      fResults[*index] = {true, failure};
      const bool isAllDone = ++fDoneCount == fOrdered.fCount;
      if (isAllDone || failure || fThreadsWaiting > 0) fLookNow.notify_one();
    }
  }

  const COrderedWork& fOrdered;
  std::mutex fMutex;
  std::condition_variable fLookNow;
  std::condition_variable fRoomAhead;
  CItemChoice fChoice;
  std::vector<CResult> fResults;
  std::size_t fDoneCount = 0;
  std::size_t fTaken = 0;
  std::size_t fThreadsWaiting = 0;
  bool fCancelled = false;
  std::vector<std::thread> fThreads;
};

}  // namespace

void RunOrdered(const COrderedWork& work) {
  if (work.fJobs <= 1 || work.fCount <= 1) return RunAlone(work);
  CWorkers workers(work);
  if (workers.IsEmpty()) return RunAlone(work);
  for (std::size_t index = 0; index < work.fCount; ++index) {
    work.fBegin(index);
    workers.Take(index);
    work.fFinish(index);
  }
}

}  // namespace NSTolbrook
