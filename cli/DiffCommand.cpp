#include <array>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/FileTypeNames.h"
#include "app/PackageComparison.h"
#include "cli/Commands.h"
#include "cli/ExitStatus.h"
#include "cli/JobSession.h"
#include "cli/PackageFile.h"
#include "cli/StopSignal.h"

namespace NSTambraCli {

namespace {

using NSBigFilePackage::SharedMedia;
using NSTambraPacking::CChange;
using NSTambraPacking::CDifference;
using NSTambraPacking::CStringNumber;
using NSTambraPacking::CTextResources;
using NSTambraPacking::EDifference;
using NSTolbrook::TextFromUtf8;
using NSTolbrook::Utf8FromText;

/// In the order of EDifference.
constexpr std::array kDifferenceNames = {
    "type",       "flag",           "length",       "channels",          "width",
    "rate",       "sound",          "root_key",     "fine_tune",         "loop_mode",
    "loop_start", "loop_end",       "extra_info",   "reference_removed", "reference_added",
    "content",    "damaged_before", "damaged_after"};
static_assert(kDifferenceNames.size() == static_cast<std::size_t>(EDifference::kDamagedAfter) + 1);

struct CKindShown {
  const char* fName;
  const char* fMark;
  EColour fColour;
};

CKindShown ShownAs(CChange::EKind kind) {
  switch (kind) {
    case CChange::EKind::kHeader:
      return {"header", "~ ", EColour::kYellow};
    case CChange::EKind::kRemoved:
      return {"removed", "- ", EColour::kRed};
    case CChange::EKind::kAdded:
      return {"added", "+ ", EColour::kGreen};
    case CChange::EKind::kChanged:
      break;
  }
  return {"changed", "~ ", EColour::kYellow};
}

void PrintEvent(const CConsole& console, const CChange& change) {
  CJson differences = CJson::Array();
  for (const CDifference& difference : change.fDifferences) {
    const bool isReference = difference.fKind == EDifference::kReferenceAdded;
    const bool isHeader = change.fKind == CChange::EKind::kHeader;  // a text may be empty
    CJson item = {{"kind", kDifferenceNames.at(static_cast<std::size_t>(difference.fKind))}};
    if (!difference.fBefore.empty() || !difference.fAfter.empty()) {
      item.Add(isReference ? "after" : "before", Utf8FromText(difference.fBefore));
      if (isHeader || !difference.fAfter.empty())
        item.Add("after", Utf8FromText(difference.fAfter));
    }
    differences.Append(item);
  }
  CJson event = {{"event", "change"},
                 {"kind", ShownAs(change.fKind).fName},
                 {"name", Utf8FromText(change.fName)}};
  if (!change.fDifferences.empty()) event.Add("differences", differences);
  console.PrintJson(event);
}

CStringNumber LabelOf(const std::u16string& field) {
  if (field == u"name") return NSTambraPacking::kInfoName;
  if (field == u"version") return NSTambraPacking::kInfoVersion;
  if (field == u"url") return NSTambraPacking::kInfoAddress;
  return field == u"copyright" ? NSTambraPacking::kInfoCopyright : NSTambraPacking::kInfoComment;
}

void PrintHeaderChange(const CConsole& console, const CTextResources& texts,
                       const CChange& change) {
  console.Print(
      console.Painted("~ " + Printable(texts.Text(LabelOf(change.fName))), EColour::kYellow));
  const CDifference& difference = change.fDifferences.front();
  for (const std::string& line : PrintableLines(difference.fBefore)) {
    console.Print("    " + console.Painted("- " + line, EColour::kRed));
  }
  for (const std::string& line : PrintableLines(difference.fAfter)) {
    console.Print("    " + console.Painted("+ " + line, EColour::kGreen));
  }
}

void PrintEntryChange(const CConsole& console, const CTextResources& texts, const CChange& change) {
  const CKindShown shown = ShownAs(change.fKind);
  console.Print(console.Painted(shown.fMark + Printable(change.fName), shown.fColour));
  for (const CDifference& difference : change.fDifferences) {
    CStringNumber number = NSTambraPacking::kFirstDifference;
    number.fEntry += static_cast<int>(difference.fKind);
    console.Print("    " + Printable(texts.Text(number, {difference.fBefore, difference.fAfter})));
  }
}

class CDiffCommand : public CFileCommand {
 public:
  CLI::App* Register(CLI::App& program) override;
  int Run(const CGlobalOptions& options) override;
  std::string Subject() const override { return fSubject; }

 private:
  /// Looks at the package's structure, so that a fault in it is told with the right name.
  SharedMedia Open(const std::string& name);

  std::string fOther;
  std::string fSubject;
};

CLI::App* CDiffCommand::Register(CLI::App& program) {
  CLI::App* const command = program.add_subcommand("diff", "Tell how two packages differ");
  command->add_option("A", fFile, "The first package")->type_name(kPackageValue)->required();
  command->add_option("B", fOther, "The second package")->type_name(kPackageValue)->required();
  command->footer(
      "Examples:\n"
      "  tambra diff Old.tmb New.tmb\n"
      "  tambra diff Old.tmb New.tmb --quiet >/dev/null && echo the same");
  return command;
}

SharedMedia CDiffCommand::Open(const std::string& name) {
  fSubject = name;
  const CPackageFile package = OpenPackage(name);
  package.fReader.ReadEntries();
  return package.fMedia;
}

int CDiffCommand::Run(const CGlobalOptions& options) {
  const CConsole console = options.Console();
  const CTextResources texts = LoadTexts(options);
  const CStopSignal signal;
  const SharedMedia before = Open(fFile);
  const SharedMedia after = Open(fOther);
  const auto report = [&](const CChange& change) {
    if (console.Json()) {
      PrintEvent(console, change);
    } else if (change.fKind == CChange::EKind::kHeader) {
      PrintHeaderChange(console, texts, change);
    } else {
      PrintEntryChange(console, texts, change);
    }
  };
  const std::size_t count = NSTambraPacking::ComparePackages(before, after, report, ThrowIfStopped);
  const int status = count == 0 ? kExitDone : kExitProblems;
  if (console.Json()) {
    console.PrintJson({{"event", "result"}, {"status", status}, {"changes", count}});
  } else if (count == 0) {
    console.Note(Printable(texts.Text(NSTambraPacking::kNoDifferences)));
  } else {
    console.Note(Printable(
        texts.Text(NSTambraPacking::kDifferenceCount, {TextFromUtf8(std::to_string(count))})));
  }
  return status;
}

}  // namespace

std::unique_ptr<ICommand> MakeDiffCommand() { return std::make_unique<CDiffCommand>(); }

}  // namespace NSTambraCli
