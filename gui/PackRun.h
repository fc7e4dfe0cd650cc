#pragma once

#include <QWidget>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <thread>

#include "app/AlertPresenter.h"
#include "app/PackJobState.h"
#include "app/ProgressView.h"
#include "app/TambraPacker.h"
#include "app/TextResources.h"

namespace NSTambraGui {

/// A pack job on a thread of its own. Its questions come up over a window, on the window's thread;
/// what it reports is kept until it is asked for, however often it reports.
class CPackRun : public QObject,
                 private NSTambraPacking::IProgressView,
                 private NSTambraPacking::IAlertPresenter {
  Q_OBJECT

 public:
  struct CLines {
    QString fStage;
    QString fItem;
    QString fTime;
    int fBar = 0;  ///< thousandths
  };

  /// All must outlive the run; `window` is the parent of its alerts.
  CPackRun(const NSTambraPacking::CTextResources& texts, NSTambraPacking::CPackSettings settings,
           bool warnForExternal, QWidget& window);
  /// Waits for the job.
  ~CPackRun() override;

  void Start();
  void RequestStop() { fProgress.RequestStop(); }
  CLines Lines() const;

  // Behind Ended.
  /// What the user last answered to the closing alert.
  bool WantsLog() const { return fWantsLog; }
  std::optional<NSTolbrook::NativePath> LogFile() const;
  /// What kept the run from telling how it ended; null when nothing did.
  const std::exception_ptr& Fault() const { return fFault; }
  /// Of the package; without files when the run did not get to its end.
  const NSTambraPacking::CPackageInformation& Information() const { return fInformation; }

 signals:
  /// The package's texts, as the run has read them.
  void InformationRead(const NSTambraPacking::CPackageInformation& information);
  /// All work is done; an alert tells what came of it.
  void Closing(bool isPacked);
  /// The job, its closing alert included, has come to its end.
  void Ended();

 private:
  void Work();
  void Pack();
  void ShowFailure(const std::exception_ptr& failure);

  void SetStageLine(const std::u16string& line) override;
  void SetItemLine(const std::u16string& line) override;
  void SetBar(int position) override;
  void SetTimeLine(const std::u16string& line) override;
  void SetInformation(const NSTambraPacking::CPackageInformation& information) override;
  int Show(NSTambraPacking::CAlertNumber number, const NSTambraPacking::CAlertText& alert) override;
  int ShowOnWindow(NSTambraPacking::CAlertNumber number, const NSTambraPacking::CAlertText& alert);

  const NSTambraPacking::CTextResources& fTexts;
  NSTambraPacking::CPackSettings fSettings;
  QWidget& fWindow;
  NSTolbrook::CSystemClock fClock;
  NSTambraPacking::CTambraPackProgress fProgress;
  NSTambraPacking::CTambraPacker fPacker;
  /// Of alerts that are answered for all files, by question; the job's thread alone uses it.
  std::map<int, int> fAnswers;
  bool fWantsLog = false;
  std::exception_ptr fFault;
  NSTambraPacking::CPackageInformation fInformation;

  mutable std::mutex fMutex;  // over fLines
  CLines fLines;
  std::thread fThread;
};

}  // namespace NSTambraGui
