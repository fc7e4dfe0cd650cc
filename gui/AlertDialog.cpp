#include "gui/AlertDialog.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QTextEdit>
#include <QtMath>

#include "gui/MenuBuilder.h"
#include "gui/QtText.h"
#include "gui/package/PackageListing.h"

namespace NSTambraGui {

namespace {

using NSTambraPacking::CAlertText;
using NSTambraPacking::EAlertKind;

QStyle::StandardPixmap IconOf(EAlertKind kind) {
  if (kind == EAlertKind::kStop) return QStyle::SP_MessageBoxCritical;
  if (kind == EAlertKind::kWarn) return QStyle::SP_MessageBoxWarning;
  return QStyle::SP_MessageBoxInformation;
}

/// A message may hold a name of any length, or any number of names: what has no room is scrolled.
QWidget* MessageView(const QString& message) {
  constexpr int kMostLines = 16;
  auto* const view = new QTextEdit;
  const int width = view->fontMetrics().averageCharWidth() * 52;
  // Measured before it is the view's, which lays it out anew.
  auto* const text = new QTextDocument(message, view);
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  text->setDefaultTextOption(option);
  text->setDefaultFont(view->font());
  text->setDocumentMargin(0);
  text->setTextWidth(width);
  const int height = qCeil(text->size().height());
  const int most = view->fontMetrics().lineSpacing() * kMostLines;
  view->setDocument(text);
  view->setReadOnly(true);
  view->setTabChangesFocus(true);
  view->setFrameShape(QFrame::NoFrame);
  view->viewport()->setAutoFillBackground(false);
  view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  view->setAccessibleName(message);
  if (height <= most) {
    view->setFocusPolicy(Qt::ClickFocus);
    view->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  }
  view->setFixedSize(width, qMin(height, most));
  return view;
}

}  // namespace

CAlertDialog::CAlertDialog(const CAlertText& alert, std::size_t careful, const QString& sameForAll,
                           QWidget* parent)
    : QDialog(parent), fAnswer(alert.Answer(careful)) {
  setWindowTitle(alert.fTitle.empty() ? QCoreApplication::applicationName() : ToQt(alert.fTitle));
  setAccessibleName(windowTitle());
  const QString message = ShownText(alert.fMessage);
  setAccessibleDescription(message);
  auto* const grid = new QGridLayout(this);
  grid->setSizeConstraint(QLayout::SetFixedSize);
  grid->setSpacing(16);
  if (alert.fKind != EAlertKind::kNone) {
    auto* const icon = new QLabel;
    const int edge = style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    icon->setPixmap(style()->standardIcon(IconOf(alert.fKind)).pixmap(edge));
    grid->addWidget(icon, 0, 0, Qt::AlignTop);
  }
  grid->addWidget(MessageView(message), 0, 1);
  if (!sameForAll.isEmpty()) {
    fSameForAll = new QCheckBox(WithMnemonics({sameForAll}).front());
    grid->addWidget(fSameForAll, 1, 1);
  }
  auto* const buttons = new QHBoxLayout;
  buttons->addStretch();
  QStringList labels;
  for (const std::u16string& label : alert.fButtons) labels += ToQt(label);
  labels = WithMnemonics(labels);
  for (std::size_t index = 0; index < alert.fButtons.size(); ++index) {
    auto* const button = new QPushButton(labels[static_cast<qsizetype>(index)]);
    connect(button, &QPushButton::clicked, this, [this, answer = alert.Answer(index)] {
      fAnswer = answer;
      accept();
    });
    buttons->addWidget(button);
  }
  grid->addLayout(buttons, 2, 0, 1, 2);
  QPushButton* const chosen = findChildren<QPushButton*>()[static_cast<qsizetype>(careful)];
  chosen->setDefault(true);
  chosen->setFocus();
}

std::size_t CarefulButton(NSTambraPacking::CAlertNumber number, const CAlertText& alert) {
  const bool offersLog =
      number == NSTambraPacking::kAlertPackedWithNotes || number == NSTambraPacking::kAlertProblems;
  return offersLog ? alert.fButtons.size() - 1 : 0;
}

int ShowAlertDialog(const NSTambraPacking::CTextResources& texts,
                    NSTambraPacking::CAlertNumber number,
                    const std::vector<std::u16string>& arguments, QWidget* parent) {
  const CAlertText alert = texts.Alert(number, arguments);
  CAlertDialog dialog(alert, CarefulButton(number, alert), {}, parent);
  dialog.exec();
  return dialog.Answer();
}

}  // namespace NSTambraGui
