#include "cli/DemoCommand.h"

#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/demo/DemoLibrary.h"
#include "cli/ExitStatus.h"
#include "cli/JobSession.h"
#include "cli/StopSignal.h"

namespace NSTambraCli {

CLI::App* CDemoCommand::Register(CLI::App& program) {
  CLI::App* const command =
      program.add_subcommand("demo", "Write a small content library to try the packer on");
  command->add_option("FOLDER", fFolder, "A folder that does not exist yet or is empty")
      ->type_name(kFolderValue)
      ->required();
  command->footer("Example:\n  tambra demo Library && tambra pack Library Packages");
  return command;
}

int CDemoCommand::Run(const CGlobalOptions& options) {
  const CConsole console = options.Console();
  const NSTambraPacking::CTextResources texts = LoadTexts(options);
  const NSTolbrook::NativePath folder = PathArgument(fFolder);
  const CStopSignal signal;
  const std::size_t count = NSTambraPacking::WriteDemoLibrary(folder, ThrowIfStopped);
  if (console.Json()) {
    console.PrintJson({{"folder", NSTolbrook::DisplayText(folder)}, {"files", count}});
    return kExitDone;
  }
  console.Note(Printable(texts.Text(NSTambraPacking::kDemoWritten,
                                    {NSTolbrook::TextFromUtf8(std::to_string(count)),
                                     NSTolbrook::TextFromUtf8(NSTolbrook::DisplayText(folder))})));
  return kExitDone;
}

}  // namespace NSTambraCli
