#include "gui/package/ResultPane.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QResizeEvent>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/PackageTextNumbers.h"
#include "gui/QtText.h"

namespace NSTambraGui {

namespace {

constexpr int kPathRole = Qt::UserRole;

}  // namespace

CResultPane::CResultPane(const NSTambraPacking::CTextResources& texts, QWidget* parent)
    : QWidget(parent),
      fHeading(new QLabel(this)),
      fList(new QTreeView(this)),
      fModel(new QStandardItemModel(0, 3, this)) {
  using namespace NSTambraPacking;
  fHeading->setTextFormat(Qt::PlainText);
  fHeading->setWordWrap(true);
  auto* const close = new QToolButton(this);
  close->setAutoRaise(true);
  close->setText(QStringLiteral("×"));  // in the palette's colour, which an icon is not
  close->setAccessibleName(ToQt(texts.Text(kCloseResults)));
  close->setToolTip(close->accessibleName());
  connect(close, &QToolButton::clicked, this, &QWidget::hide);
  fModel->setHorizontalHeaderLabels({ToQt(texts.Text(kColumnWhat)), ToQt(texts.Text(kInfoName)),
                                     ToQt(texts.Text(kColumnDetail))});
  fList->setModel(fModel);
  fList->setSelectionMode(QAbstractItemView::ExtendedSelection);  // to be copied
  fList->setAccessibleName(ToQt(texts.Text(kResultsList)));
  fList->setMinimumHeight(8 * fontMetrics().height());
  fList->setRootIsDecorated(false);
  fList->setAlternatingRowColors(true);
  fList->setEditTriggers(QAbstractItemView::NoEditTriggers);
  fList->setColumnWidth(0, 28 * fontMetrics().averageCharWidth());
  fList->setColumnWidth(1, 320);
  auto* const bar = new QHBoxLayout;
  bar->addWidget(fHeading, 1);
  bar->addWidget(close, 0, Qt::AlignTop);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addLayout(bar);
  layout->addWidget(fList, 1);
  connect(fList, &QTreeView::clicked, this, &CResultPane::Follow);
  connect(fList, &QTreeView::activated, this, &CResultPane::Follow);
  hide();
}

void CResultPane::Begin(const QString& heading) {
  fModel->removeRows(0, fModel->rowCount());
  // Without lines it takes no more room than its heading.
  fList->hide();
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
  fHeading->setText(heading);
  show();
}

void CResultPane::Add(const std::vector<CResultLine>& lines) {
  if (!lines.empty()) {
    fList->show();
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
  }
  for (const CResultLine& line : lines) {
    QList<QStandardItem*> row;
    for (const QString& text : {line.fWhat, line.fName, line.fDetail}) {
      row.append(new QStandardItem(text));
      row.back()->setToolTip(ToolTipOf(text));
    }
    row.front()->setData(line.fPath, kPathRole);
    fModel->appendRow(row);
  }
}

QSize CResultPane::minimumSizeHint() const {
  QSize hint = QWidget::minimumSizeHint();
  hint.setHeight(qMax(hint.height(), layout()->minimumHeightForWidth(width())));
  return hint;
}

QSize CResultPane::sizeHint() const {
  return fList->isHidden() ? minimumSizeHint() : QWidget::sizeHint();
}

void CResultPane::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (event->size().width() != event->oldSize().width()) updateGeometry();
}

void CResultPane::Follow(const QModelIndex& index) {
  const QString path = index.siblingAtColumn(0).data(kPathRole).toString();
  if (!path.isEmpty()) emit Followed(path);
}

}  // namespace NSTambraGui
