#pragma once

#include <QCheckBox>
#include <QDialog>

#include "app/AlertText.h"
#include "app/TextResources.h"

namespace NSTambraGui {

/// An alert of the text tables: its kind's icon, title, message, and its buttons in their order.
/// Escape, Enter and the window's close button take the careful answer.
class CAlertDialog : public QDialog {
  Q_OBJECT

 public:
  /// `careful` is the index of the careful button. With a text in `sameForAll` there is a check box
  /// of that text.
  CAlertDialog(const NSTambraPacking::CAlertText& alert, std::size_t careful,
               const QString& sameForAll, QWidget* parent);

  /// Of the button that was pressed, as CAlertText::Answer.
  int Answer() const { return fAnswer; }
  bool IsForAll() const { return fSameForAll != nullptr && fSameForAll->isChecked(); }

 private:
  int fAnswer;
  QCheckBox* fSameForAll = nullptr;
};

/// The index of the careful button of the alert `number`: the first-listed of a question, "OK"
/// where a log is offered.
std::size_t CarefulButton(NSTambraPacking::CAlertNumber number,
                          const NSTambraPacking::CAlertText& alert);

/// Shows an alert that asks once, or tells; returns the answer.
int ShowAlertDialog(const NSTambraPacking::CTextResources& texts,
                    NSTambraPacking::CAlertNumber number,
                    const std::vector<std::u16string>& arguments, QWidget* parent);

}  // namespace NSTambraGui
