#pragma once

#include <QMainWindow>
#include <functional>
#include <memory>

#include "app/TextResources.h"
#include "gui/ContentsPanel.h"
#include "gui/FolderChooser.h"
#include "gui/FolderWatch.h"
#include "gui/InformationPanel.h"
#include "gui/PackFoot.h"
#include "gui/PackRun.h"
#include "gui/ProgressDialog.h"
#include "gui/SplashFile.h"
#include "gui/WindowMenus.h"

namespace NSTambraGui {

/// What the main window leaves to the desktop; a test answers in its place.
struct CMainDialogs {
  /// Both give an empty text when the user thinks better of it.
  std::function<QString(QWidget* parent, const QString& title, const QString& start)> fChooseFolder;
  std::function<QString(QWidget* parent, const QString& title, const QString& filter)> fChooseFile;
  CWindowMenus::OpenAddress fOpenAddress;
  /// Tells a user who is elsewhere that a job has ended.
  std::function<void(QWidget& window, const QString& message)> fTellEnd;

  static CMainDialogs OfTheDesktop();
};

/// The window in which a folder is chosen, looked at and packed.
class CMainWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// The texts must outlive the window. Takes up what the last one left in the settings.
  explicit CMainWindow(const NSTambraPacking::CTextResources& texts,
                       CMainDialogs dialogs = CMainDialogs::OfTheDesktop());
  ~CMainWindow() override;

  /// A folder becomes the input folder, a package has a window of its own.
  void Open(const QString& path);

  /// True while a package is made.
  bool IsPacking() const { return fRun != nullptr; }
  bool IsLooking() const { return fWatch.IsLooking() || fOutputCheck.IsRunning(); }
  QAction* Command(int number) const { return fMenus->Command(number); }
  /// Whether the folder can be packed, in words.
  QString StateText() const;
  QString OutputName() const;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void BuildMenus();
  void BuildContent();
  QWidget* BuildFolders(const QStringList& labels);
  void Connect();
  void RestoreState();
  void SaveState() const;

  void ChooseInput();
  void ChooseOutput();
  void ChoosePackage();
  void ChooseSplash();
  void SetInput(const QString& folder);
  void SetOutput(const QString& folder);
  void ShowListed(const SharedLook& look, const CSplashPicture& splash);
  void ShowChecked(const SharedLook& look);

  void Create();
  void EndRun();
  void ShowInformation(const NSTambraPacking::CPackageInformation& information);

  /// False when the texts could not be saved.
  bool SaveInformation();
  /// Asks what becomes of changed texts; false when the user wants to go on with them.
  bool LeaveInformation();
  void TakeSplash(const QString& path);
  void OfferSplash(const QString& path, const CSplashPicture& picture);
  /// False when the user thinks better of it.
  bool AskForSplash(const CSplashPicture& picture);
  void ShowFailure(const std::exception_ptr& failure);

  /// Finds out about the output folder beside the window's thread and updates the state.
  void CheckOutput();
  void UpdateState();
  QString Text(NSTambraPacking::CStringNumber number,
               const std::vector<std::u16string>& arguments = {}) const;

  const NSTambraPacking::CTextResources& fTexts;
  CMainDialogs fDialogs;
  CWindowMenus* fMenus = nullptr;
  CFolderChooser* fInput = nullptr;
  CFolderChooser* fOutput = nullptr;
  CInformationPanel* fInformation = nullptr;
  CContentsPanel* fContents = nullptr;
  CPackFoot* fFoot = nullptr;
  CFolderWatch fWatch;
  CBackgroundTask fPicture;      ///< the reading of a splash to be
  CBackgroundTask fOutputCheck;  ///< a drive may take its time to tell which folder is in which
  SharedLook fLook;
  QString fOutputFault;    ///< why the output folder cannot be used; empty when it can
  QString fLastRun;        ///< what came of it; empty when nothing did
  bool fIsListed = false;  ///< fLook is of the chosen folder
  std::unique_ptr<CPackRun> fRun;
  std::unique_ptr<CProgressDialog> fProgress;
};

}  // namespace NSTambraGui
