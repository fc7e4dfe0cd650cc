#include "app/FolderFindings.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <utility>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/ExceptionAlerts.h"
#include "app/NameLists.h"
#include "app/ReferenceAdvice.h"

namespace NSTambraPacking {

namespace {

/// How a fault that has an alert is told before a run: the alert says that the run ends.
struct CFaultTexts {
  CAlertNumber fAlert;
  CStringNumber fText;
  std::optional<CStringNumber> fHint;
};

constexpr std::array kFaults{
    CFaultTexts{kAlertNoName, kLookNoName, kLookNoNameHint},
    CFaultTexts{kAlertBadName, kLookBadName, kLookBadNameHint},
    CFaultTexts{kAlertNoSplash, kLookNoSplash, kLookSplashHint},
    CFaultTexts{kAlertBadSplash, kLookBadSplash, kLookSplashHint},
    CFaultTexts{kAlertBadVersion, kLookBadVersion, kLookVersionHint},
    CFaultTexts{kAlertVersionTooNew, kLookVersionTooNew, std::nullopt},
    CFaultTexts{kAlertBadShortcut, kLookBadShortcut, std::nullopt},
};

CStringNumber LeftOutText(ELeftOut why) {
  return {kFirstLookLeftOut.fTable, kFirstLookLeftOut.fEntry + static_cast<int>(why) - 1};
}

std::vector<std::u16string> ReasonOf(const CJobEntry& entry) {
  if (entry.fReason.empty()) return {};
  return {NSTolbrook::TextFromUtf8(entry.fReason)};
}

void AddProblems(const CTextResources& texts, const CPackJobState& state,
                 std::vector<CFolderFinding>& findings) {
  for (const CJobEntry& entry : state.fEntries) {
    if (!entry.fFailed || !entry.TakesPart()) continue;
    findings.push_back(
        {EFinding::kProblem, entry.fFile.fPath, texts.Text(kLookFailed), ReasonOf(entry)});
  }
  std::map<std::pair<std::u16string, std::u16string>, std::vector<std::u16string>> hints;
  for (CReferenceAdvice& advice : AdviseOnReferences(texts, state)) {
    hints[{advice.fEntry, advice.fReference}] = std::move(advice.fHints);
  }
  for (const auto& [file, references] : state.fLists.fUnresolved) {
    for (const std::u16string& reference : references) {
      findings.push_back({EFinding::kProblem, file, texts.Text(kLookUnresolved, {reference}),
                          hints[{file, reference}]});
    }
  }
}

void AddLeftOut(const CTextResources& texts, const CPackJobState& state,
                std::vector<CFolderFinding>& findings) {
  for (const CJobEntry& entry : state.fEntries) {
    if (entry.fLeftOut == ELeftOut::kNo) continue;
    findings.push_back({EFinding::kLeftOut, entry.fFile.fPath,
                        texts.Text(LeftOutText(entry.fLeftOut)), ReasonOf(entry)});
  }
}

void AddNotes(const CTextResources& texts, const CPackJobState& state,
              std::vector<CFolderFinding>& findings) {
  for (const auto& [file, names] : state.fLists.fExternal) {
    findings.push_back({EFinding::kNote,
                        file,
                        texts.Text(kLookExternal, {JoinNames(texts, DistinctNames(names))}),
                        {}});
  }
  for (const auto& [file, names] : state.fLists.fProhibited) {
    findings.push_back(
        {EFinding::kNote, file, texts.Text(kLookProhibited, {JoinNames(texts, names)}), {}});
  }
  for (const std::u16string& file : state.fLists.fUnreferenced) {
    findings.push_back({EFinding::kNote, file, texts.Text(kLookUnreferenced), {}});
  }
  for (const CJobEntry& entry : state.fEntries) {
    if (!entry.TakesPart() || !entry.fRemarks.contains(ERemark::kLoopStructureOnly)) continue;
    findings.push_back({EFinding::kNote, entry.fFile.fPath, texts.Text(kLookLoopStructure), {}});
  }
}

}  // namespace

CFolderFinding FaultAsFinding(const CTextResources& texts, const std::exception_ptr& fault) {
  CFolderFinding finding;
  finding.fFile = FailingFile(fault);
  const auto choice = ChooseAlert(fault, ESituation::kScanning, finding.fFile);
  if (!choice) return finding;
  const auto known = std::ranges::find_if(
      kFaults, [&](const CFaultTexts& each) { return each.fAlert == choice->fNumber; });
  if (known == kFaults.end()) {
    finding.fText = texts.Alert(choice->fNumber, choice->fArguments).fMessage;
    return finding;
  }
  finding.fText = texts.Text(known->fText, choice->fArguments);
  if (known->fHint) finding.fHints.push_back(texts.Text(*known->fHint));
  return finding;
}

std::vector<CFolderFinding> CheckAsFindings(const CTextResources& texts,
                                            const CPackJobState& state) {
  std::vector<CFolderFinding> findings;
  AddProblems(texts, state, findings);
  AddLeftOut(texts, state, findings);
  AddNotes(texts, state, findings);
  return findings;
}

std::vector<CFolderFinding> AdviceAsFindings(const CTextResources& texts,
                                             const CPackJobState& state) {
  std::vector<CFolderFinding> findings;
  for (const CAdvice& advice : state.fAdvice) {
    if (advice.fAdvice == EAdvice::kStrayFile) continue;  // it is told as left out
    const std::u16string title = texts.Text(AdviceText(advice.fAdvice, EAdviceText::kTitle));
    const std::u16string detail = advice.Detail(texts);
    findings.push_back({EFinding::kAdvice,
                        advice.fFile,
                        detail.empty() ? title : texts.Text(kLookAdvice, {title, detail}),
                        {texts.Text(AdviceText(advice.fAdvice, EAdviceText::kHow))}});
  }
  return findings;
}

}  // namespace NSTambraPacking
