#include "cli/CommandLine.h"

#include <algorithm>
#include <functional>
#include <span>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/StdException.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "app/ExceptionAlerts.h"
#include "cli/ArgumentWalk.h"
#include "cli/Completion.h"
#include "cli/ExitStatus.h"
#include "cli/FailureReport.h"
#include "cli/JobSession.h"
#include "cli/LastResort.h"
#include "cli/Program.h"
#include "cli/Terminal.h"
#include "cli/VersionReport.h"

namespace NSTambraCli {

namespace {

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

/// What is wrong with the use of a command, and where to read on.
int ShowWrongUsage(const std::string& command, const std::string& fault) {
  const CConsole console(false, false);
  console.Warn(Printable(NSTolbrook::TextFromUtf8(command + ": " + fault)));
  console.Warn("Run \"" + command + " --help\" for more information.");
  return kExitUsage;
}

/// Does the work of `command`, as the user calls it; shows what it throws.
int Guarded(const std::string& command, const CProgram& program,
            const std::function<int(const CConsole& console)>& work) {
  const CConsole console = program.Options().Console();
  try {
    const int status = work(console);
    console.Flush();
    return status;
  } catch (const XOutputClosed&) {
    return kExitFailed;
  } catch (const XWrongUsage& e) {
    return ShowWrongUsage(command, e.Message());
  } catch (const NSMordel::XSilentAbort&) {
    ShowStopped(console, program.Options());
    return kExitStopped;
  } catch (...) {
    const ICommand* const parsed = program.Parsed();
    ShowFailure(console, parsed == nullptr ? std::string() : parsed->Subject());
    return kExitFailed;
  }
}

/// "tambra help COMMAND" as every command knows it: "tambra COMMAND --help".
std::vector<std::string> WithoutHelpCommand(std::vector<std::string> arguments) {
  const auto isOption = [](const std::string& argument) { return argument.starts_with('-'); };
  if (arguments.empty() || arguments.front() != "help") return arguments;
  if (std::ranges::any_of(arguments, isOption)) return arguments;
  arguments.erase(arguments.begin());
  arguments.push_back("--help");
  return arguments;
}

/// The help or version that is asked for. Without such a wish, which needs nothing more, the
/// arguments must be complete.
std::string WantedText(CArgumentWalk& walk, const CLI::App& program,
                       const std::vector<std::string>& arguments) {
  for (const std::string& argument : arguments) {
    walk.Take(argument);
    if (walk.Has(*program.get_version_ptr())) return VersionReport();
    if (!walk.Has(*walk.Command().get_help_ptr())) continue;
    const std::string help = walk.Command().get_formatter()->make_help(&walk.Command(), walk.Name(),
                                                                       CLI::AppFormatMode::Normal);
    return help.substr(0, help.find_last_not_of('\n') + 1);
  }
  walk.CheckComplete();
  return {};
}

int Run(CProgram& program, const std::vector<std::string>& arguments) {
  CArgumentWalk walk(program.App());
  std::string text;
  try {
    text = WantedText(walk, program.App(), arguments);
    if (text.empty()) {
      program.App().parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    }
  } catch (const CLI::ParseError& e) {
    return ShowWrongUsage(walk.Name(), e.what());
  } catch (const XWrongUsage& e) {
    return ShowWrongUsage(walk.Name(), e.Message());
  }
  return Guarded(walk.Name(), program, [&](const CConsole& console) -> int {
    if (text.empty()) return program.Parsed()->Run(program.Options());
    console.Print(text);
    return kExitDone;
  });
}

}  // namespace

int RunTambra(const std::vector<std::string>& arguments) {
  PrepareConsole();
  CProgram program;
  if (!arguments.empty() && arguments.front() == kCompletionCommand) {
    return Guarded("tambra", program, [&](const CConsole& console) {
      return PrintCompletion(console, program, std::span(arguments).subspan(1));
    });
  }
  return Run(program, WithoutHelpCommand(arguments));
}

}  // namespace NSTambraCli
