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

/// Shows a failure that left a command: by the alert of its kind, and by its own words.
int ShowFailure(const CGlobalOptions& options) {
  const std::exception_ptr failure = std::current_exception();
  const CConsole console = options.Console();
  try {
    const NSTambraPacking::CTextResources texts;
    CConsoleAlertPresenter presenter(console, {}, false);
    NSTambraPacking::CExceptionResponder(texts, presenter).Respond(failure);
    ReportDetail(console, texts, failure);
  } catch (const std::exception& e) {
    console.Warn(e.what());
  }
  return kExitFailed;
}

int RunCommand(ICommand& command, const CGlobalOptions& options) {
  try {
    const int status = command.Run(options);
    if (std::fflush(stdout) != 0) return kExitFailed;
    return status;
  } catch (...) {
    return ShowFailure(options);
  }
}

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
  std::vector<std::pair<std::unique_ptr<ICommand>, CLI::App*>> commands;
  for (auto& command : MakeCommands()) {
    CLI::App* const app = command->Register(program);
    AddGlobalOptions(*app, options);
    commands.emplace_back(std::move(command), app);
  }
  try {
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
