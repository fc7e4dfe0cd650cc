#include "gui/MainWindow.h"

#include <QCloseEvent>
#include <QDesktopServices>
#include <QFileDialog>
#include <QMimeData>
#include <QScrollArea>
#include <QSettings>
#include <QVBoxLayout>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/ExceptionAlerts.h"
#include "app/InformationEditor.h"
#include "app/InputFolder.h"
#include "gui/AlertDialog.h"
#include "gui/QtText.h"
#include "gui/SplashFile.h"
#include "gui/WindowState.h"
#include "gui/WindowTexts.h"
#include "gui/package/PackageListing.h"
#include "gui/package/PackageWindow.h"
#include "package/SplashCheck.h"

namespace NSTambraGui {

namespace {

using namespace NSTambraPacking;

/// Under which the settings stand.
constexpr char kPlace[] = "main";

std::u16string Number(qint64 number) { return FromQt(QLocale().toString(number)); }

}  // namespace

CMainDialogs CMainDialogs::OfTheDesktop() {
  return {[](QWidget* parent, const QString& title, const QString& start) {
            return QFileDialog::getExistingDirectory(parent, title, start);
          },
          [](QWidget* parent, const QString& title, const QString& filter) {
            return QFileDialog::getOpenFileName(parent, title, {}, filter);
          },
          [](const QUrl& address) { return QDesktopServices::openUrl(address); }, TellEnd};
}

CMainWindow::CMainWindow(const CTextResources& texts, CMainDialogs dialogs)
    : fTexts(texts),
      fDialogs(std::move(dialogs)),
      fWatch(texts, nullptr),
      fPicture(nullptr),
      fOutputCheck(nullptr),
      fLook(std::make_shared<const CFolderLook>()) {
  setWindowTitle(Text(kProgramName));
  setAcceptDrops(true);
  BuildMenus();
  BuildContent();
  Connect();
  RestoreState();
  UpdateState();
}

CMainWindow::~CMainWindow() = default;

void CMainWindow::BuildMenus() {
  fMenus = new CWindowMenus(fTexts, *this, {kMenuFile, kMenuEdit, kMenuTambra, kMenuHelp}, {},
                            fDialogs.fOpenAddress);
  fMenus->Do(kCommandInputFolder, [this] { ChooseInput(); });
  fMenus->Do(kCommandOutputFolder, [this] { ChooseOutput(); });
  fMenus->Do(kCommandCreate, [this] { Create(); });
  fMenus->Do(kCommandOpen, [this] { ChoosePackage(); });
  fMenus->Do(kCommandSaveInformation, [this] { SaveInformation(); });
  fMenus->Do(kCommandClearRecent, [this] {
    for (CFolderChooser* const chooser : {fInput, fOutput}) chooser->ForgetOthers();
  });
}

void CMainWindow::BuildContent() {
  // In the order in which Tab goes through them.
  auto* const body = new QWidget;
  auto* const parts = new QVBoxLayout(body);
  parts->setContentsMargins(0, 0, 0, 0);
  parts->setSpacing(10);
  const QStringList labels =
      WithMnemonics({Text(kTextInputFolder), Text(kTextOutputFolder)}, fMenus->Letters());
  parts->addWidget(BuildFolders(labels));
  const QString taken =
      fMenus->Letters() + MnemonicsOf(labels + QStringList(Command(kCommandCreate)->text()));
  fInformation = new CInformationPanel(fTexts, taken, body);
  parts->addWidget(fInformation);
  fContents = new CContentsPanel(fTexts, body);
  parts->addWidget(fContents, 1);
  // On a small screen, or with large letters, what is above the button gives way to it.
  auto* const area = new QScrollArea;
  area->setFrameShape(QFrame::NoFrame);
  area->setFocusPolicy(Qt::NoFocus);
  area->setWidgetResizable(true);
  area->setWidget(body);
  auto* const center = new QWidget;
  auto* const column = new QVBoxLayout(center);
  column->setSpacing(10);
  column->addWidget(area, 1);
  fFoot = new CPackFoot(center);
  column->addWidget(fFoot);
  setCentralWidget(center);
}

QWidget* CMainWindow::BuildFolders(const QStringList& labels) {
  auto* const box = new QWidget;
  auto* const column = new QVBoxLayout(box);
  column->setContentsMargins(0, 0, 0, 0);
  const auto make = [&](const QString& label) {
    auto* const chooser =
        new CFolderChooser({label, Text(kTextChoose), Text(kTextDropFolder)}, box);
    column->addWidget(chooser);
    return chooser;
  };
  fInput = make(labels[0]);
  fOutput = make(labels[1]);
  const int width = qMax(fInput->LabelWidth(), fOutput->LabelWidth());
  fInput->SetLabelWidth(width);
  fOutput->SetLabelWidth(width);
  return box;
}

void CMainWindow::Connect() {
  fFoot->SetCommand(*Command(kCommandCreate));
  connect(fInput, &CFolderChooser::Asked, this, &CMainWindow::ChooseInput);
  connect(fInput, &CFolderChooser::Chosen, this, &CMainWindow::SetInput);
  connect(fOutput, &CFolderChooser::Asked, this, &CMainWindow::ChooseOutput);
  connect(fOutput, &CFolderChooser::Chosen, this, &CMainWindow::SetOutput);
  connect(fInformation, &CInformationPanel::Edited, this, &CMainWindow::UpdateState);
  connect(fInformation, &CInformationPanel::SaveAsked, this, &CMainWindow::SaveInformation);
  connect(fInformation, &CInformationPanel::SplashAsked, this, &CMainWindow::ChooseSplash);
  connect(&fInformation->Splash(), &CSplashView::Dropped, this, &CMainWindow::TakeSplash);
  connect(&fWatch, &CFolderWatch::Listed, this, &CMainWindow::ShowListed);
  connect(&fWatch, &CFolderWatch::Checked, this, &CMainWindow::ShowChecked);
}

void CMainWindow::RestoreState() {
  const QSettings settings;
  RestorePlace(*this, kPlace, {940, 720});
  fInput->SetRecent(settings.value("main/inputFolders").toStringList());
  fOutput->SetRecent(settings.value("main/outputFolders").toStringList());
  Command(kCommandWarnExternal)->setChecked(settings.value("main/warnExternal").toBool());
  const QString input = settings.value("main/inputFolder").toString();
  const QString output = settings.value("main/outputFolder").toString();
  // One that is away, on a disk that is not there, may come back.
  if (!output.isEmpty()) SetOutput(output);
  if (!input.isEmpty()) SetInput(input);
}

void CMainWindow::SaveState() const {
  QSettings settings;
  SavePlace(*this, kPlace);
  settings.setValue("main/inputFolders", fInput->Recent());
  settings.setValue("main/outputFolders", fOutput->Recent());
  settings.setValue("main/inputFolder", fInput->Folder());
  settings.setValue("main/outputFolder", fOutput->Folder());
  settings.setValue("main/warnExternal", Command(kCommandWarnExternal)->isChecked());
}

void CMainWindow::Open(const QString& path) {
  if (QFileInfo(path).isDir()) {
    SetInput(path);
  } else {
    OpenPackageWindow(fTexts, path);
  }
}

void CMainWindow::ChooseInput() {
  const QString folder = fDialogs.fChooseFolder(this, Text(kTextChooseInput), fInput->Folder());
  if (!folder.isEmpty()) SetInput(folder);
}

void CMainWindow::ChooseOutput() {
  const QString folder = fDialogs.fChooseFolder(this, Text(kTextChooseOutput), fOutput->Folder());
  if (!folder.isEmpty()) SetOutput(folder);
}

void CMainWindow::ChoosePackage() {
  const QString path = fDialogs.fChooseFile(this, Text(kTextOpenTambra), Text(kTextTambras));
  if (!path.isEmpty()) OpenPackageWindow(fTexts, path);
}

void CMainWindow::ChooseSplash() {
  const QString path = fDialogs.fChooseFile(this, Text(kTextSplash), Text(kTextPictures));
  if (!path.isEmpty()) TakeSplash(path);
}

void CMainWindow::SetInput(const QString& folder) {
  if (IsPacking() || !LeaveInformation()) {
    fInput->SetFolder(fInput->Folder());
    return;
  }
  fInput->SetFolder(folder);
  fLook = std::make_shared<const CFolderLook>();
  fLastRun.clear();
  fIsListed = false;
  fInformation->Show({});
  fInformation->Splash().Show({});
  fContents->Show(fLook);
  fPicture.Stop();
  fWatch.SetFolder(fInput->Folder());
  CheckOutput();
}

void CMainWindow::SetOutput(const QString& folder) {
  if (!IsPacking()) fOutput->SetFolder(folder);
  CheckOutput();
}

void CMainWindow::ShowListed(const SharedLook& look, const CSplashPicture& splash) {
  fLook = look;
  fIsListed = true;
  fInformation->Show(look->fTexts);
  fInformation->Splash().Show(splash);
  fContents->Show(look);
  CheckOutput();
}

void CMainWindow::ShowChecked(const SharedLook& look) {
  fLook = look;
  fContents->Show(look);
  UpdateState();
}

void CMainWindow::Create() {
  if (IsPacking() || !LeaveInformation()) return;
  fPicture.Stop();
  fWatch.SetPaused(true);
  CPackSettings settings;
  settings.fInputFolder = NSTolbrook::CFileItem(PathFromQt(fInput->Folder()));
  settings.fOutputFolder = NSTolbrook::CFileItem(PathFromQt(fOutput->Folder()));
  fRun = std::make_unique<CPackRun>(fTexts, settings, Command(kCommandWarnExternal)->isChecked(),
                                    *this);
  connect(fRun.get(), &CPackRun::InformationRead, this, &CMainWindow::ShowInformation,
          Qt::QueuedConnection);
  connect(fRun.get(), &CPackRun::Ended, this, &CMainWindow::EndRun, Qt::QueuedConnection);
  fProgress = std::make_unique<CProgressDialog>(fTexts, *fRun, this);
  connect(fRun.get(), &CPackRun::Closing, fProgress.get(), &CProgressDialog::Finish,
          Qt::QueuedConnection);
  connect(fRun.get(), &CPackRun::Closing, this, [this](bool isPacked) {
    fDialogs.fTellEnd(*this, Text(isPacked ? kTextPacked : kTextNotPacked));
  });
  UpdateState();
  fProgress->show();
  fRun->Start();
}

void CMainWindow::EndRun() {
  // A question about stopping has events of its own, behind which it still needs its window.
  if (!fProgress->Finish()) return QTimer::singleShot(0, this, &CMainWindow::EndRun);
  const std::unique_ptr<CProgressDialog> progress = std::move(fProgress);
  const std::unique_ptr<CPackRun> run = std::move(fRun);
  if (const CPackageInformation& packed = run->Information(); packed.fFileCount > 0) {
    fLastRun = Text(kTextLastRun, {packed.fName, Number(static_cast<qint64>(packed.fFileCount))});
  }
  fWatch.SetPaused(false);
  UpdateState();
  if (run->Fault()) ShowFailure(run->Fault());
  if (run->WantsLog() && run->LogFile()) {
    fMenus->Open(QUrl::fromLocalFile(PathToQt(*run->LogFile())));
  }
}

void CMainWindow::ShowInformation(const CPackageInformation& information) {
  CPackageTexts texts = fLook->fTexts;
  texts.fInformation = information;
  fInformation->Show(texts);
}

bool CMainWindow::SaveInformation() {
  try {
    NSTambraPacking::SaveInformation(PathFromQt(fInput->Folder()), fInformation->Wanted());
  } catch (...) {
    ShowFailure(std::current_exception());
    return false;
  }
  CPackageTexts texts = fLook->fTexts;
  texts.fInformation = fInformation->Wanted();
  fInformation->Show(texts);
  fInformation->Revert();
  fWatch.LookAgain();
  return true;
}

bool CMainWindow::LeaveInformation() {
  if (!fInformation->IsEdited()) return true;
  const int answer =
      ShowAlertDialog(fTexts, kAlertSaveInformation, {FromQt(fInput->Folder())}, this);
  if (answer == kLastButton) return SaveInformation();
  if (answer != kButtonBefore) return false;
  fInformation->Revert();
  return true;
}

void CMainWindow::TakeSplash(const QString& path) {
  if (fInput->Folder().isEmpty() || IsPacking()) return;
  fPicture.Start(
      [this, path](const CTaskLink& link) {
        link.Post([this, path, picture = ReadPicture(path)] { OfferSplash(path, picture); });
      },
      [this](const std::exception_ptr& failure) {
        if (failure) ShowFailure(failure);
      });
}

void CMainWindow::OfferSplash(const QString& path, const CSplashPicture& picture) {
  if (picture.fImage.isNull()) {
    ShowAlertDialog(fTexts, kAlertNoPicture, {FromQt(QFileInfo(path).fileName())}, this);
    return;
  }
  if (!AskForSplash(picture)) return;
  try {
    fInformation->Splash().Show(SaveSplash(fInput->Folder(), picture));
  } catch (...) {
    ShowFailure(std::current_exception());
  }
  fWatch.LookAgain();
}

bool CMainWindow::AskForSplash(const CSplashPicture& picture) {
  const QFileInfo target(SplashPath(fInput->Folder()));
  const std::u16string name = FromQt(target.fileName());
  if (picture.HasSplashSize()) {
    return !target.exists() ||
           ShowAlertDialog(fTexts, kAlertReplaceSplash, {name}, this) == kLastButton;
  }
  const std::u16string edge = Number(kSplashEdge);
  return ShowAlertDialog(
             fTexts, kAlertScaleSplash,
             {Number(picture.fSize.width()), Number(picture.fSize.height()), edge, edge, name},
             this) == kLastButton;
}

void CMainWindow::ShowFailure(const std::exception_ptr& failure) {
  if (const auto choice = ChooseAlert(failure, ESituation::kGeneral, {})) {
    ShowAlertDialog(fTexts, choice->fNumber, choice->fArguments, this);
  }
}

void CMainWindow::UpdateState() {
  const bool isReady = !fInput->Folder().isEmpty() && !fOutput->Folder().isEmpty() && !IsPacking();
  Command(kCommandCreate)->setEnabled(isReady);
  Command(kCommandSaveInformation)->setEnabled(fInformation->IsEdited());
  // What has not been read would be saved as empty.
  fInformation->setEnabled(fIsListed && !IsPacking());
  fFoot->Show(StateText(), Text(kTextOutputName, {FromQt(OutputName())}), fLastRun);
}

void CMainWindow::CheckOutput() {
  fOutputFault.clear();
  fOutputCheck.Stop();
  if (fInput->Folder().isEmpty() || fOutput->Folder().isEmpty()) return UpdateState();
  const auto check = [input = fInput->Folder(), output = fOutput->Folder()](const CTaskLink&) {
    CheckOutputFolder(PathFromQt(input), PathFromQt(output));
  };
  fOutputCheck.Start(check, [this](const std::exception_ptr& failure) {
    try {
      if (failure) std::rethrow_exception(failure);
    } catch (const NSMordel::XCreate&) {
      const auto choice = ChooseAlert(failure, ESituation::kGeneral, {});
      fOutputFault = ShownText(fTexts.Alert(choice->fNumber, choice->fArguments).fMessage);
    } catch (const NSMordel::CExceptionBodyMixin&) {  // told by the run
    }
    UpdateState();
  });
  UpdateState();
}

QString CMainWindow::StateText() const {
  if (fInput->Folder().isEmpty()) return Text(kTextNoInput);
  if (!fIsListed && !fLook->fIsChecked) return Text(kTextLooking);
  if (!fLook->fIsChecked) return Text(kTextChecking, {Number(static_cast<qint64>(fLook->fCount))});
  const auto problems = std::count_if(
      fLook->fFindings.begin(), fLook->fFindings.end(),
      [](const CFolderFinding& finding) { return finding.fKind == EFinding::kProblem; });
  if (problems > 0) return Text(kTextNotReady, {Number(problems)});
  if (fOutput->Folder().isEmpty()) return Text(kTextNoOutput);
  if (fOutputCheck.IsRunning()) return Text(kTextLooking);
  if (!fOutputFault.isEmpty()) return fOutputFault;
  return Text(kTextReady,
              {Number(static_cast<qint64>(fLook->fPackable)), FromQt(SizeText(fLook->fSize))});
}

QString CMainWindow::OutputName() const {
  try {
    return ToQt(fInformation->Wanted().OutputFileName());
  } catch (const NSMordel::XFormatViolation&) {  // told by the check
    return ToQt(CPackageInformation().OutputFileName());
  }
}

QString CMainWindow::Text(CStringNumber number,
                          const std::vector<std::u16string>& arguments) const {
  return ToQt(fTexts.Text(number, arguments));
}

void CMainWindow::closeEvent(QCloseEvent* event) {
  if (IsPacking()) {
    event->ignore();
    fProgress->reject();
    return;
  }
  if (!LeaveInformation()) {
    event->ignore();
    return;
  }
  SaveState();
  QMainWindow::closeEvent(event);
}

void CMainWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange && isActiveWindow()) fWatch.LookAgain();
  QMainWindow::changeEvent(event);
}

void CMainWindow::dragEnterEvent(QDragEnterEvent* event) {
  const QString path = DraggedPath(*event->mimeData());
  if (QFileInfo(path).isDir() || IsPackageFile(path)) event->acceptProposedAction();
}

void CMainWindow::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  Open(DraggedPath(*event->mimeData()));
}

}  // namespace NSTambraGui
