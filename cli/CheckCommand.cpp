#include "cli/CheckCommand.h"

#include <algorithm>

#include "cli/AdviceReport.h"
#include "cli/JobSession.h"

namespace NSTambraCli {

namespace {

std::vector<std::string> AdviceIds() {
  std::vector<std::string> ids;
  for (const auto& kind : NSTambraPacking::AdviceKinds()) ids.emplace_back(kind.fId);
  return ids;
}

}  // namespace

CLI::App* CCheckCommand::Register(CLI::App& program) {
  CLI::App* const command =
      program.add_subcommand("check", "Tell what would come of packing a folder; writes nothing");
  command->add_option("INPUT", fCheck.fInput, "The folder with the content library")
      ->type_name(kFolderValue);
  AddJobsOption(*command, fCheck.fJobs, "Threads that verify (default: all cores)");
  command->add_option("--fail-on", fFailOn, "Fail on advice of this severity and worse")
      ->check(OneOf({"error", "warning", "note"}))
      ->capture_default_str();
  command->add_option("--overrides", fCheck.fOverrides, "Rules that turn advice up, down or off")
      ->type_name(kFileValue);
  command->add_option("--explain", fExplain, "Tell about a kind of advice")
      ->type_name("ID")
      ->check(OneOf(AdviceIds()));
  command->add_flag("--list-advice", fList, "List the kinds of advice");
  command->footer(
      "Examples:\n"
      "  tambra check Library\n"
      "  tambra check Library --fail-on warning      for a release\n"
      "  tambra check --explain loop-click");
  return command;
}

int CCheckCommand::Run(const CGlobalOptions& options) {
  if (fList || !fExplain.empty()) return Explain(options);
  if (fCheck.fInput.empty()) {
    throw XWrongUsage("INPUT is missing: The folder with the content library");
  }
  const auto name = std::ranges::find(NSTambraPacking::kSeverityNames, fFailOn);
  fCheck.fFailOn =
      static_cast<NSTambraPacking::ESeverity>(name - NSTambraPacking::kSeverityNames.begin());
  return RunCheck(options, fCheck);
}

int CCheckCommand::Explain(const CGlobalOptions& options) const {
  const CConsole console = options.Console();
  const NSTambraPacking::CTextResources texts = LoadTexts(options);
  if (fList) {
    PrintAdviceKinds(console, texts);
  } else {
    ExplainAdvice(console, texts, *NSTambraPacking::FindAdviceKind(fExplain));
  }
  return kExitDone;
}

}  // namespace NSTambraCli
