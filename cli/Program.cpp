#include "cli/Program.h"

#include "cli/CacheCommand.h"
#include "cli/CheckCommand.h"
#include "cli/Commands.h"
#include "cli/DemoCommand.h"
#include "cli/HelpFormatter.h"
#include "cli/OptionValue.h"
#include "cli/PackCommand.h"
#include "cli/VersionReport.h"

namespace NSTambraCli {

namespace {

constexpr const char* kProgramHelp =
    "Examples:\n"
    "  tambra demo Library                  a library to try it with\n"
    "  tambra check Library                 what would come of packing it\n"
    "  tambra pack Library Packages         makes Packages/NAME.tmb\n"
    "  tambra verify Packages/NAME.tmb      reads it back\n"
    "  tambra extract Packages/NAME.tmb Files\n"
    "\n"
    "Exit status: 0 done, 1 finished with problems or differences, 2 wrong usage, 3 a test or a\n"
    "question ended the run or the check failed, 4 an error or a damaged package, 130 stopped.\n"
    "\"tambra help COMMAND\" tells more about a command.";

/// tambra help: what the parser does with --help of the command that is named.
void AddHelpCommand(CLI::App& program) {
  CLI::App* const command = program.add_subcommand("help", "Show the help of a command");
  command->add_option("COMMAND", "The command, with the one below it if there is one")
      ->type_name(kCommandValue)
      ->expected(0, CLI::detail::expected_max_vector_size);
  command->footer("Examples:\n  tambra help pack\n  tambra help dwop encode");
}

void AddCommonOptions(CLI::App& command, CGlobalOptions& options) {
  command.get_help_ptr()->group(kCommonOptions);
  command.add_flag("--json", options.fJson, "Print JSON on standard output and nothing else")
      ->group(kCommonOptions);
  command.add_flag("--quiet", options.fQuiet, "Print nothing but data, questions and failures")
      ->group(kCommonOptions);
  command.add_option("--texts", options.fTextFolder, "Folder with text tables of your own")
      ->type_name(kFolderValue)
      ->group(kCommonOptions);
  command.add_option("--lqx-library", options.fLoopLibrary, "The host's sliced-loop library")
      ->type_name(kFileValue)
      ->group(kCommonOptions);
}

}  // namespace

CProgram::CProgram()
    : fApp("Turns a content library into one package file, and reads such files.", "tambra") {
  fApp.formatter(std::make_shared<CHelpFormatter>());
  fApp.set_help_flag("--help,-h", "Show examples, arguments and options");
  fApp.set_version_flag("--version", VersionReport, "Show the version and what it is built of");
  fApp.require_subcommand(1);
  fApp.allow_windows_style_options(false);  // "/x" is a path on every system
  fApp.group("Commands");                   // inherited: their title
  fApp.footer(kProgramHelp);
  Add(std::make_unique<CPackCommand>());
  Add(std::make_unique<CCheckCommand>());
  for (const auto make :
       {MakeInfoCommand, MakeListCommand, MakeVerifyCommand, MakeExtractCommand, MakeDiffCommand,
        MakeDumpCommand, MakeDWOPEncodeCommand, MakeDWOPDecodeCommand, MakeDWOPInfoCommand}) {
    Add(make());
  }
  Add(std::make_unique<CCacheCommand>());
  Add(std::make_unique<CDemoCommand>());
  AddHelpCommand(fApp);
}

void CProgram::Add(std::unique_ptr<ICommand> command) {
  CLI::App* const app = command->Register(fApp);
  AddCommonOptions(*app, fOptions);
  fCommands.emplace_back(std::move(command), app);
}

ICommand* CProgram::Parsed() const {
  for (const auto& [command, app] : fCommands) {
    if (app->parsed()) return command.get();
  }
  return nullptr;
}

}  // namespace NSTambraCli
