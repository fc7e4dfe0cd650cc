#pragma once

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QWidget>

#include "gui/package/BackgroundTask.h"

namespace NSTambraGui {

/// A folder: chosen with a button, typed, dropped, or picked from those of earlier times.
class CFolderChooser : public QWidget {
  Q_OBJECT

 public:
  struct CTexts {
    QString fLabel;
    QString fChoose;  ///< of the button
    QString fHint;    ///< shown while no folder is chosen
  };

  CFolderChooser(const CTexts& texts, QWidget* parent);

  /// Empty when none is chosen.
  QString Folder() const { return fFolder; }
  /// Chooses the folder and, once it is seen to be there, puts it first among the recent ones;
  /// tells nobody. A drive that does not answer is not waited for.
  void SetFolder(const QString& folder);
  QStringList Recent() const;
  void SetRecent(const QStringList& folders);
  /// Leaves the chosen folder alone among the recent ones.
  void ForgetOthers();
  int LabelWidth() const { return fLabel->sizeHint().width(); }
  void SetLabelWidth(int width) { fLabel->setMinimumWidth(width); }

 signals:
  /// The button was pressed.
  void Asked();
  /// A folder was typed, dropped or picked.
  void Chosen(const QString& folder);

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void TakeTyped();
  void PutFirst(const QString& folder);

  QLabel* fLabel;
  QComboBox* fPath;
  QString fFolder;
  CBackgroundTask fLook;  ///< whether the folder is there
};

/// The local folder or file that is dragged; empty unless there is just one.
QString DraggedPath(const QMimeData& data);

}  // namespace NSTambraGui
