#include <gtest/gtest.h>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/PackageInformation.h"
#include "app/TambraPackProgress.h"
#include "app/TambraPacker.h"
#include "package/PackageEntry.h"
#include "tests/support/FaultText.h"
#include "tests/support/ManualClock.h"

namespace NSTambraPacking {
namespace {

using CLines = std::vector<std::u16string>;

class CRecordingView : public IProgressView {
 public:
  void SetStageLine(const std::u16string& line) override { fStages.push_back(line); }
  void SetItemLine(const std::u16string& line) override { fItems.push_back(line); }
  void SetBar(int position) override { fBar.push_back(position); }
  void SetTimeLine(const std::u16string& line) override { fTimes.push_back(line); }
  void SetInformation(const CPackageInformation& information) override {
    fNames.push_back(information.fName);
  }

  CLines fStages, fItems, fTimes, fNames;
  std::vector<int> fBar;
};

class CRecordingJob : public IPackJobChecks {
 public:
  const CPackageInformation& Information() const override { return fInformation; }
  void CheckEntries() override { fCalls.push_back("entries"); }
  void CheckExternalReferences(bool warn) override {
    fCalls.push_back(warn ? "warn" : "do not warn");
    fQuestion();
  }

  CPackageInformation fInformation;
  std::vector<std::string> fCalls;
  std::function<void()> fQuestion = [] {};
};

class CNoAlerts : public IAlertPresenter {
 public:
  int Show(CAlertNumber number, const CAlertText&) override {
    ADD_FAILURE() << "alert " << number.fEntry;
    return kLastButton;
  }
};

class TambraPackProgress : public testing::Test {
 protected:
  TambraPackProgress() {
    fJob.fInformation.fName = u"N";
    fProgress.Attach(fJob);
  }
  void Item(int phase, std::uint64_t index) {
    fProgress.Item(fPacker, phase, index, fEntry, u"d/a.wav");
  }

