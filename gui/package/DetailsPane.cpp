#include "gui/package/DetailsPane.h"

#include <QHeaderView>
#include <QLocale>
#include <QVBoxLayout>
#include <chrono>

#include "app/FailureDetail.h"
#include "app/FileTypeNames.h"
#include "app/PackageTextNumbers.h"
#include "app/PrintableText.h"
#include "gui/QtText.h"

namespace NSTambraGui {

namespace {

using NSTambraPacking::CEntryDetails;
using NSTambraPacking::CSampleExtent;

/// How often a waveform grows while it is decoded.
constexpr std::chrono::milliseconds kWaveformPeriod(40);
constexpr int kMostPictureEdge = 1024;  // pixels that are kept of a picture

QImage ImageOf(const NSTambraPacking::CPixels& pixels) {
  const auto width = static_cast<int>(pixels.fSize.fWidth);
  const auto height = static_cast<int>(pixels.fSize.fHeight);
  const QImage image(pixels.fRGB.data(), width, height, qsizetype{3} * width,
                     QImage::Format_RGB888);
  if (std::max(width, height) <= kMostPictureEdge) return image.copy();
  return image.scaled(kMostPictureEdge, kMostPictureEdge, Qt::KeepAspectRatio,
                      Qt::SmoothTransformation);
}

/// Decodes a sample and hands its waveform out, some of it at a time.
void DecodeWaveform(const NSTambraPacking::CPackageEntry& entry, const CTaskLink& link,
                    CWaveformView* view) {
  using Clock = std::chrono::steady_clock;
  NSTambraPacking::CWaveformSummary summary(entry.Data());
  std::vector<CSampleExtent> extents;
  Clock::time_point shown = Clock::now();
  while (!summary.IsAtEnd()) {
    link.CheckStop();
    const std::vector<CSampleExtent> next = summary.DecodeNext();
    extents.insert(extents.end(), next.begin(), next.end());
    if (!summary.IsAtEnd() && Clock::now() - shown < kWaveformPeriod) continue;
    shown = Clock::now();
    link.Post([view, count = summary.StretchCount(), extents] { view->Add(count, extents); });
    extents.clear();
  }
}

QLabel* NewLabel(QWidget* parent) {
  auto* const label = new QLabel(parent);
  // Whatever a package says is never taken for anything but text.
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  return label;
}

}  // namespace

CDetailsPane::CDetailsPane(const NSTambraPacking::CTextResources& texts, QWidget* parent)
    : QScrollArea(parent), fTexts(texts), fTask(this) {
  setAccessibleName(ToQt(fTexts.Text(NSTambraPacking::kDetailsOfEntry)));
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setMinimumWidth(30 * fontMetrics().averageCharWidth());
  auto* const content = new QWidget(this);
  auto* const layout = new QVBoxLayout(content);
  fTitle = NewLabel(content);
  QFont font = fTitle->font();
  font.setBold(true);
  font.setPointSizeF(font.pointSizeF() * 1.15);
  fTitle->setFont(font);
  fWaveform = new CWaveformView(fTexts, content);
  fPlayer = new CSamplePlayer(fTexts, content);
  fPicture = new CPictureView(content);
  fPicture->setAccessibleName(ToQt(fTexts.Text(NSTambraPacking::kPictureName)));
  fFault = NewLabel(content);
  fLines = new QFormLayout;
  fLines->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  fItemsTitle = NewLabel(content);
  fItemModel = new CDetailItemModel(fTexts, this);
  fItems = new QTreeView(content);
  fItems->setModel(fItemModel);
  fItems->setRootIsDecorated(false);
  fItems->setUniformRowHeights(true);
  fItems->setAlternatingRowColors(true);
  fItems->setHeaderHidden(true);
  fItems->setTextElideMode(Qt::ElideMiddle);
  fItems->setMinimumHeight(120);
  fItemsTitle->setBuddy(fItems);
  for (QWidget* const widget :
       std::initializer_list<QWidget*>{fTitle, fWaveform, fPlayer, fPicture, fFault}) {
    layout->addWidget(widget);
  }
  layout->addLayout(fLines);
  layout->addWidget(fItemsTitle);
  layout->addWidget(fItems, 1);
  layout->addStretch();
  setWidget(content);
  connect(fItems, &QTreeView::clicked, this, &CDetailsPane::Follow);
  connect(fItems, &QTreeView::activated, this, &CDetailsPane::Follow);
  Clear({});
}

void CDetailsPane::Clear(const QString& title) {
  fTask.Stop();
  fPlayer->SetSample(nullptr);
  fTitle->setText(title);
  for (QWidget* const widget :
       std::initializer_list<QWidget*>{fWaveform, fPicture, fFault, fItemsTitle, fItems}) {
    widget->hide();
  }
  while (fLines->rowCount() > 0) fLines->removeRow(0);
}

void CDetailsPane::Show(std::shared_ptr<const CPackageListing> listing, Node node) {
  Clear(node == NSTambraPacking::CEntryTree::kRoot
            ? ShownText(listing->fContents->Header().fTambraName)
            : listing->fNames[node]);
  const bool isPackage = node == NSTambraPacking::CEntryTree::kRoot;
  if (!isPackage && listing->IsFolder(node)) return ShowFolder(*listing, node);
  const auto work = [this, listing, node, isPackage](const CTaskLink& link) {
    const NSTambraPacking::CPackageContents& package = *listing->fContents;
    CEntryDetails details = isPackage ? DescribePackage(fTexts, package)
                                      : DescribeEntry(fTexts, package, *package.EntryAt(node),
                                                      [&link] { return link.StopRequested(); });
    const QImage picture = details.fPicture ? ImageOf(*details.fPicture) : QImage();
    details.fPicture.reset();
    const bool isSample = details.fSample.has_value();
    link.Post([this, listing, node, details = std::move(details), picture] {
      if (details.fSample) fPlayer->SetSample(listing->fContents->EntryAt(node)->Data());
      ShowDetails(details, picture);
    });
    if (isSample) DecodeWaveform(*package.EntryAt(node), link, fWaveform);
  };
  fTask.Start(work, [this](const std::exception_ptr& failure) {
    if (failure != nullptr) ShowFailure(failure);
  });
}

void CDetailsPane::ShowFolder(const CPackageListing& listing, Node node) {
  const auto entries = listing.fContents->EntriesBelow({node});
  std::uint64_t packed = 0;
  for (const auto& entry : entries) packed += entry->Data()->Size();
  AddLine(ToQt(fTexts.Text(NSTambraPacking::kInfoFiles)), QLocale().toString(entries.size()));
  AddLine(ToQt(fTexts.Text(NSTambraPacking::kColumnPacked)), SizeText(packed));
}

void CDetailsPane::ShowDetails(CEntryDetails details, const QImage& picture) {
  if (details.fSample) {
    fWaveform->Begin(*details.fSample);
    fWaveform->show();
  }
  fPicture->setVisible(!picture.isNull());
  fPicture->SetImage(picture);
  for (const NSTambraPacking::CDetailLine& line : details.fLines) {
    if (!line.fValue.empty()) AddLine(ToQt(line.fLabel), ShownText(line.fValue));
  }
  if (!details.fFault.empty()) ShowFault(ShownText(details.fFault));
  fItemsTitle->setText(ToQt(details.fItemsTitle));
  fItemsTitle->setVisible(!details.fItemsTitle.empty());
  fItems->setAccessibleName(fItemsTitle->text());
  fItems->setVisible(!details.fItems.empty());
  fItemModel->SetItems(std::move(details.fItems));
  if (fItemModel->HasPlaces()) fItems->setColumnWidth(0, fItems->viewport()->width() / 2);
}

void CDetailsPane::AddLine(const QString& label, const QString& value) {
  QLabel* const field = NewLabel(widget());
  field->setText(value);
  field->setAccessibleName(label + ": " + value);
  auto* const name = new QLabel(label + QStringLiteral(":"));
  name->setAlignment(Qt::AlignTop);  // in line with the first of several lines
  fLines->addRow(name, field);
}

void CDetailsPane::ShowFault(const QString& text) {
  fFault->setText(QStringLiteral("⚠ ") + text);
  fFault->show();
}

void CDetailsPane::ShowFailure(const std::exception_ptr& failure) {
  ShowFault(ToQt(
      fTexts.Text(NSTambraPacking::kEntryDamaged, {AlertOfFailure(fTexts, failure, {}).fMessage})));
}

void CDetailsPane::Follow(const QModelIndex& index) {
  const std::u16string& target = fItemModel->TargetOf(index);
  if (!target.empty()) emit Followed(ToQt(target));
}

}  // namespace NSTambraGui
