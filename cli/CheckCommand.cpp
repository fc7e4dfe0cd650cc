#include "cli/CheckCommand.h"

#include <algorithm>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "cli/JobReport.h"
#include "cli/JobSession.h"
#include "cli/PackCommand.h"

namespace NSTambraCli {

CLI::App* CCheckCommand::Register(CLI::App& program) {
  CLI::App* const command =
      program.add_subcommand("check", "Tell what would come of packing a folder; writes nothing");
  command->add_option("INPUT", fInput, "The folder with the content library")
      ->type_name(kFolderValue)
      ->required();
  AddJobsOption(*command, fJobs, "Threads that verify (default: all cores)");
  command->footer("Example:\n  tambra check Library");
  return command;
}

int CCheckCommand::Run(const CGlobalOptions& options) {
  CJobSession::COptions sessionOptions;
  sessionOptions.fSubject = fInput;
  CJobSession session(options, std::move(sessionOptions));
  NSTambraPacking::CPackSettings settings;
  settings.fInputFolder = NSTolbrook::CFileItem(PathArgument(fInput));
  settings.fJobs = fJobs == 0 ? DefaultJobs() : fJobs;
  settings.fSlicedLoopLibrary = session.LoopLibrary();
  const EExitStatus status = session.Run([&] {
    NSTambraPacking::CPackageInformation information;
    session.Packer().Check(settings, information, session.Progress());
    return kExitDone;
  });
  const NSTambraPacking::CPackJobState* const state = session.Packer().State();
  if (state == nullptr) return status;
  const CConsole& console = session.Console();
  if (status == kExitDone || status == kExitAborted) {  // else nothing was found out to the end
    PrintFindings(console, session.Texts(), *state);
    NoteRemarks(console, session.Texts(), *state);
  }
  const auto files =
      static_cast<std::size_t>(std::count_if(state->fEntries.begin(), state->fEntries.end(),
                                             [](const auto& entry) { return entry.TakesPart(); }));
  if (console.Json()) {
    console.PrintJson({{"event", "result"}, {"status", status}, {"files", files}});
  } else if (status == kExitDone) {
    console.Print(Printable(session.Texts().Text(
        NSTambraPacking::kCheckPassed, {NSTolbrook::TextFromUtf8(std::to_string(files))})));
  }
  return status;
}

}  // namespace NSTambraCli
