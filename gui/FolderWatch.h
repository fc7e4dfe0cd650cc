#pragma once

#include <QTimer>
#include <filesystem>
#include <optional>

#include "Parts/TolbrookPackage/Core/FileSystem.h"

#include "app/FolderLook.h"
#include "app/TextResources.h"
#include "gui/FindingsModel.h"
#include "gui/PathWatch.h"
#include "gui/SplashFile.h"
#include "gui/package/BackgroundTask.h"

namespace NSTambraGui {

/// Looks at an input folder beside the window's thread, at once and again when it changes on disk,
/// goes away or comes back.
class CFolderWatch : public QObject {
  Q_OBJECT

 public:
  /// The texts must outlive the object.
  CFolderWatch(const NSTambraPacking::CTextResources& texts, QObject* parent);

  /// Begins with another folder; an empty one ends the watch.
  void SetFolder(const QString& folder);
  /// Looks whether something has changed since the last look, and if so, again. Nothing while
  /// paused.
  void LookAgain();
  /// While a job reads the folder.
  void SetPaused(bool isPaused);
  bool IsLooking() const { return fTask.IsRunning() || fDelay.isActive(); }

 signals:
  /// The folder is listed; its check has begun. `splash` is a picture without pixels when there is
  /// none that can be read.
  void Listed(const SharedLook& look, const CSplashPicture& splash);
  /// The check has come to its verdict; once more when there is advice as well.
  void Checked(const SharedLook& look);

 private:
  /// What a folder is known by; nothing when it is away.
  struct CPlace {
    NSTolbrook::CFileIdentity fIdentity;
    std::filesystem::perms fPermissions{};
    bool operator==(const CPlace&) const = default;
  };

  void Start();
  void AskForLook();
  /// `places` are the folder and the one that it is in, if there is one.
  void Look(const CTaskLink& link, const QStringList& places, std::uint64_t known);
  void TakeFailure(const std::exception_ptr& failure);
  /// Whether something has happened to the folder itself.
  void LookAtParent();

  const NSTambraPacking::CTextResources& fTexts;
  QString fFolder;
  /// Of the last look that came to its end, advice and all; 0 for none.
  std::uint64_t fFingerprint = 0;
  bool fIsPaused = false;
  bool fIsAsked = false;  ///< to look again behind the present look
  CPathWatch fPaths;
  QTimer fDelay;
  QString fParent;  ///< of the folder; empty when it is in none
  /// The folder when it was last seen; none before it is looked for.
  std::optional<CPlace> fPlace;
  QTimer fParentDelay;
  CBackgroundTask fTask;
  CBackgroundTask fParentTask;
};

}  // namespace NSTambraGui
