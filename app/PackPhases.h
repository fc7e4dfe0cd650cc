#pragma once

#include "app/JobAlerts.h"
#include "app/PackJobState.h"
#include "app/TambraPackProgress.h"
#include "package/PhaseReport.h"

namespace NSTambraPacking {

class CTambraPacker;

/// Does `work`, which looks at the folder as a whole; what it throws about that goes where the
/// settings want it, if they do. Stops and a lack of memory are thrown in any case.
void PassFolderFault(const CPackSettings& settings, const std::function<void()>& work);

/// What each phase of a run works on and talks to.
struct CPhaseContext {
  CPackJobState& fState;
  CTambraPacker* fJob;
  CTambraPackProgress* fProgress;
  const CJobAlerts& fAlerts;

  CPhaseReport Report(int phase) const { return CPhaseReport(fJob, fProgress, phase); }
  /// For work that other threads do; it never takes the request back.
  bool StopRequested() const { return fProgress != nullptr && fProgress->StopRequested(); }
};

/// The phases of a run in their order. Each checks for a stop request first (XSilentAbort "User
/// aborted"), reports its items in order and leaves its results in the state. What 0 and 1 throw
/// about the folder as a whole goes where the settings want it, if they do.

/// 0: makes an entry for each file of the input folder, in scan order; those that the publisher
/// named are left out at once. Throws XResolve for a broken shortcut.
void ScanInputFolder(const CPhaseContext& context);
/// 1: takes up the package's texts and options and checks the splash. Throws XUnsupportedFormat for
/// the splash, XNotFound when name or splash are missing, and what the version text throws.
void TakePackageInformation(const CPhaseContext& context);
/// 2: builds the tree that references are looked up in; files that are left out stand in it, too,
/// so that a reference to one is told from a reference to nothing.
void BuildFolderStructure(const CPhaseContext& context);
/// 3: verifies every entry, then leaves out what the options say. Throws XAbort at its end when
/// entries failed or have unresolved references, or the user does not want to go on.
void VerifyEntries(const CPhaseContext& context);
/// Behind 3, of a check: measures every sample and gathers advice by the settings' rules. Throws
/// what reading a sample throws.
void GiveAdvice(const CPhaseContext& context);
/// 4: packs every entry into the working file. Throws XAbort when the user does not want to go on,
/// XOutOfSpace when the package gets too large.
void PackEntries(const CPhaseContext& context);
/// 5: lists what goes into the package.
void ListPackageEntries(const CPhaseContext& context);
/// 6: makes sure that the offsets of all entries fit. Throws XOutOfSpace.
void PlacePackageEntries(const CPhaseContext& context);
/// 7: writes the package file under a temporary name and gives it its own at the end.
void ComposePackage(const CPhaseContext& context);
/// 8: reads the package file back and verifies it. Throws XFormatViolation when its header is not
/// the one that was written.
void VerifyPackage(const CPhaseContext& context);
/// Behind all else, when package and log are out: gives what was packed and verified to the cache,
/// if there is one. Throws nothing of it, and not on a stop request, which only ends it.
void KeepPackedEntries(CPackJobState& state, const CTambraPackProgress& progress);

}  // namespace NSTambraPacking
