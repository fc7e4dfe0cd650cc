#include "gui/AboutDialog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/TextNumbers.h"
#include "gui/MenuBuilder.h"
#include "gui/QtText.h"
#include "gui/WindowTexts.h"

namespace NSTambraGui {

CAboutDialog::CAboutDialog(const NSTambraPacking::CTextResources& texts, QMenu* contacts,
                           QWidget* parent)
    : QDialog(parent) {
  const QString name = ToQt(texts.Text(NSTambraPacking::kProgramName));
  setWindowTitle(name);
  auto* const column = new QVBoxLayout(this);
  column->setSizeConstraint(QLayout::SetFixedSize);
  column->setContentsMargins(24, 20, 24, 16);
  column->setSpacing(10);
  auto* const icon = new QLabel;
  icon->setPixmap(QApplication::windowIcon().pixmap(64));
  auto* const title = new QLabel(name);
  QFont large = title->font();
  large.setPointSizeF(large.pointSizeF() * 1.5);
  large.setBold(true);
  title->setFont(large);
  auto* const version =
      new QLabel(ToQt(texts.Text(NSTambraPacking::kProgramVersion, {FromQt(TAMBRA_VERSION)})));
  auto* const what = new QLabel(ToQt(texts.Text(kTextAbout)));
  what->setWordWrap(true);
  for (QLabel* const label : {icon, title, version, what}) {
    label->setAlignment(Qt::AlignHCenter);
    column->addWidget(label);
  }
  contacts->setParent(this, contacts->windowFlags());
  const QStringList labels = WithMnemonics(
      {ToQt(texts.Text(kTextContacts)), ToQt(texts.Text(NSTambraPacking::kCloseItem))});
  auto* const contact = new QPushButton(labels[0]);
  contact->setMenu(contacts);
  auto* const close = new QPushButton(labels[1]);
  close->setDefault(true);
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  auto* const row = new QHBoxLayout;
  row->addWidget(contact);
  row->addStretch();
  row->addWidget(close);
  column->addLayout(row);
}

}  // namespace NSTambraGui
