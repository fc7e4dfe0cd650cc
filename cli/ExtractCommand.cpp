#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/EntryComparison.h"
#include "app/PackageExtractor.h"
#include "cli/Commands.h"
#include "cli/ExitStatus.h"
#include "cli/FailureReport.h"
#include "cli/JobSession.h"
#include "cli/PackageFile.h"
#include "cli/StopSignal.h"

namespace NSTambraCli {

namespace {

using NSTambraPacking::CExtractedEntry;
using NSTambraPacking::CPackageExtractor;
using NSTambraPacking::CTextResources;
using NSTolbrook::TextFromUtf8;
using NSTolbrook::Utf8FromText;

const char* StateName(CExtractedEntry::EKind kind, bool isRelocated) {
  switch (kind) {
    case CExtractedEntry::EKind::kWhole:
      return isRelocated ? "relocated" : "whole";
    case CExtractedEntry::EKind::kDifferent:
      return "different";
    case CExtractedEntry::EKind::kDamaged:
      return "damaged";
  }
  return "";
}

/// Tells of each file what is not as it should be, and how far the work has come.
class CExtractionReport {
 public:
  CExtractionReport(const CConsole& console, const CTextResources& texts, std::uint64_t total)
      : fConsole(console), fTexts(texts), fTotal(total), fView(MakeProgressView(console)) {
    fView->SetStageLine(texts.Text(NSTambraPacking::kExtracting));
  }

  void Begin(const NSTambraPacking::CPackageEntry& entry) { fView->SetItemLine(entry.Path()); }

  void Done(const NSTambraPacking::CPackageEntry& entry, const CExtractedEntry& outcome) {
    const bool isDamaged = outcome.fKind == CExtractedEntry::EKind::kDamaged;
    ++(isDamaged ? fDamaged : fWritten);
    const bool isRelocated = !isDamaged && NSTambraPacking::HoldsReferences(entry);
    if (isRelocated) ++fRelocated;
    if (fConsole.Json()) {
      CJson event = {{"event", "file"},
                     {"path", Utf8FromText(entry.Path())},
                     {"state", StateName(outcome.fKind, isRelocated)}};
      if (!outcome.fReason.empty()) event.Add("reason", outcome.fReason);
      fConsole.PrintJson(event);
    } else if (outcome.fKind != CExtractedEntry::EKind::kWhole) {
      fView->Clear();
      fConsole.Warn(Printable(fTexts.Text(
          isDamaged ? NSTambraPacking::kExtractedDamaged : NSTambraPacking::kExtractedDifferent,
          {entry.Path(), TextFromUtf8(outcome.fReason)})));
    }
    fDone += entry.Data()->Size();
    if (fTotal > 0) fView->SetBar(static_cast<int>(1000 * fDone / fTotal));
  }

  int End(const std::string& folder) {
    fView->Clear();
    const int status = fDamaged == 0 ? kExitDone : kExitFailed;
    if (fConsole.Json()) {
      fConsole.PrintJson({{"event", "result"},
                          {"status", status},
                          {"folder", folder},
                          {"files", fWritten},
                          {"damaged", fDamaged}});
      return status;
    }
    const auto line = [this](NSTambraPacking::CStringNumber number,
                             const std::vector<std::u16string>& arguments) {
      return Printable(fTexts.Text(number, arguments));
    };
    const auto count = [](std::size_t files) { return TextFromUtf8(std::to_string(files)); };
    if (fRelocated > 0) {
      fConsole.Note(line(NSTambraPacking::kExtractedRelocated, {count(fRelocated)}));
    }
    fConsole.Note(line(NSTambraPacking::kDemoWritten, {count(fWritten), TextFromUtf8(folder)}));
    if (fDamaged > 0) {
      fConsole.Warn(
          line(NSTambraPacking::kExtractionDamaged, {count(fDamaged), count(fDamaged + fWritten)}));
    }
    return status;
  }

 private:
  const CConsole& fConsole;
  const CTextResources& fTexts;
  std::uint64_t fTotal;
  std::uint64_t fDone = 0;
  std::unique_ptr<ICliProgressView> fView;
  std::size_t fWritten = 0;
  std::size_t fRelocated = 0;
  std::size_t fDamaged = 0;
};

class CExtractCommand : public CFileCommand {
 public:
  CLI::App* Register(CLI::App& program) override;
  int Run(const CGlobalOptions& options) override;

 private:
  NSTambraPacking::CPackageEntries Select() const;

  std::string fFolder;
  std::vector<std::string> fNames;
  bool fReplace = false;
};

CLI::App* CExtractCommand::Register(CLI::App& program) {
  CLI::App* const command = program.add_subcommand(
      "extract", "Give the files of a package back, samples as WAVE and AIFF files");
  command->add_option("FILE", fFile, "The package")->type_name(kPackageValue)->required();
  command->add_option("FOLDER", fFolder, "Where the files are written; made when it is not there")
      ->type_name(kFolderValue)
      ->required();
  command
      ->add_option("NAME", fNames,
                   "Only these: names, or patterns with * (any characters) and ? (one)")
      ->type_name(kEntryValue);
  command->add_flag("--replace", fReplace, "Replace files that are there already");
  command->footer(
      "Examples:\n"
      "  tambra extract Library.tmb Files                     all files\n"
      "  tambra extract Library.tmb Files Splash.jpg \"*.wav\"  the picture and all WAVE files\n"
      "  tambra extract Library.tmb Files \"Loops/*\"           what lies in one folder");
  return command;
}

NSTambraPacking::CPackageEntries CExtractCommand::Select() const {
  std::vector<std::u16string> names;
  for (const std::string& name : fNames) names.push_back(TextFromUtf8(name));
  return NSTambraPacking::SelectEntries(OpenPackage(fFile).fReader.ReadEntries(), names);
}

int CExtractCommand::Run(const CGlobalOptions& options) {
  const CConsole console = options.Console();
  const CTextResources texts = LoadTexts(options);
  const CStopSignal signal;
  const NSTambraPacking::CPackageEntries entries = Select();
  std::uint64_t total = 0;
  for (const auto& entry : entries) total += entry->Data()->Size();
  try {
    const CPackageExtractor extractor(
        entries, PathArgument(fFolder),
        fReplace ? CPackageExtractor::EExisting::kReplace : CPackageExtractor::EExisting::kRefuse);
    CExtractionReport report(console, texts, total);
    extractor.Extract({[&](std::size_t, const auto& entry) { report.Begin(entry); },
                       [&](const auto& entry, const auto& outcome) { report.Done(entry, outcome); },
                       ThrowIfStopped});
    return report.End(fFolder);
  } catch (const NSMordel::XAlreadyExists&) {
    return ReportTaken(console, texts, std::current_exception());
  }
}

}  // namespace

std::unique_ptr<ICommand> MakeExtractCommand() { return std::make_unique<CExtractCommand>(); }

}  // namespace NSTambraCli
