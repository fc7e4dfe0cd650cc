#include "gui/ContentsPanel.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLocale>
#include <QSplitter>
#include <QVBoxLayout>

#include "gui/QtText.h"
#include "gui/WindowTexts.h"
#include "gui/package/PackageListing.h"

namespace NSTambraGui {

namespace {

using namespace NSTambraPacking;

QGroupBox* Group(const QString& title, QWidget* content) {
  auto* const group = new QGroupBox(title);
  auto* const column = new QVBoxLayout(group);
  column->addWidget(content);
  return group;
}

}  // namespace

CContentsPanel::CContentsPanel(const CTextResources& texts, QWidget* parent)
    : QWidget(parent),
      fTexts(texts),
      fTypes(new QTreeWidget),
      fFindings(new QTreeView),
      fModel(new CFindingsModel(texts, this)),
      fDetail(new QPlainTextEdit) {
  BuildTypes();
  auto* const splitter = new QSplitter;
  splitter->addWidget(Group(Text(kTextContents), fTypes));
  splitter->addWidget(Group(Text(kTextFindings), BuildFindings()));
  splitter->setStretchFactor(0, 2);
  splitter->setStretchFactor(1, 3);
  splitter->setChildrenCollapsible(false);
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(splitter);
}

void CContentsPanel::BuildTypes() {
  fTypes->setHeaderLabels({Text(kTextType), Text(kTextFiles), Text(kTextSize)});
  fTypes->setRootIsDecorated(false);
  fTypes->setUniformRowHeights(true);
  fTypes->setAccessibleName(Text(kTextContents));
  fTypes->header()->setStretchLastSection(false);
  fTypes->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  fTypes->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  fTypes->headerItem()->setTextAlignment(1, Qt::AlignRight);
  fTypes->headerItem()->setTextAlignment(2, Qt::AlignRight);
}

QWidget* CContentsPanel::BuildFindings() {
  fFindings->setModel(fModel);
  fFindings->setRootIsDecorated(false);
  fFindings->setUniformRowHeights(true);
  fFindings->setTextElideMode(Qt::ElideMiddle);
  fFindings->setMinimumHeight(fFindings->fontMetrics().lineSpacing() * 5);
  fFindings->setSelectionMode(QAbstractItemView::ExtendedSelection);  // to be copied
  fFindings->setAccessibleName(Text(kTextFindings));
  fFindings->header()->resizeSection(0, fFindings->fontMetrics().averageCharWidth() * 14);
  fFindings->header()->resizeSection(1, fFindings->fontMetrics().averageCharWidth() * 28);
  // What a row has no room for, hints above all.
  fDetail->setReadOnly(true);
  fDetail->setTabChangesFocus(true);
  fDetail->setFrameShape(QFrame::NoFrame);
  fDetail->viewport()->setAutoFillBackground(false);
  fDetail->document()->setDocumentMargin(0);
  fDetail->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  fDetail->setFixedHeight(fDetail->fontMetrics().lineSpacing() * 11 / 2);
  fDetail->setAccessibleName(Text(kTextFinding));
  const auto choose = [this](const QModelIndex& index) {
    fDetail->setPlainText(fModel->Detail(index.row()));
    if (index.isValid()) fChosen = fModel->Finding(index.row());
  };
  connect(fFindings->selectionModel(), &QItemSelectionModel::currentChanged, this, choose);
  connect(fFindings, &QTreeView::clicked, this, choose);  // of what is the current one already
  auto* const box = new QWidget;
  auto* const column = new QVBoxLayout(box);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(fFindings, 1);
  column->addWidget(fDetail);
  return box;
}

void CContentsPanel::Show(const SharedLook& look) {
  fTypes->clear();
  for (const CTypeCount& type : look->fTypes) {
    auto* const item = new QTreeWidgetItem(
        fTypes, {ToQt(type.fName), QLocale().toString(static_cast<qulonglong>(type.fCount)),
                 SizeText(type.fSize)});
    item->setTextAlignment(1, Qt::AlignRight);
    item->setTextAlignment(2, Qt::AlignRight);
  }
  fModel->SetLook(look);
  const CFolderFinding chosen = fChosen;
  const int row = qMax(0, fModel->RowOf(chosen));
  fFindings->setCurrentIndex(fModel->index(row, 0));
  fChosen = chosen;
  fDetail->setPlainText(fModel->Detail(row));
}

QString CContentsPanel::Text(CStringNumber number) const { return ToQt(fTexts.Text(number)); }

}  // namespace NSTambraGui
