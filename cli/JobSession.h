#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "app/TambraPacker.h"
#include "app/TextResources.h"
#include "cli/Command.h"
#include "cli/ConsoleAlertPresenter.h"
#include "cli/ExitStatus.h"
#include "cli/ProgressViews.h"
#include "cli/StopSignal.h"
#include "codecs/LQXLibrary.h"

namespace NSTambraCli {

/// The text tables that the options ask for.
NSTambraPacking::CTextResources LoadTexts(const CGlobalOptions& options);

/// The host's sliced-loop library, as far as there is one.
std::unique_ptr<NSTambraPacking::CLQXLibrary> LoadLoopLibrary(const CGlobalOptions& options);

/// Everything that a run of the pack job needs on the command line.
class CJobSession {
 public:
  struct COptions {
    CPreparedAnswers fAnswers;
    bool fWarnForExternal = false;
    /// What a failure that names nothing itself is about: the input folder.
    std::string fSubject;
  };

  CJobSession(const CGlobalOptions& global, COptions options);

  const CConsole& Console() const { return fConsole; }
  const NSTambraPacking::CTextResources& Texts() const { return fTexts; }
  const NSTambraPacking::ISlicedLoopLibrary* LoopLibrary() const { return fLoopLibrary.get(); }
  NSTambraPacking::CTambraPacker& Packer() { return fPacker; }
  NSTambraPacking::CTambraPackProgress& Progress() { return fProgress; }

  /// Does `work`, and shows what it throws. Returns its exit status, or that of the failure. From
  /// here to the session's end interrupts are stop requests, so that one which comes too late does
  /// not cut off the report of what was done.
  EExitStatus Run(const std::function<EExitStatus()>& work);

 private:
  EExitStatus ShowFailure();

  CConsole fConsole;
  std::string fSubject;
  NSTambraPacking::CTextResources fTexts;
  NSTolbrook::CSystemClock fClock;
  std::unique_ptr<NSTambraPacking::CLQXLibrary> fLoopLibrary;
  std::unique_ptr<ICliProgressView> fView;
  CConsoleAlertPresenter fPresenter;
  NSTambraPacking::CTambraPackProgress fProgress;
  NSTambraPacking::CTambraPacker fPacker;
  std::optional<CStopSignal> fSignal;
};

}  // namespace NSTambraCli
