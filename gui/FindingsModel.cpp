#include "gui/FindingsModel.h"

#include <QApplication>
#include <QStyle>
#include <algorithm>

#include "app/PrintableText.h"
#include "gui/QtText.h"
#include "gui/WindowTexts.h"
#include "gui/package/PackageListing.h"

namespace NSTambraGui {

namespace {

using namespace NSTambraPacking;

enum EColumn { kKind, kFile, kFinding, kColumns };

QStyle::StandardPixmap IconOf(EFinding kind) {
  if (kind == EFinding::kProblem) return QStyle::SP_MessageBoxCritical;
  return kind == EFinding::kNote ? QStyle::SP_MessageBoxInformation : QStyle::SP_MessageBoxWarning;
}

}  // namespace

CFindingsModel::CFindingsModel(const CTextResources& texts, QObject* parent)
    : QAbstractTableModel(parent), fTexts(texts), fLook(std::make_shared<const CFolderLook>()) {}

void CFindingsModel::SetLook(SharedLook look) {
  beginResetModel();
  fLook = std::move(look);
  endResetModel();
}

const CFolderFinding& CFindingsModel::Finding(int row) const {
  return fLook->fFindings[static_cast<std::size_t>(row)];
}

int CFindingsModel::RowOf(const CFolderFinding& finding) const {
  const auto place = std::ranges::find(fLook->fFindings, finding);
  return place == fLook->fFindings.end() ? -1 : static_cast<int>(place - fLook->fFindings.begin());
}

QString CFindingsModel::Detail(int row) const {
  if (row < 0 || row >= rowCount()) return {};
  const CFolderFinding& finding = Finding(row);
  QString text = FileText(finding) + '\n' + ShownText(finding.fText);
  for (const std::u16string& hint : finding.fHints) text += "\n– " + ShownText(hint);
  return text;
}

int CFindingsModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(fLook->fFindings.size());
}

int CFindingsModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : int{kColumns};
}

QVariant CFindingsModel::data(const QModelIndex& index, int role) const {
  const CFolderFinding& finding = Finding(index.row());
  if (role == Qt::DecorationRole && index.column() == kKind) {
    return QApplication::style()->standardIcon(IconOf(finding.fKind));
  }
  if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole) {
    return CellText(finding, index.column());
  }
  if (role == Qt::ToolTipRole) return ToolTipOf(CellText(finding, index.column()));
  return {};
}

QString CFindingsModel::CellText(const CFolderFinding& finding, int column) const {
  if (column == kKind) return KindText(finding.fKind);
  if (column == kFile) return FileText(finding);
  QString text = ShownText(finding.fText);
  for (const std::u16string& hint : finding.fHints) text += " – " + ShownText(hint);
  return text.replace('\n', ' ');
}

QString CFindingsModel::FileText(const CFolderFinding& finding) const {
  return ToQt(finding.fFile.empty() ? fTexts.Text(kTextWholeFolder)
                                    : NSTambraPacking::PrintableText(finding.fFile));
}

QString CFindingsModel::KindText(EFinding kind) const {
  return ToQt(fTexts.Text({kTextFirstKind.fTable, kTextFirstKind.fEntry + static_cast<int>(kind)}));
}

QVariant CFindingsModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  if (section == kKind) return QString();
  return ToQt(fTexts.Text(section == kFile ? kTextFile : kTextFinding));
}

}  // namespace NSTambraGui
