#pragma once

#include <QDialog>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

#include "gui/ElidedLabel.h"
#include "gui/PackRun.h"

namespace NSTambraGui {

/// What a pack job is doing, with a button that stops it. Looks at the job some thirty times a
/// second, however often it reports.
class CProgressDialog : public QDialog {
  Q_OBJECT

 public:
  /// Both must outlive the window.
  CProgressDialog(const NSTambraPacking::CTextResources& texts, CPackRun& run, QWidget* parent);

  /// The job has ended: closes the window and a question about stopping that is still open. False
  /// while that question is being closed.
  bool Finish();

  /// Asks whether to stop, which is what closing the window means too.
  void reject() override;

 private:
  void Refresh();

  const NSTambraPacking::CTextResources& fTexts;
  CPackRun& fRun;
  CElidedLabel* fStage;
  CElidedLabel* fItem;
  QProgressBar* fBar;
  CElidedLabel* fTime;
  QPushButton* fStop;
  QTimer fTimer;
  QDialog* fQuestion = nullptr;
};

}  // namespace NSTambraGui
