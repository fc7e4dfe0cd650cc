#pragma once

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QProgressBar>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <functional>
#include <memory>

#include "gui/WindowMenus.h"
#include "gui/package/BackgroundTask.h"
#include "gui/package/DetailsPane.h"
#include "gui/package/EntryView.h"
#include "gui/package/FaultPage.h"
#include "gui/package/PackageDialogs.h"
#include "gui/package/PackageJobs.h"
#include "gui/package/PackageModel.h"
#include "gui/package/ResultPane.h"

namespace NSTambraGui {

/// A package's entries, what there is to see of each, and what can be done with them: extract,
/// verify, compare. Everything that reads is done beside the window's thread.
class CPackageWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// The texts must outlive the window.
  CPackageWindow(const NSTambraPacking::CTextResources& texts, CPackageDialogs dialogs);

  /// Shows the package of a file, or what is wrong with it.
  void Open(const QString& path);

  /// True while the package is opened, its sizes are gathered or something is done with it.
  bool IsBusy() const { return fOpening.IsRunning() || fJob.IsRunning(); }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  using Node = CPackageListing::Node;
  using Job = std::function<QString(const CJobContext& context)>;
  using Failed = std::function<bool(const std::exception_ptr& failure)>;

  void BuildPages();
  QWidget* BuildBar();
  QWidget* BuildPanes();
  void BuildStatus();
  void BuildMenus();
  void RestoreState();

  void ShowListing(std::shared_ptr<const CPackageListing> listing);
  void GatherSizes(const CTaskLink& link, const std::shared_ptr<const CPackageListing>& listing);
  void ShowOpeningFault(const std::exception_ptr& failure);
  void ApplyFilter();
  void ExpandFolders(bool all);
  void ShowChosen();
  void ShowCounts(const std::vector<Node>& chosen);
  void GoTo(const QString& path);
  void Escape();

  void OpenOther();
  void EnableJobs(bool isEnabled);

  void Extract();
  void ExtractInto(const QString& folder, NSTambraPacking::CPackageEntries entries,
                   NSTambraPacking::CPackageExtractor::EExisting existing);
  void Verify();
  void Compare();
  /// Does a job with its progress in the status line and its result in the pane below. `failed`
  /// may take a failure on itself.
  void Run(NSTambraPacking::CStringNumber title, Job job, Failed failed = {});
  void EndJob(const QString& heading);
  void StopJob();
  QString Text(NSTambraPacking::CStringNumber number) const;

  const NSTambraPacking::CTextResources& fTexts;
  CPackageDialogs fDialogs;
  CPackageModel* fModel;
  std::shared_ptr<const CPackageListing> fListing;
  QString fPath;

  CWindowMenus* fMenus = nullptr;
  QStackedWidget* fPages = nullptr;
  QLabel* fOpeningLabel = nullptr;
  CFaultPage* fFault = nullptr;
  QLineEdit* fFilter = nullptr;
  QComboBox* fTypes = nullptr;
  QPushButton* fExtract = nullptr;
  QPushButton* fVerify = nullptr;
  QPushButton* fCompare = nullptr;
  CEntryView* fTree = nullptr;
  CDetailsPane* fDetails = nullptr;
  CResultPane* fResults = nullptr;
  QSplitter* fColumns = nullptr;
  QLabel* fCounts = nullptr;
  QLabel* fItem = nullptr;
  QProgressBar* fProgress = nullptr;
  QPushButton* fStop = nullptr;

  // Behind everything that their work shows itself in.
  CBackgroundTask fOpening;
  CBackgroundTask fJob;
};

/// What a file that is dropped must look like.
bool IsPackageFile(const QString& path);

/// Opens a window of its own, which goes when it is closed. The texts must outlive it.
CPackageWindow* OpenPackageWindow(const NSTambraPacking::CTextResources& texts,
                                  const QString& path);

}  // namespace NSTambraGui
