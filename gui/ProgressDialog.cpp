#include "gui/ProgressDialog.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "gui/AlertDialog.h"
#include "gui/MenuBuilder.h"
#include "gui/QtText.h"
#include "gui/WindowTexts.h"

namespace NSTambraGui {

namespace {

constexpr int kInterval = 33;  // milliseconds

}  // namespace

CProgressDialog::CProgressDialog(const NSTambraPacking::CTextResources& texts, CPackRun& run,
                                 QWidget* parent)
    : QDialog(parent), fTexts(texts), fRun(run) {
  setWindowTitle(ToQt(texts.Text(kTextPacking)));
  setWindowModality(Qt::WindowModal);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(20, 16, 20, 16);
  fStage = new CElidedLabel(1);
  QFont bold = fStage->font();
  bold.setBold(true);
  fStage->setFont(bold);
  fItem = new CElidedLabel(2);
  fBar = new QProgressBar;
  fBar->setRange(0, 1000);
  fBar->setTextVisible(false);
  fBar->setAccessibleName(ToQt(texts.Text(kTextProgress)));
  fTime = new CElidedLabel(1);
  fStop = new QPushButton(WithMnemonics({ToQt(texts.Text(kTextStop))}).front());
  for (QWidget* const widget : std::initializer_list<QWidget*>{fStage, fItem, fBar, fTime}) {
    column->addWidget(widget);
  }
  auto* const row = new QHBoxLayout;
  row->addStretch();
  row->addWidget(fStop);
  column->addLayout(row);
  setFixedWidth(fontMetrics().averageCharWidth() * 80);
  connect(fStop, &QPushButton::clicked, this, &CProgressDialog::reject);
  connect(&fTimer, &QTimer::timeout, this, &CProgressDialog::Refresh);
  fTimer.start(kInterval);
}

void CProgressDialog::Refresh() {
  const CPackRun::CLines lines = fRun.Lines();
  fStage->SetWholeText(lines.fStage);
  fItem->SetWholeText(lines.fItem);
  fTime->SetWholeText(lines.fTime);
  fBar->setValue(lines.fBar);
}

void CProgressDialog::reject() {
  if (fQuestion != nullptr) return;
  using NSTambraPacking::kAlertStop;
  const NSTambraPacking::CAlertText alert = fTexts.Alert(kAlertStop);
  CAlertDialog question(alert, CarefulButton(kAlertStop, alert), {}, this);
  fQuestion = &question;
  question.exec();
  fQuestion = nullptr;
  if (question.Answer() != NSTambraPacking::kLastButton) return;
  fStop->setEnabled(false);
  fRun.RequestStop();
}

bool CProgressDialog::Finish() {
  fTimer.stop();
  if (fQuestion != nullptr) fQuestion->reject();
  hide();
  return fQuestion == nullptr;
}

}  // namespace NSTambraGui
