#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/OrderedWork.h"

namespace NSTolbrook {
namespace {

constexpr std::size_t kNever = static_cast<std::size_t>(-1);

/// A series whose items are noted, and in which one call can fail.
class CSeries {
 public:
  /// "B0 F0 B1 F1 …", with "!" and the message of what was thrown at the end.
  std::string Run(std::size_t count, unsigned jobs) {
    try {
      RunOrdered({.fCount = count,
                  .fJobs = jobs,
                  .fWeights = fWeights,
                  .fBegin = [this](std::size_t i) { Note('B', i, fFailingBegin); },
                  .fWork = [this](std::size_t i) { Work(i); },
                  .fFinish = [this](std::size_t i) { Note('F', i, fFailingFinish); },
                  .fStopRequested = [this] { return fStop.load(); },
                  .fCancel = [this] { ++fCancelled; }});
    } catch (const std::exception& failure) {
      fNotes += std::string("! ") + failure.what();
    }
    EXPECT_EQ(fBusy, 0) << "no thread outlives the series";
    return fNotes;
  }

  std::size_t fFailingBegin = kNever, fFailingWork = kNever, fFailingFinish = kNever;
  std::vector<std::uint64_t> fWeights;
  std::function<void(std::size_t)> fSlow = [](std::size_t) {};
  std::atomic<bool> fStop = false;
  std::atomic<int> fCancelled = 0;
  std::multiset<std::size_t> fWorked;
  std::size_t fGreatestAhead = 0;

 private:
  void Note(char step, std::size_t index, std::size_t failing) {
    EXPECT_EQ(std::this_thread::get_id(), fCaller);
    if (step == 'F') {
      const std::lock_guard lock(fMutex);
      EXPECT_EQ(fWorked.count(index), 1U);
      fFinished = index + 1;
    }
    if (index == failing) throw NSMordel::XAbort(std::string(1, step) + " failed");
    fNotes += step + std::to_string(index) + " ";
  }

  void Work(std::size_t index) {
    ++fBusy;
    fSlow(index);
    {
      const std::lock_guard lock(fMutex);
      fWorked.insert(index);
      fGreatestAhead = std::max(fGreatestAhead, fWorked.size() - fFinished);
    }
    --fBusy;
    if (index == fFailingWork) throw NSMordel::XFormatViolation("W failed");
  }

  const std::thread::id fCaller = std::this_thread::get_id();
  std::mutex fMutex;
  std::size_t fFinished = 0;
  std::atomic<int> fBusy = 0;
  std::string fNotes;
};

std::string Expected(std::size_t count) {
  std::string notes;
  for (std::size_t i = 0; i < count; ++i) {
    notes += "B" + std::to_string(i) + " F" + std::to_string(i) + " ";
  }
  return notes;
}

TEST(OrderedWork, TakesItemsInOrderWhateverTheThreadsDo) {
  for (const unsigned jobs : {0U, 1U, 2U, 5U, 40U}) {
    for (const std::size_t count : {0U, 1U, 2U, 3U, 30U}) {
      CSeries series;
      series.fSlow = [](std::size_t i) {
        std::this_thread::sleep_for(std::chrono::microseconds(i % 3 == 0 ? 900 : 0));
      };
      EXPECT_EQ(series.Run(count, jobs), Expected(count)) << jobs << " jobs";
      EXPECT_EQ(series.fWorked.size(), count);
      EXPECT_EQ(series.fCancelled, 0);
    }
  }
}

TEST(OrderedWork, RaisesTheFirstFailureInOrderAndEnds) {
  constexpr std::size_t kCount = 2 * kMostItemsAhead;
  for (const unsigned jobs : {1U, 2U, 5U}) {
    const bool isThreaded = jobs > 1;
    CSeries begin, work, finish, all;
    begin.fFailingBegin = work.fFailingWork = finish.fFailingFinish = 7;
    EXPECT_EQ(begin.Run(kCount, jobs), Expected(7) + "! B failed");
    EXPECT_EQ(work.Run(kCount, jobs), Expected(7) + "B7 ! W failed");
    EXPECT_EQ(finish.Run(kCount, jobs), Expected(7) + "B7 ! F failed");
    all.fFailingWork = 0;
    all.fFailingBegin = 1;
    EXPECT_EQ(all.Run(2, jobs), "B0 ! W failed") << "the order of items, not of time";
    for (const CSeries* series : {&begin, &work, &finish}) {
      EXPECT_EQ(series->fCancelled, isThreaded ? 1 : 0);
      EXPECT_LT(series->fWorked.size(), kCount);
    }
  }
}

/// The caller waits for an item whose worker only ends when it is told to.
TEST(OrderedWork, StopsWhileAnItemIsBusy) {
  CSeries series;
  series.fSlow = [&](std::size_t i) {
    if (i != 3) return;
    series.fStop = true;
    while (series.fCancelled == 0) std::this_thread::yield();
  };
  // The worker may be ahead, so that the caller sees the request at an earlier item already.
  const std::string notes = series.Run(100, 2);
  const std::string end = "! User aborted";
  ASSERT_TRUE(notes.ends_with(end)) << notes;
  const std::string steps = notes.substr(0, notes.size() - end.size());
  EXPECT_TRUE((Expected(3) + "B3 ").starts_with(steps)) << notes;
  EXPECT_EQ(series.fCancelled, 1);
}

TEST(OrderedWork, RunsOnlySoFarAhead) {
  CSeries series;
  std::atomic<int> idle = 0;
  // The first item waits until the others make no more headway.
  series.fSlow = [&](std::size_t i) {
    if (i != 0) {
      idle = 0;
      return;
    }
    while (++idle < 300) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  };
  constexpr std::size_t kCount = 2 * kMostItemsAhead;
  EXPECT_EQ(series.Run(kCount, 3), Expected(kCount));
  // An item is taken a moment before it is noted as finished.
  EXPECT_LE(series.fGreatestAhead, kMostItemsAhead + 1);
  EXPECT_GT(series.fGreatestAhead, kMostItemsAhead / 2);
}

TEST(OrderedWork, BeginsWhatWouldOutlastTheRestInTime) {
  struct CCase {
    std::vector<std::uint64_t> fWeights;
    std::size_t fHeavy;
    std::uint64_t fMostBefore;  ///< weight of what is begun before it, by two threads
  };
  std::vector<std::uint64_t> light(300, 1);
  light.push_back(300);
  const CCase cases[] = {{light, 300, 1},
                         {{0, 0, 10, 10, 10, 10, 10, 200, 10, 100, 50, 0}, 7, 10},
                         {{0, 0, 10, 10, 10, 10, 10, 200, 10, 100, 50, 0}, 9, 230},
                         {{400, 5, 5, 5, 5, 5, 5, 5, 5, 0, 5}, 0, 5}};
  for (const CCase& test : cases) {
    CSeries series;
    series.fWeights = test.fWeights;
    std::mutex mutex;
    std::uint64_t before = 0, beforeHeavy = 0;
    series.fSlow = [&](std::size_t i) {
      const std::lock_guard lock(mutex);
      if (i == test.fHeavy) beforeHeavy = before;
      before += test.fWeights[i];
    };
    EXPECT_EQ(series.Run(test.fWeights.size(), 2), Expected(test.fWeights.size()));
    EXPECT_LE(beforeHeavy, test.fMostBefore);
  }
}

}  // namespace
}  // namespace NSTolbrook
