#include <gtest/gtest.h>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "cli/ConsoleAlertPresenter.h"

namespace NSTambraCli {
namespace {

using NSTambraPacking::kAlertReplace;
using NSTambraPacking::kAlertUnsupported;
using NSTambraPacking::kButtonBefore;
using NSTambraPacking::kLastButton;

class CSteppingView : public ICliProgressView {
 public:
  void SetStageLine(const std::u16string&) override {}
  void SetItemLine(const std::u16string&) override {}
  void SetBar(int) override {}
  void SetTimeLine(const std::u16string&) override {}
  void SetInformation(const NSTambraPacking::CPackageInformation&) override {}
  void Clear() override { ++fCleared; }

  int fCleared = 0;
};

TEST(ConsoleAlertPresenter, TakesAnswersInAdvance) {
  CPreparedAnswers answers;
  AddAnswer(answers, "20=Replace");
  AddAnswer(answers, "21=A=B");
  AddAnswer(answers, "21=Größe = 5");
  EXPECT_EQ(answers.fAnswers,
            (std::map<int, std::u16string>{{20, u"Replace"}, {21, u"Größe = 5"}}));
  for (const char* const wrong : {"", "20", "=Replace", "x=Replace", "20 =Replace", "20x=Replace",
                                  "99999999999=Replace", "19=Continue", "-20=Replace"}) {
    EXPECT_THROW(AddAnswer(answers, wrong), NSMordel::XFormatViolation) << wrong;
  }
}

TEST(ConsoleAlertPresenter, AnswersByLabelThenYesThenWithCare) {
  const auto alert = NSTambraPacking::CAlertText::Parse(u"[WARN][Title]One\ntwo[Stop][Weiter Ä]");
  const struct {
    std::map<int, std::u16string> fAnswers;
    bool fYes;
    int fAnswer;
    const char* fError;
  } kCases[] = {
      {{}, false, kButtonBefore, "One\ntwo\n[Stop]\n"},
      {{}, true, kLastButton, "One\ntwo\n[Weiter Ä]\n"},
      {{{20, u"stop"}}, true, kButtonBefore, "One\ntwo\n[Stop]\n"},
      {{{20, u"WEITER a\u0308"}}, false, kLastButton, "One\ntwo\n[Weiter Ä]\n"},
      {{{21, u"Weiter Ä"}}, false, kButtonBefore, "One\ntwo\n[Stop]\n"},
  };
  const CConsole console(false, true);
  for (const auto& [answers, yes, answer, error] : kCases) {
    CSteppingView view;
    CConsoleAlertPresenter presenter(console, {answers, yes}, false, &view);
    testing::internal::CaptureStderr();
    EXPECT_EQ(presenter.Show(kAlertReplace, alert), answer);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), error);
    EXPECT_EQ(view.fCleared, 1);
  }
}

TEST(ConsoleAlertPresenter, ShowsAnEventForEachAlertInJSON) {
  const CConsole console(true, false);
  CConsoleAlertPresenter presenter(console, {}, false);
  const auto alert = NSTambraPacking::CAlertText::Parse(u"[STOP]No “x”[Cancel][Continue Anyway]");
  testing::internal::CaptureStdout();
  EXPECT_EQ(presenter.Show(kAlertUnsupported, alert), kButtonBefore);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "{\"event\":\"alert\",\"table\":128,\"number\":21,\"kind\":\"stop\",\"title\":\"\","
            "\"message\":\"No “x”\",\"answer\":\"Cancel\"}\n");
}

}  // namespace
}  // namespace NSTambraCli
