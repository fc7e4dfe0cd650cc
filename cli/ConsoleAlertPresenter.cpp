#include "cli/ConsoleAlertPresenter.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "cli/Command.h"
#include "cli/StopSignal.h"
#include "cli/Terminal.h"

namespace NSTambraCli {

namespace {

using NSTambraPacking::CAlertNumber;
using NSTambraPacking::CAlertText;
using NSTambraPacking::EAlertKind;

/// The alerts whose answer decides how the run goes on; the others are only shown.
constexpr std::array kQuestions = {
    NSTambraPacking::kAlertContinueWithout, NSTambraPacking::kAlertRefersToTambra,
    NSTambraPacking::kAlertReplace, NSTambraPacking::kAlertUnsupported,
    NSTambraPacking::kAlertRefersToTambras};

bool IsQuestion(CAlertNumber number) {
  return std::find(kQuestions.begin(), kQuestions.end(), number) != kQuestions.end();
}

std::string KindName(EAlertKind kind) {
  switch (kind) {
    case EAlertKind::kNone:
      return "none";
    case EAlertKind::kStop:
      return "stop";
    case EAlertKind::kNote:
      return "note";
    case EAlertKind::kWarn:
      return "warn";
  }
  return "none";
}

bool SameLabel(std::u16string_view left, std::u16string_view right) {
  return NSTolbrook::ComparisonKey(left) == NSTolbrook::ComparisonKey(right);
}

std::optional<int> AnswerOfLabel(const CAlertText& alert, std::u16string_view label) {
  for (std::size_t index = 0; index < alert.fButtons.size(); ++index) {
    if (SameLabel(alert.fButtons[index], label)) return alert.Answer(index);
  }
  return std::nullopt;
}

/// The message on one line or several, as its line breaks ask for.
std::string MessageLines(const CAlertText& alert) {
  std::string message;
  for (const std::string& line : PrintableLines(alert.fMessage)) {
    message += message.empty() ? line : "\n" + line;
  }
  return message;
}

}  // namespace

void AddAnswer(CPreparedAnswers& answers, std::string_view pair) {
  const std::size_t equals = pair.find('=');
  int number = 0;
  const char* const end = pair.data() + std::min(equals, pair.size());
  const auto parsed = std::from_chars(pair.data(), end, number);
  if (equals == std::string_view::npos || parsed.ec != std::errc{} || parsed.ptr != end) {
    throw NSMordel::XFormatViolation("\"" + std::string(pair) +
                                     "\" is no answer; write ALERT=BUTTON, such as 20=Replace");
  }
  if (std::none_of(kQuestions.begin(), kQuestions.end(),
                   [&](const CAlertNumber& question) { return question.fEntry == number; })) {
    throw NSMordel::XFormatViolation("alert " + std::to_string(number) +
                                     " asks nothing; 10, 18, 20, 21 and 23 do");
  }
  answers.fAnswers[number] = NSTolbrook::TextFromUtf8(pair.substr(equals + 1));
}

std::vector<std::string> PossibleAnswers(const NSTambraPacking::CTextResources& texts) {
  std::vector<std::string> answers;
  for (const CAlertNumber question : kQuestions) {
    for (const std::u16string& button : texts.Alert(question).fButtons) {
      answers.push_back(std::to_string(question.fEntry) + "=" + NSTolbrook::Utf8FromText(button));
    }
  }
  return answers;
}

void CheckAnswers(const CPreparedAnswers& answers, const NSTambraPacking::CTextResources& texts) {
  for (const auto& [number, label] : answers.fAnswers) {
    const CAlertText alert = texts.Alert({kQuestions.front().fTable, number});
    if (AnswerOfLabel(alert, label)) continue;
    std::string buttons;
    for (const std::u16string& button : alert.fButtons) {
      buttons += (buttons.empty() ? "\"" : ", \"") + NSTolbrook::Utf8FromText(button) + "\"";
    }
    throw XWrongUsage("alert " + std::to_string(number) + " has no button \"" +
                      NSTolbrook::Utf8FromText(label) + "\", but " + buttons);
  }
}

CConsoleAlertPresenter::CConsoleAlertPresenter(const CConsole& console, CPreparedAnswers answers,
                                               bool canAsk, ICliProgressView* view)
    : fConsole(console), fAnswers(std::move(answers)), fCanAsk(canAsk), fView(view) {}

int CConsoleAlertPresenter::Show(CAlertNumber number, const CAlertText& alert) {
  if (fView != nullptr) fView->Clear();
  if (!IsQuestion(number)) {
    Report(number, alert, std::nullopt);
    return NSTambraPacking::kLastButton;
  }
  const std::optional<int> prepared = PreparedAnswer(number, alert);
  if (!prepared && fCanAsk) return Ask(alert);
  const int answer = prepared.value_or(NSTambraPacking::kButtonBefore);
  Report(number, alert, answer);
  return answer;
}

std::optional<int> CConsoleAlertPresenter::PreparedAnswer(CAlertNumber number,
                                                          const CAlertText& alert) const {
  const auto found = fAnswers.fAnswers.find(number.fEntry);
  if (found != fAnswers.fAnswers.end()) {
    if (const auto answer = AnswerOfLabel(alert, found->second)) return answer;
  }
  if (fAnswers.fYes) return NSTambraPacking::kLastButton;
  return std::nullopt;
}

int CConsoleAlertPresenter::Ask(const CAlertText& alert) const {
  fConsole.Warn(MessageLines(alert));
  while (true) {
    std::string choices;
    for (std::size_t index = 0; index < alert.fButtons.size(); ++index) {
      choices += (index == 0 ? "[" : "  [") + std::to_string(index + 1) + "] " +
                 Printable(alert.fButtons[index]);
    }
    fConsole.Warn(choices);
    const std::optional<std::string> line = ReadLine(CStopSignal::Requested);
    if (!line) {
      if (CStopSignal::Requested()) throw NSMordel::XSilentAbort("User aborted");
      return NSTambraPacking::kButtonBefore;
    }
    if (const auto answer = AnswerOfLabel(alert, NSTolbrook::TextFromUtf8(*line))) return *answer;
    std::size_t number = 0;
    const auto parsed = std::from_chars(line->data(), line->data() + line->size(), number);
    if (parsed.ec == std::errc{} && number >= 1 && number <= alert.fButtons.size()) {
      return alert.Answer(number - 1);
    }
  }
}

void CConsoleAlertPresenter::Report(CAlertNumber number, const CAlertText& alert,
                                    std::optional<int> answer) const {
  std::u16string label;
  for (std::size_t index = 0; answer && index < alert.fButtons.size(); ++index) {
    if (alert.Answer(index) == *answer) label = alert.fButtons[index];
  }
  if (!fConsole.Json()) {
    std::string lines = MessageLines(alert);
    if (alert.fKind == EAlertKind::kStop) lines = fConsole.PaintedNote(lines, EColour::kRed);
    if (alert.fKind == EAlertKind::kWarn) lines = fConsole.PaintedNote(lines, EColour::kYellow);
    fConsole.Warn(label.empty() ? lines : lines + "\n[" + Printable(label) + "]");
    return;
  }
  CJson event = {{"event", "alert"},
                 {"table", number.fTable},
                 {"number", number.fEntry},
                 {"kind", KindName(alert.fKind)},
                 {"title", NSTolbrook::Utf8FromText(alert.fTitle)},
                 {"message", NSTolbrook::Utf8FromText(alert.fMessage)}};
  if (!label.empty()) event.Add("answer", NSTolbrook::Utf8FromText(label));
  fConsole.PrintJson(event);
}

}  // namespace NSTambraCli
