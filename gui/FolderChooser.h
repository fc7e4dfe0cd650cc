#pragma once

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QWidget>

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
  /// Chooses the folder and, if it is there, puts it first among the recent ones; tells nobody.
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

  QLabel* fLabel;
  QComboBox* fPath;
  QString fFolder;
};

/// The local folder or file that is dragged; empty unless there is just one.
QString DraggedPath(const QMimeData& data);

}  // namespace NSTambraGui
