#include "app/TimeEstimate.h"

#include <array>
#include <cmath>
#include <fmt/format.h>
#include <numeric>

#include "Parts/TolbrookPackage/Core/Text.h"

namespace NSTambraPacking {

namespace {

constexpr std::array<std::uint64_t, kIdleStage + 1> kStageWeights{1, 1, 3, 5, 66, 2, 3, 8, 10, 0};

constexpr std::uint64_t kShortestElapsed = 10000;   // milliseconds
constexpr std::uint64_t kShortestEstimate = 30000;  // milliseconds
constexpr int kMovesBeforeShown = 120;
constexpr double kSmoothing = 0.9375;
constexpr double kSteadyDifference = 1500;  // milliseconds

}  // namespace

int BarPosition(int stage, std::uint64_t done, std::uint64_t count) {
  if (count == 0) return 0;
  const std::uint64_t weight = kStageWeights.at(static_cast<std::size_t>(stage));
  const std::uint64_t before =
      std::accumulate(kStageWeights.begin(), kStageWeights.begin() + stage, std::uint64_t{0});
  return static_cast<int>((before * 1000 + weight * done * 1000 / count) / 100);
}

CTimeLine CTimeEstimate::Update(int position, std::uint64_t elapsed) {
  if (position != fPosition) TakeUp(position, elapsed);
  if (fCount < kMovesBeforeShown) {
    return {fReady ? CTimeLine::EKind::kEstimating : CTimeLine::EKind::kUnchanged, 0};
  }
  return {CTimeLine::EKind::kRemaining, fSmoothed > elapsed ? (fSmoothed - elapsed) / 1000 : 0};
}

void CTimeEstimate::TakeUp(int position, std::uint64_t elapsed) {
  fPosition = position;
  if (position == 0) return;  // nothing done, nothing to extrapolate from
  const double raw = static_cast<double>(elapsed) * 1000 / position;
  if (!fReady && elapsed > kShortestElapsed && fSmoothed >= kShortestEstimate) fReady = true;
  fSmoothed = static_cast<std::uint64_t>(static_cast<double>(fSmoothed) * kSmoothing +
                                         raw * (1 - kSmoothing));
  fRaw = static_cast<std::uint64_t>(raw);
  if (fReady && fCount < kMovesBeforeShown) {
    // Meant to be that: the new estimate against its own whole milliseconds, not against the one
    // before it. Every move counts, however the estimates jump.
    const bool isSteady = std::abs(static_cast<double>(fRaw) - raw) < kSteadyDifference;
    fCount = isSteady ? fCount + 1 : 0;
  }
}

std::u16string TimeLineText(const CTextResources& texts, const CTimeLine& line) {
  if (line.fKind != CTimeLine::EKind::kRemaining) return texts.Text(kTimeEstimating);
  const std::uint64_t minutes = line.fSeconds / 60;
  if (minutes >= 61) {
    const std::string time = fmt::format("{:02}:{:02}", minutes / 60, minutes % 60);
    return texts.Text(kTimeHours, {NSTolbrook::TextFromUtf8(time)});
  }
  if (line.fSeconds <= 35) return texts.Text(kTimeLessThanOneMinute);
  if (line.fSeconds < 90) return texts.Text(kTimeAboutOneMinute);
  const std::string rounded = fmt::format("{:2}", (line.fSeconds + 30) / 60);
  return texts.Text(kTimeMinutes, {NSTolbrook::TextFromUtf8(rounded)});
}

}  // namespace NSTambraPacking
