#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "cli/Commands.h"
#include "cli/JobSession.h"
#include "cli/PackCommand.h"
#include "cli/PackageFile.h"
#include "cli/StopSignal.h"
#include "filetypes/PackedEntryVerifier.h"

namespace NSTambraCli {

namespace {

using NSTambraPacking::CTextResources;
using NSTambraPacking::CVerificationResult;
using NSTolbrook::Utf8FromText;

void PrintJson(const CConsole& console, const CVerificationResult& result, bool isSound) {
  CJson failed = CJson::Array();
  for (const auto& [entry, message] : result.fFailed) {
    failed.Append({{"path", Utf8FromText(entry->Path())}, {"message", message}});
  }
  CJson broken = CJson::Array();
  for (const auto& [entry, references] : result.fBroken) {
    CJson names = CJson::Array();
    for (const auto& reference : references) names.Append(Utf8FromText(reference));
    broken.Append({{"path", Utf8FromText(entry->Path())}, {"references", names}});
  }
  console.PrintJson({{"sound", isSound},
                     {"quick", false},
                     {"verified", result.fVerifiedCount},
                     {"failed", failed},
                     {"broken", broken}});
}

void PrintLines(const CConsole& console, const CTextResources& texts,
                const CVerificationResult& result, bool isSound) {
  const auto print = [&](NSTambraPacking::CStringNumber number,
                         const std::vector<std::u16string>& arguments = {}) {
    console.Print(Printable(texts.Text(number, arguments)));
  };
  for (const auto& [entry, message] : result.fFailed) {
    print(NSTambraPacking::kFailureDetail, {entry->Path(), NSTolbrook::TextFromUtf8(message)});
  }
  if (!result.fBroken.empty()) print(NSTambraPacking::kLogBroken);
  for (const auto& [entry, references] : result.fBroken) {
    console.Print("    " + Printable(entry->Path()));
    for (const auto& reference : references) console.Print("        " + Printable(reference));
  }
  if (isSound) {
    print(NSTambraPacking::kTambraSound,
          {NSTolbrook::TextFromUtf8(std::to_string(result.fVerifiedCount))});
  } else {
    print(NSTambraPacking::kTambraDamaged);
  }
}

/// What is wrong with the structure has been thrown before.
int ReportStructure(const CConsole& console, const CTextResources& texts, std::size_t count) {
  if (console.Json()) {
    console.PrintJson({{"sound", true}, {"quick", true}, {"entries", count}});
  } else {
    console.Print(Printable(texts.Text(NSTambraPacking::kStructureSound,
                                       {NSTolbrook::TextFromUtf8(std::to_string(count))})));
  }
  return kExitDone;
}

class CVerifyCommand : public CFileCommand {
 public:
  CLI::App* Register(CLI::App& program) override;
  int Run(const CGlobalOptions& options) override;

 private:
  bool fQuick = false;
  unsigned fJobs = 0;
};

}  // namespace

CLI::App* CVerifyCommand::Register(CLI::App& program) {
  CLI::App* const command =
      program.add_subcommand("verify", "Read every entry of a package as its type demands");
  command->add_option("FILE", fFile, "The package")->type_name(kPackageValue)->required();
  command->add_flag("--quick", fQuick, "Look at the header and the index only");
  AddJobsOption(*command, fJobs, "Threads that verify (default: all cores)");
  command->footer(
      "Examples:\n"
      "  tambra verify Library.tmb            decode every sample, look up every reference\n"
      "  tambra verify Library.tmb --quick    the structure alone: a moment, whatever the size");
  return command;
}

int CVerifyCommand::Run(const CGlobalOptions& options) {
  const CConsole console = options.Console();
  const CTextResources texts = LoadTexts(options);
  const auto library = LoadLoopLibrary(options);
  const CStopSignal signal;
  const CPackageFile package = OpenPackage(fFile);
  NSTambraPacking::CPackedEntryVerifier entryVerifier(package.fReader.Header().fTambraName,
                                                      library.get(), CStopSignal::Requested);
  if (fQuick) {
    const auto entries = package.fReader.ReadEntries();
    entryVerifier.TakeEntries(entries);
    return ReportStructure(console, texts, entries.size());
  }
  NSTambraPacking::CVerificationOptions verification;
  verification.fJobs = fJobs == 0 ? DefaultJobs() : fJobs;
  const CVerificationResult result =
      NSTambraPacking::CPackageVerifier(entryVerifier, nullptr, nullptr)
          .Verify(package.fMedia, verification);
  const bool isSound = result.fFailed.empty() && result.fBroken.empty();
  if (console.Json()) {
    PrintJson(console, result, isSound);
  } else {
    PrintLines(console, texts, result, isSound);
  }
  return isSound ? kExitDone : kExitFailed;
}

std::unique_ptr<ICommand> MakeVerifyCommand() { return std::make_unique<CVerifyCommand>(); }

}  // namespace NSTambraCli
