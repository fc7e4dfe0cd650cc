#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace NSTolbrook {

/// A series of independent items that threads work on ahead while the caller takes them in order.
struct COrderedWork {
  std::size_t fCount = 0;
  /// How many threads work; 0 or 1 means the calling thread alone, item by item, which also works
  /// where none can be started.
  unsigned fJobs = 1;
  /// How much work each item is, in any unit; empty when they are all alike. Threads begin items in
  /// order, but one that would outlast the rest of the series before its turn has come.
  std::vector<std::uint64_t> fWeights = {};
  /// Called on the calling thread, in rising order, before the item's result is waited for.
  std::function<void(std::size_t index)> fBegin;
  /// Called on any thread, several at once. What it throws is raised again on the calling thread
  /// when the item's turn has come.
  std::function<void(std::size_t index)> fWork;
  /// Called on the calling thread, in rising order, when the item's work is done.
  std::function<void(std::size_t index)> fFinish;
  /// Asked by the caller while it waits; when it turns true, XSilentAbort "User aborted" is raised.
  std::function<bool()> fStopRequested;
  /// Called once when the work ends early, so that workers which are busy can be told to stop.
  std::function<void()> fCancel;
};

inline constexpr std::size_t kMostItemsAhead = 16'384;

/// Runs the series to its end, or to the first exception of fBegin, fWork or fFinish, which is
/// raised again after all threads have ended. At most kMostItemsAhead items are begun and not yet
/// taken; the caller looks for finished ones every 20 milliseconds, or sooner when it has to.
void RunOrdered(const COrderedWork& work);

}  // namespace NSTolbrook
