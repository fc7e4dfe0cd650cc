#include "cli/PackCommand.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "cli/CheckRun.h"
#include "cli/JobReport.h"
#include "cli/JobSession.h"
#include "cli/PackSummaryReport.h"

namespace NSTambraCli {

namespace {

using NSTambraPacking::EPackEnding;

std::string_view EndingName(EPackEnding ending) {
  switch (ending) {
    case EPackEnding::kPacked:
      return "packed";
    case EPackEnding::kPackedWithNotes:
      return "packed_with_notes";
    case EPackEnding::kProblems:
      return "problems";
  }
  return "problems";
}

/// Says where the results are.
void ReportFiles(CJobSession& session, std::string_view ending, EExitStatus status) {
  const NSTambraPacking::CPackJobState* const state = session.Packer().State();
  const std::string log = state != nullptr && state->fLogFile
                              ? NSTolbrook::DisplayText(state->fLogFile->Path())
                              : std::string();
  // A run that is stopped while it reads the package back leaves it, too, and has to say so.
  const bool isWritten = state != nullptr && state->fPackageWritten;
  const std::string package =
      isWritten ? NSTolbrook::DisplayText(state->fOutputFile.Path()) : std::string();
  const CConsole& console = session.Console();
  if (console.Json()) {
    CJson event = {{"event", "result"}, {"ending", ending}, {"status", status}};
    if (isWritten) event.Add("package", package);
    if (isWritten) event.Add("files", state->fInformation.fFileCount);
    if (!log.empty()) event.Add("log", log);
    console.PrintJson(event);
    return;
  }
  const auto line = [&](NSTambraPacking::CStringNumber number, const std::string& path) {
    return Printable(session.Texts().Text(number, {NSTolbrook::TextFromUtf8(path)}));
  };
  if (isWritten) console.Note(line(NSTambraPacking::kTambraFile, package));
  if (log.empty()) return;
  // All other endings have alerts that tell the user to look at the log.
  const bool isNote = ending == EndingName(EPackEnding::kPacked);
  const std::string logLine = line(NSTambraPacking::kLogFile, log);
  isNote ? console.Note(logLine) : console.Warn(logLine);
}

/// What is wrong with an --answer; nothing when it is right.
std::string FaultOfAnswer(const std::string& answer) {
  CPreparedAnswers answers;
  try {
    AddAnswer(answers, answer);
  } catch (const NSMordel::XFormatViolation& e) {
    return e.Message();
  }
  return {};
}

const char* StatusName(EExitStatus status) {
  if (status == kExitStopped) return "stopped";
  return status == kExitAborted ? "aborted" : "failed";
}

}  // namespace

unsigned DefaultJobs() { return std::max(1U, std::thread::hardware_concurrency()); }

CLI::App* CPackCommand::Register(CLI::App& program) {
  CLI::App* const command = program.add_subcommand("pack", "Make a package of a folder");
  command->add_option("INPUT", fInput, "The folder with the content library")
      ->type_name(kFolderValue)
      ->required();
  command->add_option("OUTPUT", fOutput, "The folder for the package and the log")
      ->type_name(kFolderValue)
      ->required();
  command->add_flag("--warn-external", fWarnForExternal,
                    "Ask about each file that refers to another package");
  command->add_flag("--replace", fReplace, "Replace a package that is there already");
  command->add_option("--answer", fAnswers, "Answer an alert in advance, by number and button")
      ->type_name(kAnswerValue)
      ->check(FaultOfAnswer)
      ->allow_extra_args(false);
  command->add_flag("--dry-run", fDryRun, "Only check the folder, as \"tambra check\" does");
  command->add_flag("--yes", fYes, "Go on wherever the packer would ask");
  AddJobsOption(*command, fJobs, "Threads that verify and pack (default: all cores)");
  command->add_flag("--no-cache", fNoCache,
                    "Pack and verify every sample, whatever earlier runs packed");
  fCacheLimit.AddOption(*command);
  command->footer(
      "Examples:\n"
      "  tambra pack Library Packages              ask on a terminal, else be careful\n"
      "  tambra pack Library Packages --replace    over the package of the last run\n"
      "  tambra pack Library Packages --answer \"21=Continue Anyway\"\n"
      "                                            leave out files of unknown types\n"
      "  tambra pack Library Packages --json       an event a line, for programs");
  return command;
}

std::unique_ptr<NSTambraPacking::CPackCache> CPackCommand::MakeCache() const {
  if (fNoCache || fCacheLimit.Bytes() == 0) return nullptr;
  try {
    return std::make_unique<NSTambraPacking::CPackCache>(CacheFolder(), fCacheLimit.Bytes());
  } catch (const NSMordel::XNotFound&) {
    return nullptr;  // a user without a home is no fault
  }
}

int CPackCommand::Run(const CGlobalOptions& options) {
  if (fDryRun) return RunCheck(options, {.fInput = fInput, .fJobs = fJobs});
  const auto start = std::chrono::steady_clock::now();
  CJobSession::COptions sessionOptions;
  for (const std::string& answer : fAnswers) AddAnswer(sessionOptions.fAnswers, answer);
  const NSTambraPacking::CTextResources texts = LoadTexts(options);
  CheckAnswers(sessionOptions.fAnswers, texts);
  if (fReplace) {
    constexpr NSTambraPacking::CAlertNumber kReplace = NSTambraPacking::kAlertReplace;
    sessionOptions.fAnswers.fAnswers[kReplace.fEntry] = texts.Alert(kReplace).fButtons.back();
  }
  sessionOptions.fAnswers.fYes = fYes;
  sessionOptions.fWarnForExternal = fWarnForExternal;
  sessionOptions.fSubject = fInput;
  CJobSession session(options, std::move(sessionOptions));

  NSTambraPacking::CPackSettings settings;
  settings.fInputFolder = NSTolbrook::CFileItem(PathArgument(fInput));
  settings.fOutputFolder = NSTolbrook::CFileItem(PathArgument(fOutput));
  settings.fJobs = fJobs == 0 ? DefaultJobs() : fJobs;
  settings.fSlicedLoopLibrary = session.LoopLibrary();
  const std::unique_ptr<NSTambraPacking::CPackCache> cache = MakeCache();
  settings.fCache = cache.get();
  std::string_view ending;
  const EExitStatus status = session.Run([&] {
    NSTambraPacking::CPackageInformation information;
    const EPackEnding packed = session.Packer().Run(settings, information, session.Progress());
    ending = EndingName(packed);
    return packed == EPackEnding::kProblems ? kExitProblems : kExitDone;
  });
  if (const auto* const state = session.Packer().State()) {
    NoteReasons(session.Console(), session.Texts(), *state);
    NoteRemarks(session.Console(), session.Texts(), *state);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    if (!ending.empty()) NoteSummary(session.Console(), session.Texts(), *state, time.count());
  }
  if (cache != nullptr) NoteCache(session.Console(), session.Texts(), *cache);
  ReportFiles(session, ending.empty() ? StatusName(status) : ending, status);
  return status;
}

}  // namespace NSTambraCli
