#include "cli/CommandLine.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/StdException.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/ExceptionAlerts.h"
#include "cli/CheckCommand.h"
#include "cli/DemoCommand.h"
#include "cli/ExitStatus.h"
#include "cli/FailureReport.h"
#include "cli/JobSession.h"
#include "cli/PackCommand.h"
#include "cli/PackageCommands.h"
#include "cli/Terminal.h"

namespace NSTambraCli {

namespace {

std::vector<std::unique_ptr<ICommand>> MakeCommands() {
  std::vector<std::unique_ptr<ICommand>> commands;
  commands.push_back(std::make_unique<CPackCommand>());
  commands.push_back(std::make_unique<CCheckCommand>());
  commands.push_back(std::make_unique<CInfoCommand>());
  commands.push_back(std::make_unique<CListCommand>());
  commands.push_back(std::make_unique<CVerifyCommand>());
  commands.push_back(std::make_unique<CDemoCommand>());
  return commands;
}

void AddGlobalOptions(CLI::App& command, CGlobalOptions& options) {
  command.add_flag("--json", options.fJson, "Print JSON on standard output and nothing else");
  command.add_flag("--quiet", options.fQuiet, "Print nothing but data, questions and failures");
  command.add_option("--texts", options.fTextFolder, "Folder with text tables of your own")
      ->type_name("FOLDER");
  command.add_option("--lqx-library", options.fLoopLibrary, "The host's sliced-loop library")
      ->type_name("FILE");
}

/// Shows a failure that left a command: by its own words, without them by the alert of its kind.
void ShowFailure(const CConsole& console, const std::string& subject) {
  const std::exception_ptr failure = std::current_exception();
  try {
    const NSTambraPacking::CTextResources texts;
    if (ReportDetail(console, texts, failure, subject)) return;
    CConsoleAlertPresenter presenter(console, {}, false);
    NSTambraPacking::CExceptionResponder(texts, presenter).Respond(failure);
  } catch (const XOutputClosed&) {
    return;
  } catch (const std::exception& e) {
    console.Warn(e.what());
  }
}

int RunCommand(ICommand& command, const CGlobalOptions& options) {
  const CConsole console = options.Console();
  try {
    const int status = command.Run(options);
    console.Flush();
    return status;
  } catch (const XOutputClosed&) {
    return kExitFailed;
  } catch (...) {
    ShowFailure(console, command.Subject());
    return kExitFailed;
  }
}

/// Throws when the first argument is no command; the parser would ask for one as if it were
/// missing.
void CheckCommandName(const CLI::App& program, const std::vector<std::string>& arguments) {
  if (arguments.empty() || arguments.front().starts_with('-')) return;
  for (const CLI::App* const command : program.get_subcommands({})) {
    if (command->get_name() == arguments.front()) return;
  }
  throw CLI::ParseError("\"" + arguments.front() + "\" is no command", CLI::ExitCodes::ExtrasError);
}

constexpr const char* kStatusHelp =
    "Exit status: 0 done, 1 finished with problems, 2 wrong usage, 3 a test or a question ended\n"
    "the run or the check failed, 4 an error or a damaged package, 130 stopped.\n"
    "\"tambra COMMAND --help\" tells more about a command.";

}  // namespace

NSTolbrook::NativePath PathArgument(const std::string& argument) {
  const std::u8string text(argument.begin(), argument.end());
  return NSTolbrook::NativePath(text);
}

int RunTambra(const std::vector<std::string>& arguments) {
  PrepareConsole();
  CGlobalOptions options;
  CLI::App program("Turns a content library into one package file.", "tambra");
  program.set_version_flag("--version", TAMBRA_VERSION);
  program.require_subcommand(1);
  program.footer(kStatusHelp);
  std::vector<std::pair<std::unique_ptr<ICommand>, CLI::App*>> commands;
  for (auto& command : MakeCommands()) {
    CLI::App* const app = command->Register(program);
    AddGlobalOptions(*app, options);
    commands.emplace_back(std::move(command), app);
  }
  try {
    CheckCommandName(program, arguments);
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    program.parse(std::move(reversed));
  } catch (const CLI::ParseError& e) {
    return program.exit(e) == 0 ? kExitDone : kExitUsage;
  }
  for (const auto& [command, app] : commands) {
    if (app->parsed()) return RunCommand(*command, options);
  }
  return kExitUsage;
}

}  // namespace NSTambraCli
