#include "cli/CommandLine.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <span>
#include <sstream>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/StdException.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/ExceptionAlerts.h"
#include "cli/CacheCommand.h"
#include "cli/CheckCommand.h"
#include "cli/Commands.h"
#include "cli/DemoCommand.h"
#include "cli/ExitStatus.h"
#include "cli/FailureReport.h"
#include "cli/HelpFormatter.h"
#include "cli/JobSession.h"
#include "cli/LastResort.h"
#include "cli/PackCommand.h"
#include "cli/Suggestion.h"
#include "cli/Terminal.h"

namespace NSTambraCli {

namespace {

constexpr const char* kSeeHelp = "Run with --help for more information.";

std::vector<std::unique_ptr<ICommand>> MakeCommands() {
  std::vector<std::unique_ptr<ICommand>> commands;
  commands.push_back(std::make_unique<CPackCommand>());
  commands.push_back(std::make_unique<CCheckCommand>());
  for (const auto make :
       {MakeInfoCommand, MakeListCommand, MakeVerifyCommand, MakeExtractCommand, MakeDiffCommand,
        MakeDumpCommand, MakeDWOPEncodeCommand, MakeDWOPDecodeCommand, MakeDWOPInfoCommand}) {
    commands.push_back(make());
  }
  commands.push_back(std::make_unique<CCacheCommand>());
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
  } catch (...) {
    ShowLastFailure();
  }
}

void ShowStopped(const CConsole& console, const CGlobalOptions& options) {
  console.Note(Printable(LoadTexts(options).Text(NSTambraPacking::kStopped)));
}

void ShowWrongUsage(const CConsole& console, const std::string& text) {
  for (const std::string& line : PrintableLines(NSTolbrook::TextFromUtf8(text))) {
    if (!line.empty()) console.Warn(line);
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
  } catch (const XWrongUsage& e) {
    ShowWrongUsage(console, std::string(e.Message()) + "\n" + kSeeHelp);
    return kExitUsage;
  } catch (const NSMordel::XSilentAbort&) {
    ShowStopped(console, options);
    return kExitStopped;
  } catch (...) {
    ShowFailure(console, command.Subject());
    return kExitFailed;
  }
}

std::string Suggest(const std::string& prefix, const std::string& given,
                    const std::vector<std::string>& names) {
  const std::string closest = ClosestName(given, names);
  return closest.empty() ? std::string() : "; did you mean " + prefix + closest + "?";
}

/// Throws when the first argument is no command; the parser would ask for one as if it were
/// missing.
void CheckCommandName(const CLI::App& program, std::span<const std::string> arguments) {
  const std::vector<const CLI::App*> commands = program.get_subcommands({});
  if (commands.empty() || arguments.empty() || arguments.front().starts_with('-')) return;
  const std::string& given = arguments.front();
  std::vector<std::string> names;
  for (const CLI::App* const command : commands) {
    if (command->get_name() == given) return CheckCommandName(*command, arguments.subspan(1));
    names.push_back(command->get_name());
  }
  throw CLI::ParseError("\"" + given + "\" is no command" + Suggest("", given, names),
                        CLI::ExitCodes::ExtrasError);
}

/// What may have been meant by the first option that the command does not have.
std::string SuggestOption(const CLI::App& command, const std::vector<std::string>& arguments) {
  std::vector<std::string> names;
  for (const CLI::Option* const option : command.get_options()) {
    names.insert(names.end(), option->get_lnames().begin(), option->get_lnames().end());
  }
  for (const std::string& argument : arguments) {
    if (!argument.starts_with("--") || argument == "--") continue;
    const std::string name = argument.substr(2, argument.find('=') - 2);
    if (std::ranges::find(names, name) == names.end()) return Suggest("--", name, names);
  }
  return {};
}

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
    "\"tambra COMMAND --help\" tells more about a command.";

/// The commands with their parsers.
using CCommands = std::vector<std::pair<std::unique_ptr<ICommand>, CLI::App*>>;

/// Shows what the parser makes of wrong arguments, or the help that was asked for.
int ShowParseResult(const CLI::App& program, const CLI::ParseError& result) {
  std::ostringstream wrong;
  if (program.exit(result, std::cout, wrong) == 0) return kExitDone;
  ShowWrongUsage(CConsole(false, false), wrong.str());
  return kExitUsage;
}

int Parse(CLI::App& program, const CCommands& commands, const std::vector<std::string>& arguments) {
  try {
    CheckCommandName(program, arguments);
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    program.parse(std::move(reversed));
    return kExitDone;
  } catch (const CLI::ExtrasError& e) {
    std::string text = e.what();
    for (const auto& [command, app] : commands) {
      if (app->parsed()) text += SuggestOption(*app, arguments);
    }
    return ShowParseResult(program, CLI::ParseError(text, CLI::ExitCodes::ExtrasError));
  } catch (const CLI::ParseError& e) {
    return ShowParseResult(program, e);
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
  CLI::App program("Turns a content library into one package file, and reads such files.",
                   "tambra");
  program.formatter(std::make_shared<CHelpFormatter>());
  program.set_version_flag("--version", TAMBRA_VERSION);
  program.require_subcommand(1);
  program.footer(kProgramHelp);
  CCommands commands;
  for (auto& command : MakeCommands()) {
    CLI::App* const app = command->Register(program);
    AddGlobalOptions(*app, options);
    commands.emplace_back(std::move(command), app);
  }
  if (const int status = Parse(program, commands, arguments); status != kExitDone) return status;
  for (const auto& [command, app] : commands) {
    if (app->parsed()) return RunCommand(*command, options);
  }
  return kExitDone;  // help or the version was shown
}

}  // namespace NSTambraCli
