#include "gui/InformationPanel.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <utility>

#include "gui/MenuBuilder.h"
#include "gui/QtText.h"
#include "gui/WindowTexts.h"

namespace NSTambraGui {

namespace {

using namespace NSTambraPacking;

/// As INFO.TXT has it; a publisher knows the options by these names.
QStringList OptionKeys(const CPackOptions& options) {
  QStringList keys;
  if (!options.fProhibitedDevices.empty()) {
    QStringList devices;
    for (const std::u16string& device : options.fProhibitedDevices) devices += ToQt(device);
    keys += "PROHIBITED_DEVICES: " + devices.join("; ");
  }
  const std::pair<bool, const char*> flags[] = {
      {options.fWarnAboutProhibitedDevices, "WARN_ABOUT_PROHIBITED_DEVICES"},
      {options.fSkipProhibitedDevices, "SKIP_PROHIBITED_DEVICES"},
      {options.fWarnAboutUnusedSamples, "WARN_ABOUT_UNUSED_SAMPLES"},
      {options.fSkipUnusedSamples, "SKIP_UNUSED_SAMPLES"},
      {options.fPropagateSampleSkipping, "PROPAGATE_SAMPLE_SKIPPING_TO_PATCHES_AND_SONGS"},
  };
  for (const auto& [isSet, key] : flags) {
    if (isSet) keys += key;
  }
  if (!options.fSkipItems.IsEmpty()) keys += "SKIP_ITEM";
  return keys;
}

}  // namespace

CInformationPanel::CInformationPanel(const CTextResources& texts, const QString& taken,
                                     QWidget* parent)
    : QGroupBox(parent),
      fTexts(texts),
      fName(new QLineEdit),
      fVersion(new QLineEdit),
      fCopyright(new QLineEdit),
      fURL(new QLineEdit),
      fComments(new QPlainTextEdit),
      fOptions(new QLabel) {
  setTitle(Text(kTextInformation));
  auto* const form = new QFormLayout;
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  const std::pair<CStringNumber, QWidget*> fields[] = {{kInfoName, fName},
                                                       {kInfoVersion, fVersion},
                                                       {kInfoCopyright, fCopyright},
                                                       {kInfoAddress, fURL},
                                                       {kTextComments, fComments}};
  const QStringList buttons = WithMnemonics({Text(kTextSave), Text(kTextRevert)}, taken);
  QStringList labels;
  for (const auto& field : fields) labels += Text(field.first);
  const QStringList marked = WithMnemonics(labels, taken + MnemonicsOf(buttons));
  for (qsizetype row = 0; row < marked.size(); ++row) {
    fields[row].second->setAccessibleName(labels[row]);
    fields[row].second->setAcceptDrops(false);  // a folder that is dropped here is for the window
    form->addRow(marked[row], fields[row].second);
  }
  fComments->setTabChangesFocus(true);
  fComments->viewport()->setAcceptDrops(false);
  // Four lines: the room belongs to what is in the folder.
  fComments->setFixedHeight(fComments->fontMetrics().lineSpacing() * 4 +
                            2 * (fComments->frameWidth() + 5));
  fOptions->setWordWrap(true);
  fOptions->setTextFormat(Qt::PlainText);
  auto* const options = new QLabel(Text(kTextOptions));
  options->setAlignment(Qt::AlignTop);  // in line with the first of them
  form->addRow(options, fOptions);

  auto* const row = new QHBoxLayout(this);
  auto* const column = new QVBoxLayout;
  column->addLayout(form);
  column->addWidget(MakeButtons(buttons));
  row->addLayout(column, 1);
  row->addWidget(MakeSplash(), 0, Qt::AlignTop);
  for (QLineEdit* const line : {fName, fVersion, fCopyright, fURL}) {
    connect(line, &QLineEdit::textEdited, this, &CInformationPanel::TellEdited);
  }
  connect(fComments, &QPlainTextEdit::textChanged, this, &CInformationPanel::TellEdited);
  Show({});
}

QWidget* CInformationPanel::MakeSplash() {
  auto* const box = new QWidget;
  auto* const column = new QVBoxLayout(box);
  column->setContentsMargins(0, 0, 0, 0);
  fSplash = new CSplashView(fTexts, box);
  auto* const choose = new QPushButton(Text(kTextChoose));
  choose->setAccessibleName(Text(kTextSplash) + ": " + Text(kTextChoose));
  column->addWidget(fSplash);
  column->addWidget(choose);
  connect(choose, &QPushButton::clicked, this, &CInformationPanel::SplashAsked);
  return box;
}

QWidget* CInformationPanel::MakeButtons(const QStringList& labels) {
  auto* const box = new QWidget;
  auto* const row = new QHBoxLayout(box);
  row->setContentsMargins(0, 0, 0, 0);
  fSave = new QPushButton(labels[0]);
  fRevert = new QPushButton(labels[1]);
  row->addStretch();
  row->addWidget(fRevert);
  row->addWidget(fSave);
  connect(fSave, &QPushButton::clicked, this, &CInformationPanel::SaveAsked);
  connect(fRevert, &QPushButton::clicked, this, &CInformationPanel::Revert);
  return box;
}

QString CInformationPanel::Text(CStringNumber number) const { return ToQt(fTexts.Text(number)); }

void CInformationPanel::Show(const CPackageTexts& texts) {
  const CPackageInformation before = std::exchange(fRead, texts.fInformation);
  for (const auto& [line, text] : Lines()) {
    if (line->text() == ToQt(before.*text)) line->setText(ToQt(fRead.*text));
  }
  if (!fComments->document()->isModified()) ShowComments();
  const QStringList keys = OptionKeys(texts.fOptions);
  fOptions->setText(keys.isEmpty() ? Text(kTextNoOptions) : keys.join('\n'));
  TellEdited();
}

CPackageInformation CInformationPanel::Wanted() const {
  CPackageInformation wanted = fRead;
  for (const auto& [line, text] : Lines()) {
    // What a line cannot show of a text was not changed in it.
    if (line->text() != ToQt(fRead.*text)) wanted.*text = FromQt(line->text().trimmed());
  }
  if (fComments->document()->isModified()) {
    // The plain text would have blanks for no-break spaces.
    QString text = fComments->document()->toRawText().trimmed();
    const bool isWindows = fRead.fComments.find(u"\r\n") != std::u16string::npos;
    for (const QChar end : {QChar(QChar::ParagraphSeparator), QChar(QChar::LineSeparator)}) {
      text.replace(end, isWindows ? "\r\n" : "\n");
    }
    wanted.fComments = FromQt(text);
  }
  return wanted;
}

bool CInformationPanel::IsEdited() const {
  const CPackageInformation wanted = Wanted();
  for (const auto& [line, text] : Lines()) {
    if (wanted.*text != fRead.*text) return true;
  }
  return wanted.fComments != fRead.fComments;
}

void CInformationPanel::Revert() {
  for (const auto& [line, text] : Lines()) line->setText(ToQt(fRead.*text));
  ShowComments();
  TellEdited();
}

void CInformationPanel::ShowComments() {
  fComments->setPlainText(ToQt(fRead.fComments));
  fComments->document()->setModified(false);
}

std::array<CInformationPanel::CLine, 4> CInformationPanel::Lines() const {
  return {{{fName, &CPackageInformation::fName},
           {fVersion, &CPackageInformation::fVersion},
           {fCopyright, &CPackageInformation::fCopyright},
           {fURL, &CPackageInformation::fURL}}};
}

void CInformationPanel::TellEdited() {
  const bool isEdited = IsEdited();
  fSave->setEnabled(isEdited);
  fRevert->setEnabled(isEdited);
  emit Edited(isEdited);
}

}  // namespace NSTambraGui
