#include "cli/JobSession.h"

#include "Parts/TolbrookPackage/Core/Exception.h"
#include "Parts/TolbrookPackage/Core/Text.h"

#include "cli/FailureReport.h"
#include "cli/StopSignal.h"
#include "cli/Terminal.h"

namespace NSTambraCli {

namespace {

bool CanAsk(const CGlobalOptions& global) {
  return !global.fJson && IsTerminal(EStandardStream::kInput) &&
         IsTerminal(EStandardStream::kError);
}

}  // namespace

NSTambraPacking::CTextResources LoadTexts(const CGlobalOptions& options) {
  std::optional<NSTolbrook::NativePath> named;
  if (!options.fTextFolder.empty()) named = PathArgument(options.fTextFolder);
  return NSTambraPacking::CTextResources(NSTambraPacking::CTextResources::Folders(named));
}

std::unique_ptr<NSTambraPacking::CLQXLibrary> LoadLoopLibrary(const CGlobalOptions& options) {
  std::optional<NSTolbrook::NativePath> named;
  if (!options.fLoopLibrary.empty()) named = PathArgument(options.fLoopLibrary);
  return NSTambraPacking::CLQXLibrary::Find(named, NSTolbrook::ProgramFolder());
}

CJobSession::CJobSession(const CGlobalOptions& global, COptions options)
    : fConsole(global.Console()),
      fSubject(options.fSubject),
      fTexts(LoadTexts(global)),
      fLoopLibrary(LoadLoopLibrary(global)),
      fView(MakeProgressView(fConsole)),
      fPresenter(fConsole, std::move(options.fAnswers), CanAsk(global), fView.get()),
      fProgress(fTexts, fClock, *fView,
                {.fShowTime = true, .fWarnForExternalReferences = options.fWarnForExternal}),
      fPacker(fTexts, fPresenter, fClock) {}

EExitStatus CJobSession::Run(const std::function<EExitStatus()>& work) {
  fSignal.emplace(&fProgress);
  try {
    const EExitStatus status = work();
    fView->Clear();
    return status;
  } catch (...) {
    fView->Clear();
    return ShowFailure();
  }
}

EExitStatus CJobSession::ShowFailure() {
  try {
    throw;
  } catch (const NSMordel::XSilentAbort&) {
    if (!CStopSignal::Requested()) return kExitAborted;
    fConsole.Note(NSTolbrook::Utf8FromText(fTexts.Text(NSTambraPacking::kStopped)));
    return kExitStopped;
  } catch (const NSMordel::XAbort&) {
    return kExitAborted;
  } catch (...) {
    const std::exception_ptr failure = std::current_exception();
    fPacker.ShowFailure(failure);
    ReportDetail(fConsole, fTexts, failure, fSubject);
    return kExitFailed;
  }
}

}  // namespace NSTambraCli
