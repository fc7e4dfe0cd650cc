#include "gui/package/FaultPage.h"

#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include "gui/QtText.h"

namespace NSTambraGui {

CFaultPage::CFaultPage(const NSTambraPacking::CTextResources& texts, QWidget* parent)
    : QWidget(parent), fTitle(new QLabel(this)), fText(new QLabel(this)) {
  auto* const icon = new QLabel(this);
  icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxCritical).pixmap(48, 48));
  QFont font = fTitle->font();
  font.setBold(true);
  font.setPointSizeF(font.pointSizeF() * 1.25);
  fTitle->setFont(font);
  auto* const close = new QPushButton(ToQt(texts.Text(NSTambraPacking::kCloseItem)), this);
  connect(close, &QPushButton::clicked, this, &CFaultPage::Closed);
  auto* const layout = new QVBoxLayout(this);
  layout->addStretch();
  for (QLabel* const label : {icon, fTitle, fText}) {
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    layout->addWidget(label);
  }
  fText->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  layout->addSpacing(12);
  layout->addWidget(close, 0, Qt::AlignCenter);
  layout->addStretch();
}

void CFaultPage::Show(const NSTambraPacking::CAlertText& alert) {
  fTitle->setText(ToQt(alert.fTitle));
  fText->setText(ToQt(alert.fMessage));
}

}  // namespace NSTambraGui
