#include "cli/JobReport.h"

#include <utility>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/NameLists.h"
#include "app/ReferenceAdvice.h"

namespace NSTambraCli {

namespace {

using namespace NSTambraPacking;
using NSTolbrook::Utf8FromText;

constexpr const char* kItemIndent = "    ";
constexpr const char* kDetailIndent = "        ";

struct CRemarkText {
  CStringNumber fNumber;
  const char* fName;
};

CRemarkText TextOf(ERemark remark) {
  switch (remark) {
    case ERemark::kSamplesConverted:
      return {kRemarkSamplesConverted, "samples_converted"};
    case ERemark::kSourceNotRestorable:
      return {kRemarkSourceNotRestorable, "source_not_restorable"};
    case ERemark::kLoopStructureOnly:
      break;
  }
  return {kRemarkLoopStructureOnly, "loop_structure_only"};
}

CJson ArrayOf(const std::vector<std::u16string>& texts) {
  CJson array = CJson::Array();
  for (const std::u16string& text : texts) array.Append(Utf8FromText(text));
  return array;
}

/// Prints one kind of finding: a title once, then its files with their details.
class CFindings {
 public:
  CFindings(const CConsole& console, const CTextResources& texts)
      : fConsole(console), fTexts(texts) {}

  void Begin(const char* kind, CStringNumber title) {
    fKind = kind;
    fTitle = title;
    fTitlePrinted = false;
  }

  void Add(const std::u16string& file, const std::vector<std::u16string>& details) {
    if (fConsole.Json()) {
      CJson event = {{"event", "finding"}, {"kind", fKind}, {"file", Utf8FromText(file)}};
      if (!details.empty()) event.Add("details", ArrayOf(details));
      fConsole.PrintJson(event);
      return;
    }
    if (!std::exchange(fTitlePrinted, true)) fConsole.Print(Printable(fTexts.Text(fTitle)));
    fConsole.Print(kItemIndent + Printable(file));
    for (const std::u16string& detail : details) fConsole.Print(kDetailIndent + Printable(detail));
  }

 private:
  const CConsole& fConsole;
  const CTextResources& fTexts;
  const char* fKind = "";
  CStringNumber fTitle{};
  bool fTitlePrinted = false;
};

/// A line for each reference about which something can be said.
void PrintAdvice(const CConsole& console, const CTextResources& texts, const CPackJobState& state) {
  for (const auto& [entry, reference, hints] : AdviseOnReferences(texts, state)) {
    if (hints.empty()) continue;
    if (!console.Json()) {
      console.Print(Printable(texts.Text(kFailureDetail, {entry, reference})));
      for (const std::u16string& hint : hints) console.Print(kDetailIndent + Printable(hint));
      continue;
    }
    console.PrintJson({{"event", "hint"},
                       {"file", Utf8FromText(entry)},
                       {"reference", Utf8FromText(reference)},
                       {"hints", ArrayOf(hints)}});
  }
}

std::vector<std::u16string> ReasonOf(const CJobEntry& entry) {
  if (entry.fReason.empty()) return {};
  return {NSTolbrook::TextFromUtf8(entry.fReason)};
}

}  // namespace

void PrintFindings(const CConsole& console, const CTextResources& texts,
                   const CPackJobState& state) {
  CFindings findings(console, texts);
  findings.Begin("failed", kLogFailed);
  for (const CJobEntry& entry : state.fEntries) {
    if (entry.fFailed && entry.TakesPart()) findings.Add(entry.fFile.fPath, ReasonOf(entry));
  }
  const CPackLists& lists = state.fLists;
  findings.Begin("unresolved", kLogUnresolved);
  for (const auto& [file, references] : lists.fUnresolved) findings.Add(file, references);
  PrintAdvice(console, texts, state);
  findings.Begin("external", kLogExternal);
  for (const auto& [file, names] : lists.fExternal) findings.Add(file, DistinctNames(names));
  findings.Begin("prohibited", kLogProhibited);
  for (const auto& [file, names] : lists.fProhibited) findings.Add(file, names);
  findings.Begin("skipped", kLogSkipped);
  for (const std::u16string& file : lists.fSkipped) findings.Add(file, {});
  findings.Begin("unreferenced", kLogUnreferenced);
  for (const std::u16string& file : lists.fUnreferenced) findings.Add(file, {});
}

void NoteReasons(const CConsole& console, const CTextResources& texts, const CPackJobState& state) {
  for (const CJobEntry& entry : state.fEntries) {
    if (entry.fReason.empty()) continue;
    if (console.Json()) {
      console.PrintJson({{"event", "reason"},
                         {"file", Utf8FromText(entry.fFile.fPath)},
                         {"message", entry.fReason}});
    } else {
      const std::u16string line =
          texts.Text(kFailureDetail, {entry.fFile.fPath, NSTolbrook::TextFromUtf8(entry.fReason)});
      console.Note(console.PaintedNote(Printable(line), EColour::kYellow));
    }
  }
}

void NoteRemarks(const CConsole& console, const CTextResources& texts, const CPackJobState& state) {
  for (const CJobEntry& entry : state.fEntries) {
    for (const ERemark remark : entry.fRemarks) {
      const auto [number, name] = TextOf(remark);
      if (console.Json()) {
        console.PrintJson(
            {{"event", "remark"}, {"kind", name}, {"file", Utf8FromText(entry.fFile.fPath)}});
      } else {
        const std::string line = Printable(texts.Text(number, {entry.fFile.fPath}));
        console.Note(console.PaintedNote(line, EColour::kDim));
      }
    }
  }
}

}  // namespace NSTambraCli
