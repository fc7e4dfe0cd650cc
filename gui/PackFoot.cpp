#include "gui/PackFoot.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace NSTambraGui {

CPackFoot::CPackFoot(QWidget* parent)
    : QWidget(parent),
      fState(new QLabel),
      fOutputName(new CElidedLabel(1)),
      fLastRun(new CElidedLabel(1)),
      fCreateTambraButton(new QPushButton) {
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  fState->setTextFormat(Qt::PlainText);
  fState->setWordWrap(true);
  QFont bold = fState->font();
  bold.setBold(true);
  fState->setFont(bold);
  auto* const column = new QVBoxLayout;
  column->addStretch();
  for (QLabel* const label : std::initializer_list<QLabel*>{fState, fOutputName, fLastRun}) {
    column->addWidget(label);
  }
  column->addStretch();
  fCreateTambraButton->setDefault(true);
  fCreateTambraButton->setMinimumHeight(fCreateTambraButton->sizeHint().height() * 3 / 2);
  row->addLayout(column, 1);
  row->addWidget(fCreateTambraButton);
}

void CPackFoot::SetCommand(QAction& create) {
  fCreateTambraButton->setText(create.text());
  fCreateTambraButton->setMinimumWidth(fCreateTambraButton->sizeHint().width() + 24);
  connect(fCreateTambraButton, &QPushButton::clicked, &create, &QAction::trigger);
  connect(&create, &QAction::enabledChanged, fCreateTambraButton, &QPushButton::setEnabled);
  fCreateTambraButton->setEnabled(create.isEnabled());
}

void CPackFoot::Show(const QString& state, const QString& outputName, const QString& lastRun) {
  fState->setText(state);
  fOutputName->SetWholeText(outputName);
  fLastRun->SetWholeText(lastRun);
  fLastRun->setVisible(!lastRun.isEmpty());
}

}  // namespace NSTambraGui
