#include "Parts/TolbrookPackage/Core/Text.h"

#include "cli/Commands.h"
#include "cli/ExitStatus.h"
#include "cli/JobSession.h"
#include "cli/LabelledLines.h"
#include "cli/PackageFile.h"

namespace NSTambraCli {

namespace {

using NSTambraPacking::CPackageHeader;
using NSTolbrook::Utf8FromText;

void PrintJson(const CConsole& console, const CPackageHeader& header, std::uint64_t size) {
  console.PrintJson({{"name", Utf8FromText(header.fTambraName)},
                     {"version", header.fVersion.Text()},
                     {"url", Utf8FromText(header.fURL)},
                     {"copyright", Utf8FromText(header.fCopyright)},
                     {"comment", Utf8FromText(header.fComment)},
                     {"files", header.fFileCount},
                     {"size", size},
                     {"index_start", header.fIndexStart},
                     {"data_start", header.fDataStart},
                     {"splash", {{"offset", header.fSplashOffset}, {"size", header.fSplashSize}}}});
}

void PrintLines(const CConsole& console, const NSTambraPacking::CTextResources& texts,
                const CPackageHeader& header, std::uint64_t size) {
  using namespace NSTambraPacking;
  const CLabelledLines lines = {
      {kInfoName, header.fTambraName},
      {kInfoVersion, NSTolbrook::TextFromUtf8(header.fVersion.Text())},
      {kInfoAddress, header.fURL},
      {kInfoCopyright, header.fCopyright},
      {kInfoFiles, NSTolbrook::TextFromUtf8(std::to_string(header.fFileCount))},
      {kInfoSize, NSTolbrook::TextFromUtf8(std::to_string(size))},
      {kInfoComment, header.fComment}};
  PrintLabelled(console, texts, lines);
}

class CInfoCommand : public CFileCommand {
 public:
  CLI::App* Register(CLI::App& program) override;
  int Run(const CGlobalOptions& options) override;
};

}  // namespace

CLI::App* CInfoCommand::Register(CLI::App& program) {
  CLI::App* const command = program.add_subcommand("info", "Show what a package says about itself");
  command->add_option("FILE", fFile, "The package")->type_name(kPackageValue)->required();
  command->footer("Example:\n  tambra info Packages/Library.tmb");
  return command;
}

int CInfoCommand::Run(const CGlobalOptions& options) {
  const CPackageFile package = OpenPackage(fFile);
  const CPackageHeader& header = package.fReader.Header();
  const CConsole console = options.Console();
  if (console.Json()) {
    PrintJson(console, header, package.fMedia->Size());
  } else {
    PrintLines(console, LoadTexts(options), header, package.fMedia->Size());
  }
  return kExitDone;
}

std::unique_ptr<ICommand> MakeInfoCommand() { return std::make_unique<CInfoCommand>(); }

}  // namespace NSTambraCli
