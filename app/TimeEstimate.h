#pragma once

#include <cstdint>
#include <string>

#include "app/TextResources.h"

namespace NSTambraPacking {

/// Between two phases; the phases themselves are the stages 0 to 8.
inline constexpr int kIdleStage = 9;

/// The position of the progress bar in thousandths when `done` of the `count` items of a stage (0
/// to 9) are done; 0 when `count` is 0. The stages' shares add up to 99 of 100, so that the bar
/// stands at 990 when the last phase is over.
int BarPosition(int stage, std::uint64_t done, std::uint64_t count);

/// What the time line says.
struct CTimeLine {
  enum class EKind { kUnchanged, kEstimating, kRemaining };

  EKind fKind = EKind::kUnchanged;
  std::uint64_t fSeconds = 0;  ///< of kRemaining
};

/// Guesses from the bar's position and the time gone by how long a run will still take. A guess is
/// shown only after 120 moves of the bar that follow the first 10 seconds.
class CTimeEstimate {
 public:
  /// Called for each report: the bar's position in thousandths, and the run's milliseconds so far
  /// without those spent waiting for the user.
  CTimeLine Update(int position, std::uint64_t elapsed);

 private:
  void TakeUp(int position, std::uint64_t elapsed);

  std::uint64_t fRaw = 0;       ///< the whole run's milliseconds by the last move alone
  std::uint64_t fSmoothed = 0;  ///< the same by all moves, the later ones counting more
  bool fReady = false;
  int fCount = 0;  ///< moves since ready, up to 120
  int fPosition = 0;
};

/// The text of a time line whose kind is not kUnchanged.
std::u16string TimeLineText(const CTextResources& texts, const CTimeLine& line);

}  // namespace NSTambraPacking
