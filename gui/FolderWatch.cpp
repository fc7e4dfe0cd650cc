#include "gui/FolderWatch.h"

#include <QDir>
#include <thread>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/ExceptionAlerts.h"
#include "app/SpecialNames.h"
#include "codecs/LQXLibrary.h"
#include "gui/QtText.h"

namespace NSTambraGui {

namespace {

using namespace NSTambraPacking;

/// Changes come in swarms.
constexpr int kDelay = 400;  // milliseconds
/// At most so often it is looked whether the folder is there, in one where much goes on.
constexpr int kParentDelay = 200;
/// The system's watches are few and belong to all programs.
constexpr std::size_t kMostFolders = 2000;

/// A folder tells of files that come and go, a file of its own text: these are edited in place.
QStringList TextsToWatch(const QString& folder) {
  QStringList paths;
  for (const QString& name : QDir(folder).entryList({"*.txt", "*.jpg"}, QDir::Files)) {
    if (IsInformationFile(FromQt(name)) || IsSplash(FromQt(name))) paths += folder + "/" + name;
  }
  return paths;
}

QStringList FoldersToWatch(const QString& folder, const CFolderLook& look) {
  QStringList paths;
  for (const std::u16string& inner : look.fFolders) {
    if (static_cast<std::size_t>(paths.size()) >= kMostFolders) break;
    paths += folder + "/" + ToQt(inner);
  }
  return paths;
}

}  // namespace

CFolderWatch::CFolderWatch(const CTextResources& texts, QObject* parent)
    : QObject(parent), fTexts(texts), fTask(this), fParentTask(this) {
  fDelay.setSingleShot(true);
  fDelay.setInterval(kDelay);
  connect(&fDelay, &QTimer::timeout, this, &CFolderWatch::Start);
  fParentDelay.setSingleShot(true);
  fParentDelay.setInterval(kParentDelay);
  connect(&fParentDelay, &QTimer::timeout, this, &CFolderWatch::LookAtParent);
  const auto changed = [this](const QString& path) {
    if (path != fParent) {
      fDelay.start();
    } else if (!fParentDelay.isActive()) {
      fParentDelay.start();
    }
  };
  connect(&fPaths, &CPathWatch::Changed, this, changed);
  connect(&fPaths, &CPathWatch::Begun, this, &CFolderWatch::AskForLook);
}

void CFolderWatch::SetFolder(const QString& folder) {
  fFolder = folder;
  fFingerprint = 0;
  fTask.Stop();
  fDelay.stop();
  fPaths.Unwatch();
  fParent = QFileInfo(folder).path();
  if (fParent == folder) fParent.clear();  // the root of a disk
  fPlace.reset();
  fParentDelay.stop();
  fParentTask.Stop();
  if (!folder.isEmpty()) LookAtParent();
  Start();
}

void CFolderWatch::LookAgain() {
  if (!fFolder.isEmpty()) LookAtParent();
  AskForLook();
}

void CFolderWatch::AskForLook() {
  if (fTask.IsRunning()) {
    fIsAsked = true;
  } else {
    fDelay.start();
  }
}

void CFolderWatch::SetPaused(bool isPaused) {
  fIsPaused = isPaused;
  if (isPaused) {
    fTask.Stop();
    fDelay.stop();
  } else {
    fDelay.start();
  }
}

void CFolderWatch::Start() {
  if (fFolder.isEmpty() || fIsPaused) return;
  QStringList places(fFolder);
  if (!fParent.isEmpty()) places += fParent;
  fTask.Start(
      [this, places, known = fFingerprint](const CTaskLink& link) { Look(link, places, known); },
      [this](const std::exception_ptr& failure) {
        if (failure) TakeFailure(failure);
        if (std::exchange(fIsAsked, false)) fDelay.start();
      });
}

void CFolderWatch::LookAtParent() {
  const auto work = [this, folder = fFolder](const CTaskLink& link) {
    CPlace place;
    try {
      const NSTolbrook::NativePath path = PathFromQt(folder);
      place.fIdentity = NSTolbrook::FileStatus(path, true).fIdentity;
      place.fPermissions = std::filesystem::status(path).permissions();
    } catch (const NSMordel::CExceptionBodyMixin&) {  // one that cannot be seen is away
    } catch (const std::filesystem::filesystem_error&) {
    }
    link.Post([this, place] {
      const auto before = std::exchange(fPlace, place);
      if (!before || before == place) return;
      fPaths.Unwatch();  // what is watched may be elsewhere now
      fTask.Stop();
      fFingerprint = 0;
      fDelay.start();
    });
  };
  fParentTask.Start(work, [](const std::exception_ptr&) {});
}

/// On the thread of the task.
void CFolderWatch::Look(const CTaskLink& link, const QStringList& places, std::uint64_t known) {
  const auto isWanted = [link] { return !link.StopRequested(); };
  const QString& folder = places.front();
  const QStringList watched = places + TextsToWatch(folder);
  // What cannot be listed is watched, too, and so is a folder that has come back.
  fPaths.Watch(watched, isWanted);
  CPackSettings settings;
  settings.fInputFolder = NSTolbrook::CFileItem(PathFromQt(folder));
  settings.fJobs = std::max(1U, std::thread::hardware_concurrency() / 2);
  const auto library = CLQXLibrary::Find({}, NSTolbrook::ProgramFolder());
  settings.fSlicedLoopLibrary = library.get();
  CFolderLookReport report;
  report.fStopRequested = [&link] { return link.StopRequested(); };
  report.fListed = [&](const CFolderLook& listed) {
    if (listed.fFingerprint == known) return false;
    link.Post([this, listed = std::make_shared<const CFolderLook>(listed),
               splash = ReadPicture(SplashPath(folder))] {
      fFingerprint = 0;  // what is shown from now on has not been checked
      emit Listed(listed, splash);
    });
    fPaths.WatchOnly(watched + FoldersToWatch(folder, listed), isWanted);
    return true;
  };
  std::optional<std::size_t> told;  // findings
  report.fChecked = [&](const CFolderLook& checked) {
    told = checked.fFindings.size();
    link.Post([this, look = std::make_shared<const CFolderLook>(checked)] { emit Checked(look); });
  };
  const auto look = std::make_shared<const CFolderLook>(LookAtFolder(fTexts, settings, report));
  if (!look->fIsChecked) return;
  link.Post([this, look, isNews = told != look->fFindings.size()] {
    fFingerprint = look->fFingerprint;
    if (isNews) emit Checked(look);
  });
}

/// A sliced-loop library that is there and cannot be loaded, or no memory.
void CFolderWatch::TakeFailure(const std::exception_ptr& failure) {
  const auto choice = ChooseAlert(failure, ESituation::kGeneral, {});
  if (!choice) return;
  fFingerprint = 0;
  CFolderLook look;
  look.fIsChecked = true;
  look.fFindings.push_back(
      {EFinding::kProblem, {}, fTexts.Alert(choice->fNumber, choice->fArguments).fMessage, {}});
  emit Checked(std::make_shared<const CFolderLook>(std::move(look)));
}

}  // namespace NSTambraGui
