#include "gui/package/PackageWindow.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QMimeData>
#include <QSettings>
#include <QShortcut>
#include <QStatusBar>
#include <QVBoxLayout>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/ExtractedSize.h"
#include "app/FailureDetail.h"
#include "app/PackageTextNumbers.h"
#include "app/PrintableText.h"
#include "gui/FolderChooser.h"
#include "gui/QtText.h"
#include "gui/WindowState.h"
#include "gui/WindowTexts.h"

namespace NSTambraGui {

namespace {

using namespace NSTambraPacking;

enum EPage { kOpeningPage, kPackagePage, kFaultPage };

// Under which the settings stand.
constexpr char kPlace[] = "PackageWindow";
constexpr char kColumnsKey[] = "PackageWindow/columns";

constexpr int kProgressEnd = 1000;
constexpr CPackageContents::Node kSizesAtOnce = 1000;

template <class Kind>
bool IsA(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const Kind&) {
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace

CPackageWindow::CPackageWindow(const CTextResources& texts, CPackageDialogs dialogs)
    : fTexts(texts),
      fDialogs(std::move(dialogs)),
      fModel(new CPackageModel(fTexts, this)),
      fOpening(nullptr),
      fJob(nullptr) {
  BuildPages();
  BuildStatus();
  BuildMenus();
  RestoreState();
}

QString CPackageWindow::Text(CStringNumber number) const { return ToQt(fTexts.Text(number)); }

void CPackageWindow::BuildPages() {
  fPages = new QStackedWidget(this);
  fOpeningLabel = new QLabel(fPages);
  fOpeningLabel->setTextFormat(Qt::PlainText);
  fOpeningLabel->setAlignment(Qt::AlignCenter);
  fFault = new CFaultPage(fTexts, fPages);
  connect(fFault, &CFaultPage::Closed, this, &QWidget::close);
  auto* const package = new QWidget(fPages);
  auto* const layout = new QVBoxLayout(package);
  layout->addWidget(BuildBar());
  layout->addWidget(BuildPanes(), 1);
  fPages->insertWidget(kOpeningPage, fOpeningLabel);
  fPages->insertWidget(kPackagePage, package);
  fPages->insertWidget(kFaultPage, fFault);
  setCentralWidget(fPages);
}

QWidget* CPackageWindow::BuildBar() {
  auto* const bar = new QWidget(this);
  fFilter = new QLineEdit(bar);
  fFilter->setPlaceholderText(Text(kPackageFilter));
  fFilter->setAccessibleName(Text(kPackageFilter));
  fFilter->setClearButtonEnabled(true);
  fFilter->setMinimumWidth(16 * fontMetrics().averageCharWidth());
  fTypes = new QComboBox(bar);
  fTypes->setAccessibleName(Text(kFilterByType));
  fTypes->setToolTip(Text(kFilterByType));
  fTypes->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  fTypes->setMinimumContentsLength(14);
  const auto button = [&](CStringNumber label, CStringNumber hint) {
    auto* const made = new QPushButton(Text(label), bar);
    made->setToolTip(Text(hint));
    made->setAccessibleDescription(Text(hint));
    return made;
  };
  fExtract = button(kExtractAllCommand, kExtractHint);
  fVerify = button(kVerifyCommand, kVerifyHint);
  fCompare = button(kCompareCommand, kCompareHint);
  auto* const layout = new QHBoxLayout(bar);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(fFilter, 1);
  layout->addWidget(fTypes);
  layout->addSpacing(16);
  for (QPushButton* const command : {fExtract, fVerify, fCompare}) layout->addWidget(command);
  connect(fFilter, &QLineEdit::textChanged, this, &CPackageWindow::ApplyFilter);
  connect(fFilter, &QLineEdit::returnPressed, this, [this] { fTree->setFocus(); });
  connect(fTypes, &QComboBox::currentIndexChanged, this, &CPackageWindow::ApplyFilter);
  connect(fExtract, &QPushButton::clicked, this, &CPackageWindow::Extract);
  connect(fVerify, &QPushButton::clicked, this, &CPackageWindow::Verify);
  connect(fCompare, &QPushButton::clicked, this, &CPackageWindow::Compare);
  return bar;
}

QWidget* CPackageWindow::BuildPanes() {
  fTree = new CEntryView(*fModel, this);
  fTree->setAccessibleName(Text(kEntriesOfPackage));
  connect(fTree->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &CPackageWindow::ShowChosen);
  fDetails = new CDetailsPane(fTexts, this);
  fResults = new CResultPane(fTexts, this);
  fColumns = new QSplitter(Qt::Horizontal, this);
  fColumns->setChildrenCollapsible(false);
  fColumns->addWidget(fTree);
  fColumns->addWidget(fDetails);
  fColumns->setStretchFactor(0, 1);
  fColumns->setStretchFactor(1, 0);
  fColumns->setSizes({620, 400});
  auto* const rows = new QSplitter(Qt::Vertical, this);
  rows->setChildrenCollapsible(false);
  rows->addWidget(fColumns);
  rows->addWidget(fResults);
  rows->setStretchFactor(0, 3);
  rows->setStretchFactor(1, 1);
  connect(fDetails, &CDetailsPane::Followed, this, &CPackageWindow::GoTo);
  connect(fResults, &CResultPane::Followed, this, &CPackageWindow::GoTo);
  return rows;
}

void CPackageWindow::BuildStatus() {
  fCounts = new QLabel(this);
  fItem = new QLabel(this);
  fItem->setTextFormat(Qt::PlainText);
  fItem->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  fProgress = new QProgressBar(this);
  fProgress->setAccessibleName(Text(kProgressOfTask));
  fProgress->setTextVisible(false);
  fProgress->setMaximumWidth(200);
  fStop = new QPushButton(Text(kStopCommand), this);
  statusBar()->setContentsMargins(7, 0, 7, 3);  // in line with the panes
  statusBar()->addWidget(fCounts);
  statusBar()->addWidget(fItem, 1);
  statusBar()->addPermanentWidget(fProgress);
  statusBar()->addPermanentWidget(fStop);
  fProgress->hide();
  fStop->hide();
  connect(fStop, &QPushButton::clicked, this, &CPackageWindow::StopJob);
}

void CPackageWindow::BuildMenus() {
  QStringList buttons;
  for (const CStringNumber number : {kExtractCommand, kExtractAllCommand, kVerifyCommand,
                                     kCompareCommand, kStopCommand, kPlayCommand}) {
    buttons += Text(number);
  }
  fMenus =
      new CWindowMenus(fTexts, *this, {kMenuPackageFile, kMenuEdit, kMenuPackageTambra, kMenuHelp},
                       MnemonicsOf(buttons), fDialogs.fOpenAddress);
  fMenus->Do(kCommandOpen, [this] { OpenOther(); });
  fMenus->Do(kCommandClose, [this] { close(); });
  fMenus->Do(kCommandExtract, [this] { Extract(); });
  fMenus->Do(kCommandVerify, [this] { Verify(); });
  fMenus->Do(kCommandCompare, [this] { Compare(); });
  fMenus->Do(kCommandFind, [this] {
    fFilter->setFocus();
    fFilter->selectAll();
  });
  EnableJobs(false);
  auto* const escape = new QShortcut(Qt::Key_Escape, this);
  connect(escape, &QShortcut::activated, this, &CPackageWindow::Escape);
  setAcceptDrops(true);
}

/// Only with a package, and one at a time.
void CPackageWindow::EnableJobs(bool isEnabled) {
  for (QPushButton* const button : {fExtract, fVerify, fCompare}) button->setEnabled(isEnabled);
  for (const int command : {kCommandExtract, kCommandVerify, kCommandCompare}) {
    fMenus->Command(command)->setEnabled(isEnabled);
  }
}

void CPackageWindow::OpenOther() {
  const QString path = fDialogs.fChooseFile(this, Text(kTextOpenTambra), Text(kPackageFiles));
  if (!path.isEmpty()) OpenPackageWindow(fTexts, path);
}

void CPackageWindow::Escape() {
  if (fResults->isVisible()) {
    fResults->hide();
  } else if (!fFilter->text().isEmpty() || fTypes->currentIndex() > 0) {
    fFilter->clear();
    fTypes->setCurrentIndex(0);
  }
  fTree->setFocus();
}

void CPackageWindow::RestoreState() {
  RestorePlace(*this, kPlace, {1040, 680});
  fColumns->restoreState(QSettings().value(kColumnsKey).toByteArray());
}

void CPackageWindow::closeEvent(QCloseEvent* event) {
  SavePlace(*this, kPlace);
  QSettings().setValue(kColumnsKey, fColumns->saveState());
  fOpening.Stop();
  fJob.Stop();
  QMainWindow::closeEvent(event);
}

void CPackageWindow::Open(const QString& path) {
  fPath = path;
  const std::u16string name = PrintableText(FromQt(QFileInfo(path).fileName()));
  setWindowTitle(ToQt(fTexts.Text(kPackageTitle, {name})));
  fOpeningLabel->setText(ToQt(fTexts.Text(kPackageOpening, {name})));
  fPages->setCurrentIndex(kOpeningPage);
  const auto work = [this, path](const CTaskLink& link) {
    const auto listing = ListPackage(fTexts, PathFromQt(path), [&link] { link.CheckStop(); });
    link.Post([this, listing] { ShowListing(listing); });
    GatherSizes(link, listing);
  };
  fOpening.Start(work, [this](const std::exception_ptr& failure) {
    if (failure != nullptr) ShowOpeningFault(failure);
  });
}

void CPackageWindow::GatherSizes(const CTaskLink& link,
                                 const std::shared_ptr<const CPackageListing>& listing) {
  const Node count = listing->fContents->Tree().NodeCount();
  for (Node first = 0; first < count; first += kSizesAtOnce) {
    std::vector<std::optional<std::uint64_t>> sizes;
    for (Node node = first; node < std::min(count, first + kSizesAtOnce); ++node) {
      link.CheckStop();
      sizes.push_back(listing->IsFolder(node) ? std::nullopt
                                              : ExtractedSize(*listing->fContents->EntryAt(node)));
    }
    link.Post([this, first, sizes = std::move(sizes)] { fModel->SetSizes(first, sizes); });
  }
}

void CPackageWindow::ShowListing(std::shared_ptr<const CPackageListing> listing) {
  fListing = std::move(listing);
  fModel->SetListing(fListing);
  fTypes->clear();
  fTypes->addItem(Text(kPackageAllTypes));
  for (const auto& [code, name] : fListing->fTypeNames) fTypes->addItem(name, code);
  ExpandFolders(false);
  fPages->setCurrentIndex(kPackagePage);
  fTree->setFocus();
  EnableJobs(true);
  ShowChosen();
}

void CPackageWindow::ShowOpeningFault(const std::exception_ptr& failure) {
  fFault->Show(AlertOfFailure(fTexts, failure, fPath.toStdString()));
  fPages->setCurrentIndex(kFaultPage);
}

void CPackageWindow::ApplyFilter() {
  if (fListing == nullptr) return;
  const Node current = fModel->NodeOf(fTree->currentIndex());
  const QVariant type = fTypes->currentData();
  fModel->SetFilter(fFilter->text(), type.isValid() ? std::optional(type.toInt()) : std::nullopt);
  const bool isFiltered = !fFilter->text().isEmpty() || type.isValid();
  ExpandFolders(isFiltered);
  const QModelIndex index = fModel->IndexOf(current);
  fTree->setCurrentIndex(index);
  if (index.isValid()) fTree->scrollTo(index);
  ShowChosen();
}

/// All of them, or the outermost. Behind a reset of the model, when the tree only notes which are
/// open and lays them out together: expandAll would note every file, too.
void CPackageWindow::ExpandFolders(bool all) {
  for (const QModelIndex& folder : fModel->ShownFolders()) {
    if (all || !folder.parent().isValid()) fTree->expand(folder);
  }
}

void CPackageWindow::ShowChosen() {
  if (fListing == nullptr) return;
  const std::vector<Node> nodes = fTree->ChosenNodes();
  fDetails->Show(fListing, nodes.size() == 1 ? nodes.front() : CEntryTree::kRoot);
  fExtract->setText(Text(nodes.empty() ? kExtractAllCommand : kExtractCommand));
  ShowCounts(nodes);
}

void CPackageWindow::ShowCounts(const std::vector<Node>& nodes) {
  const CPackageEntries& all = fListing->fContents->Entries();
  const auto number = [](std::size_t count) { return FromQt(QLocale().toString(count)); };
  const auto packed = [](const CPackageEntries& entries) {
    std::uint64_t bytes = 0;
    for (const auto& entry : entries) bytes += entry->Data()->Size();
    return FromQt(SizeText(bytes));
  };
  if (!nodes.empty()) {
    const CPackageEntries chosen = fListing->fContents->EntriesBelow(nodes);
    fCounts->setText(ToQt(fTexts.Text(kPackageChosen, {number(chosen.size()), packed(chosen)})));
  } else if (fModel->ShownFileCount() < all.size()) {
    fCounts->setText(
        ToQt(fTexts.Text(kPackageShown, {number(fModel->ShownFileCount()), number(all.size())})));
  } else {
    fCounts->setText(ToQt(fTexts.Text(kPackageCounts, {number(all.size()), packed(all)})));
  }
}

void CPackageWindow::GoTo(const QString& path) {
  const auto node = fListing->fContents->Tree().FindPath(SplitEntryPath(FromQt(path)));
  if (!node) return;
  if (!fModel->IndexOf(*node).isValid()) {
    fFilter->clear();
    fTypes->setCurrentIndex(0);
  }
  const QModelIndex index = fModel->IndexOf(*node);
  fTree->setCurrentIndex(index);
  fTree->scrollTo(index);
  fTree->setFocus();
}

void CPackageWindow::Extract() {
  const QString folder = fDialogs.fChooseFolder(this, Text(kChooseFolder));
  if (folder.isEmpty()) return;
  std::vector<Node> nodes = fTree->ChosenNodes();
  if (nodes.empty()) nodes.push_back(CEntryTree::kRoot);
  ExtractInto(folder, fListing->fContents->EntriesBelow(nodes),
              CPackageExtractor::EExisting::kRefuse);
}

void CPackageWindow::ExtractInto(const QString& folder, CPackageEntries entries,
                                 CPackageExtractor::EExisting existing) {
  const bool mayReplace = existing == CPackageExtractor::EExisting::kReplace;
  Run(
      kExtracting,
      [folder, entries, existing](const CJobContext& context) {
        return ExtractEntries(context, entries, PathFromQt(folder), existing);
      },
      [this, folder, entries, mayReplace](const std::exception_ptr& failure) {
        if (mayReplace || !IsA<NSMordel::XAlreadyExists>(failure)) return false;
        const CAlertText alert = fTexts.Alert(kAlertReplaceFiles, {FromQt(folder)});
        if (fDialogs.fShowAlert(this, alert) != kLastButton) return true;
        ExtractInto(folder, entries, CPackageExtractor::EExisting::kReplace);
        return true;
      });
}

void CPackageWindow::Verify() {
  Run(kVerifyingPackage, [](const CJobContext& context) { return VerifyPackage(context); });
}

void CPackageWindow::Compare() {
  const QString other = fDialogs.fChooseFile(this, Text(kChoosePackage), Text(kPackageFiles));
  if (other.isEmpty()) return;
  const std::u16string first = FromQt(QFileInfo(fPath).fileName());
  const std::u16string second = FromQt(QFileInfo(other).fileName());
  Run(kComparingPackages, [=](const CJobContext& context) {
    const QString found = ComparePackageWith(context, PathFromQt(other));
    return ShownText(context.fTexts.Text(kComparedTitle, {first, second, FromQt(found)}));
  });
}

void CPackageWindow::Run(CStringNumber title, Job job, Failed failed) {
  fResults->Begin(Text(title));
  fProgress->setRange(0, kProgressEnd);
  fProgress->setValue(0);
  fProgress->show();
  fStop->show();
  EnableJobs(false);
  const auto work = [this, listing = fListing, job = std::move(job)](const CTaskLink& link) {
    const CJobView view{[&](int thousandths, const QString& item) {
                          link.Post([this, thousandths, item] {
                            fProgress->setRange(0, thousandths < 0 ? 0 : kProgressEnd);
                            fProgress->setValue(thousandths);
                            fItem->setText(item);
                          });
                        },
                        [&](const std::vector<CResultLine>& lines) {
                          link.Post([this, lines] { fResults->Add(lines); });
                        }};
    const QString heading = job({fTexts, *listing->fContents, link, view});
    link.Post([this, heading] { fResults->SetHeading(heading); });
  };
  fJob.Start(work, [this, failed = std::move(failed)](const std::exception_ptr& failure) {
    EndJob(fResults->Heading());
    if (failure == nullptr) return fDialogs.fTellEnd(*this, fResults->Heading());
    fResults->hide();
    if (failed && failed(failure)) return;
    const CAlertText alert = AlertOfFailure(fTexts, failure, {});
    fDialogs.fTellEnd(*this, ToQt(alert.fTitle.empty() ? alert.fMessage : alert.fTitle));
    fDialogs.fShowAlert(this, alert);
  });
}

void CPackageWindow::StopJob() {
  fJob.Stop();
  EndJob(Text(kStopped));
}

void CPackageWindow::EndJob(const QString& heading) {
  fResults->SetHeading(heading);
  fProgress->hide();
  fStop->hide();
  fItem->clear();
  EnableJobs(true);
}

bool IsPackageFile(const QString& path) {
  return path.endsWith(".tmb", Qt::CaseInsensitive) && QFileInfo(path).isFile();
}

void CPackageWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (IsPackageFile(DraggedPath(*event->mimeData()))) event->acceptProposedAction();
}

void CPackageWindow::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  OpenPackageWindow(fTexts, DraggedPath(*event->mimeData()));
}

CPackageWindow* OpenPackageWindow(const CTextResources& texts, const QString& path) {
  auto* const window = new CPackageWindow(texts, CPackageDialogs::OfTheDesktop());
  window->setAttribute(Qt::WA_DeleteOnClose);
  window->Open(path);
  window->show();
  return window;
}

}  // namespace NSTambraGui