  CTextResources fTexts;
  NSTest::CManualClock fClock;
  CRecordingView fView;
  CRecordingJob fJob;
  CNoAlerts fNoAlerts;
  CTambraPacker fPacker{fTexts, fNoAlerts, fClock};  // only its address is handed on
  CPackageEntry fEntry{u"d/a.wav", 11, 1, nullptr};
  CTambraPackProgress fProgress{fTexts, fClock, fView, {true, true}};
};

TEST_F(TambraPackProgress, ShowsLinesAndBarOfEveryPhase) {
  for (int phase = 0; phase <= 8; ++phase) {
    fProgress.BeginPhase(fPacker, phase, 2);
    Item(phase, 1);
    fProgress.EndPhase(fPacker, phase);
  }
  EXPECT_EQ(
      fView.fStages,
      (CLines{u"Scanning folder…", u"", u"Scanning folder…", u"", u"Scanning folder structure…",
              u"", u"1/5 Verifying…", u"", u"2/5 Packing…", u"", u"3/5 Building index…", u"",
              u"3/5 Building index…", u"", u"4/5 Composing file…", u"", u"5/5 Verifying…", u""}));
  CLines items;
  for (const std::u16string& line : fView.fItems) {
    if (!line.empty()) items.push_back(line);
  }
  EXPECT_EQ(items, (CLines{u"Counting files: 2", u"Counting files: 2",
                           u"Checking for referenced Tambras: 2", u"1/5 Verifying: \n“d/a.wav”",
                           u"2/5 Packing: \n“d/a.wav”", u"3/5 Indexing: \n“d/a.wav”",
                           u"3/5 Indexing: \n“d/a.wav”", u"5/5 Verifying: \n“d/a.wav”"}));
  EXPECT_EQ(fView.fBar, (std::vector<int>{5, 10, 15, 20, 35, 50, 75, 100, 430, 760, 770, 780, 795,
                                          810, 850, 890, 940, 990}));
  EXPECT_EQ(fView.fNames, CLines{u"N"});
  EXPECT_EQ(fJob.fCalls, (std::vector<std::string>{"entries", "warn"}));
  EXPECT_TRUE(fView.fTimes.empty());
}

TEST_F(TambraPackProgress, AStopRequestEndsTheNextReportAndIsTakenBack) {
  const std::function<void()> reports[] = {[&] { fProgress.BeginPhase(fPacker, 0, 1); },
                                           [&] { Item(0, 0); },
                                           [&] { fProgress.EndPhase(fPacker, 0); }};
  for (const auto& report : reports) {
    fProgress.RequestStop();
    EXPECT_TRUE(fProgress.StopRequested());
    EXPECT_EQ(NSTest::FaultText<NSMordel::XSilentAbort>(report), "User aborted");
    EXPECT_FALSE(fProgress.StopRequested());
  }
  EXPECT_TRUE(fView.fStages.empty() && fView.fItems.empty() && fView.fBar.empty());
}

TEST_F(TambraPackProgress, WaitsAreLeftOutOfTheTime) {
  fClock.SetMilliseconds(5000);
  fProgress.BeginPhase(fPacker, 0, 0);
  fJob.fQuestion = [&] {
    const CTambraPackProgress::CWait inner(fProgress);
    fClock.Advance(10'000'000);
  };
  fProgress.EndPhase(fPacker, 3);
  fProgress.BeginPhase(fPacker, 4, 1000);
  for (std::uint64_t i = 1; i <= 400; ++i) {
    fClock.Advance(1000);
    Item(4, i);
  }
  // Without the wait the estimates go from 10 to about 1100 seconds; with it into the hours.
  ASSERT_FALSE(fView.fTimes.empty());
  EXPECT_EQ(fView.fTimes.front(), u"Time remaining: Estimating…");
  EXPECT_EQ(fView.fTimes.back(), u"Time remaining: 11 minutes");
}

TEST(BarPosition, IsCutToWholeThousandths) {
  EXPECT_EQ(BarPosition(4, 5, 0), 0);
  EXPECT_EQ(BarPosition(0, 0, 7), 0);
  EXPECT_EQ(BarPosition(4, 1, 7), 194);  // (10 × 1000 + 66000 ÷ 7) ÷ 100
  EXPECT_EQ(BarPosition(8, 3, 3), 990);
  EXPECT_EQ(BarPosition(9, 1, 1), 990);
}

TEST(TimeEstimate, SaysNothingForTenSecondsAndEstimatesFor120Moves) {
  CTimeEstimate estimate;
  using EKind = CTimeLine::EKind;
  // Each move tells of a run of 1000 seconds; the smoothed estimate is over 30 seconds at once.
  for (int i = 1; i <= 10; ++i) {
    EXPECT_EQ(estimate.Update(i, static_cast<std::uint64_t>(i) * 1000).fKind, EKind::kUnchanged);
  }
  for (int i = 11; i < 11 + 119; ++i) {
    EXPECT_EQ(estimate.Update(i, static_cast<std::uint64_t>(i) * 1000).fKind, EKind::kEstimating);
    // The same position again is no move.
    EXPECT_EQ(estimate.Update(i, static_cast<std::uint64_t>(i) * 1000).fKind, EKind::kEstimating);
  }
  const CTimeLine first = estimate.Update(130, 130'000);
  EXPECT_EQ(first.fKind, EKind::kRemaining);
  EXPECT_EQ(first.fSeconds, 869U);  // truncation keeps the smoothed estimate under 1000 seconds
  EXPECT_EQ(estimate.Update(130, 2'000'000).fSeconds, 0U);
}

TEST(TimeEstimate, NeedsAnEstimateOfHalfAMinuteAndCountsJumpsToo) {
  CTimeEstimate fast;
  for (int i = 1; i <= 3; ++i) {
    EXPECT_EQ(fast.Update(i, 10'001).fKind == CTimeLine::EKind::kUnchanged, i < 2) << i;
  }
  CTimeEstimate quick;  // 20 seconds in all: never ready
  for (int i = 500; i <= 990; ++i) {
    EXPECT_EQ(quick.Update(i, static_cast<std::uint64_t>(i) * 20).fKind,
              CTimeLine::EKind::kUnchanged);
  }
  CTimeEstimate jumping;
  jumping.Update(1, 20'000);
  for (int i = 0; i < 119; ++i) jumping.Update(i % 2 == 0 ? 900 : 2, 20'000);
  EXPECT_EQ(jumping.Update(900, 20'000).fKind, CTimeLine::EKind::kEstimating);
  EXPECT_EQ(jumping.Update(2, 20'000).fKind, CTimeLine::EKind::kRemaining);
}

TEST(TimeEstimate, WordsOfTheTimeLine) {
  const CTextResources texts;
  const std::vector<std::pair<std::uint64_t, const char16_t*>> cases{
      {0, u"Time remaining: Less than one minute…"},
      {35, u"Time remaining: Less than one minute…"},
      {36, u"Time remaining: About one minute"},
      {89, u"Time remaining: About one minute"},
      {90, u"Time remaining:  2 minutes"},
      {149, u"Time remaining:  2 minutes"},
      {3600, u"Time remaining: 60 minutes"},
      {3659, u"Time remaining: 61 minutes"},
      {3660, u"Time remaining: 01:01"},
      {75 * 60, u"Time remaining: 01:15"},
      {125 * 60, u"Time remaining: 02:05"},
      {6000 * 60, u"Time remaining: 100:00"},
  };
  for (const auto& [seconds, text] : cases) {
    EXPECT_EQ(TimeLineText(texts, {CTimeLine::EKind::kRemaining, seconds}), text) << seconds;
  }
}

}  // namespace
}  // namespace NSTambraPacking
