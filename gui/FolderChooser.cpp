#include "gui/FolderChooser.h"

#include <QDir>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMimeData>

namespace NSTambraGui {

namespace {

constexpr int kMostRecent = 10;

}  // namespace

QString DraggedPath(const QMimeData& data) {
  const QList<QUrl> urls = data.urls();
  return urls.size() == 1 ? urls.front().toLocalFile() : QString();
}

CFolderChooser::CFolderChooser(const CTexts& texts, QWidget* parent)
    : QWidget(parent), fLabel(new QLabel(texts.fLabel)), fPath(new QComboBox), fLook(nullptr) {
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  auto* const button = new QPushButton(texts.fChoose);
  fPath->setEditable(true);
  fPath->setInsertPolicy(QComboBox::NoInsert);
  fPath->setCompleter(nullptr);  // it takes "kit" for a recent "Kit"
  fPath->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  fPath->setMinimumContentsLength(30);
  const QString name = QString(texts.fLabel).remove('&');
  fPath->setAccessibleName(name);
  fPath->lineEdit()->setPlaceholderText(texts.fHint);
  fPath->lineEdit()->setAccessibleName(name);
  button->setAccessibleName(name + ": " + texts.fChoose);
  fLabel->setBuddy(fPath);
  row->addWidget(fLabel);
  row->addWidget(fPath);
  row->addWidget(button);
  setAcceptDrops(true);
  fPath->lineEdit()->setAcceptDrops(false);  // a folder that is dropped on it is no text
  connect(button, &QPushButton::clicked, this, &CFolderChooser::Asked);
  connect(fPath->lineEdit(), &QLineEdit::editingFinished, this, &CFolderChooser::TakeTyped);
  connect(fPath, &QComboBox::activated, this, &CFolderChooser::TakeTyped);
}

void CFolderChooser::TakeTyped() {
  const QString typed = QDir::fromNativeSeparators(fPath->currentText().trimmed());
  if (typed == fFolder) return;
  // One that is not there yet is made by a run, or is missed where it is to be read.
  const QFileInfo file(typed);
  if (file.isDir() || (file.isAbsolute() && !file.exists())) {
    emit Chosen(typed);
  } else {
    SetFolder(fFolder);
  }
}

void CFolderChooser::SetFolder(const QString& folder) {
  // As it is found from everywhere: the next start may be in another place.
  fFolder = folder.isEmpty()
                ? QString()
                : QDir::cleanPath(QFileInfo(QDir::fromNativeSeparators(folder)).absoluteFilePath());
  SetRecent(Recent());
  const auto look = [this, path = fFolder](const CTaskLink& link) {
    // What is not there may have been a slip of the fingers.
    if (QFileInfo(path).isDir()) link.Post([this, path] { PutFirst(path); });
  };
  fLook.Start(look, [](const std::exception_ptr&) {});
}

void CFolderChooser::PutFirst(const QString& folder) {
  QStringList recent = Recent();
  recent.removeAll(folder);
  recent.prepend(folder);
  const QString typed = fPath->currentText();  // since then
  SetRecent(recent);
  fPath->setCurrentText(typed);
}

QStringList CFolderChooser::Recent() const {
  QStringList folders;
  for (int index = 0; index < fPath->count(); ++index) {
    folders += QDir::fromNativeSeparators(fPath->itemText(index));
  }
  return folders;
}

void CFolderChooser::SetRecent(const QStringList& folders) {
  const QSignalBlocker quiet(fPath);
  fPath->clear();
  for (const QString& folder : folders.first(qMin<qsizetype>(folders.size(), kMostRecent))) {
    fPath->addItem(QDir::toNativeSeparators(folder));
  }
  fPath->setCurrentText(QDir::toNativeSeparators(fFolder));
}

void CFolderChooser::ForgetOthers() {
  SetRecent(fFolder.isEmpty() ? QStringList() : QStringList(fFolder));
}

void CFolderChooser::dragEnterEvent(QDragEnterEvent* event) {
  if (QFileInfo(DraggedPath(*event->mimeData())).isDir()) event->acceptProposedAction();
}

void CFolderChooser::dropEvent(QDropEvent* event) {
  const QString path = DraggedPath(*event->mimeData());
  if (!QFileInfo(path).isDir()) return;
  event->acceptProposedAction();
  emit Chosen(path);
}

}  // namespace NSTambraGui
