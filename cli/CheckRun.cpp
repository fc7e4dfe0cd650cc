#include "cli/CheckRun.h"

#include <algorithm>
#include <utility>

#include "Parts/TolbrookPackage/Core/Text.h"

#include "cli/AdviceReport.h"
#include "cli/JobReport.h"
#include "cli/JobSession.h"
#include "cli/PackCommand.h"

namespace NSTambraCli {

namespace {

using NSTambraPacking::CPackJobState;

bool Fails(const CPackJobState& state, NSTambraPacking::ESeverity failOn) {
  return std::ranges::any_of(state.fAdvice,
                             [=](const auto& advice) { return advice.fSeverity >= failOn; });
}

void PrintAll(const CJobSession& session, const CPackJobState& state) {
  PrintFindings(session.Console(), session.Texts(), state);
  PrintAdvice(session.Console(), session.Texts(), state.fAdvice);
  NoteRemarks(session.Console(), session.Texts(), state);
}

void PrintResult(const CJobSession& session, const CPackJobState& state, EExitStatus status,
                 bool canBePacked) {
  const auto files = static_cast<std::size_t>(
      std::ranges::count_if(state.fEntries, [](const auto& entry) { return entry.TakesPart(); }));
  const CConsole& console = session.Console();
  if (console.Json()) {
    console.PrintJson({{"event", "result"}, {"status", status}, {"files", files}});
  } else if (canBePacked && !state.fAdvice.empty()) {
    PrintAdviceCounts(console, session.Texts(), files, state.fAdvice);
  } else if (canBePacked) {
    console.Print(Printable(session.Texts().Text(
        NSTambraPacking::kCheckPassed, {NSTolbrook::TextFromUtf8(std::to_string(files))})));
  }
}

}  // namespace

int RunCheck(const CGlobalOptions& global, const CCheckOptions& options) {
  CJobSession::COptions sessionOptions;
  sessionOptions.fSubject = options.fInput;
  CJobSession session(global, std::move(sessionOptions));
  NSTambraPacking::CAdviceRules rules;
  NSTambraPacking::CPackSettings settings;
  settings.fInputFolder = NSTolbrook::CFileItem(PathArgument(options.fInput));
  settings.fJobs = options.fJobs == 0 ? DefaultJobs() : options.fJobs;
  settings.fSlicedLoopLibrary = session.LoopLibrary();
  settings.fAdviceRules = &rules;
  rules.AddFileOf(settings.fInputFolder.Path());
  if (!options.fOverrides.empty()) rules.AddFile(PathArgument(options.fOverrides));
  EExitStatus status = session.Run([&] {
    NSTambraPacking::CPackageInformation information;
    session.Packer().Check(settings, information, session.Progress());
    return kExitDone;
  });
  const CPackJobState* const state = session.Packer().State();
  if (state == nullptr) return status;
  const bool canBePacked = status == kExitDone;
  // Otherwise nothing was found out to the end.
  if (canBePacked || status == kExitAborted) PrintAll(session, *state);
  if (canBePacked && Fails(*state, options.fFailOn)) status = kExitAborted;
  PrintResult(session, *state, status, canBePacked);
  return status;
}

}  // namespace NSTambraCli
