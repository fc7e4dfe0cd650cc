#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <array>

#include "app/PackageInformation.h"
#include "app/TextResources.h"
#include "gui/SplashView.h"

namespace NSTambraGui {

/// The package's information as the folder has it, to be changed and saved.
class CInformationPanel : public QGroupBox {
  Q_OBJECT

 public:
  /// The texts must outlive the panel. Its mnemonics keep clear of the letters in `taken`.
  CInformationPanel(const NSTambraPacking::CTextResources& texts, const QString& taken,
                    QWidget* parent);

  /// Shows what was read; what the user is changing stays as it is.
  void Show(const NSTambraPacking::CPackageTexts& texts);
  /// The texts as they stand in the fields.
  NSTambraPacking::CPackageInformation Wanted() const;
  bool IsEdited() const;
  /// Back to what was read.
  void Revert();
  CSplashView& Splash() { return *fSplash; }

 signals:
  void Edited(bool isEdited);
  void SaveAsked();
  void SplashAsked();

 private:
  struct CLine {
    QLineEdit* fLine;
    std::u16string NSTambraPacking::CPackageInformation::*fText;
  };

  std::array<CLine, 4> Lines() const;
  void ShowComments();
  QWidget* MakeSplash();
  QWidget* MakeButtons(const QStringList& labels);
  QString Text(NSTambraPacking::CStringNumber number) const;
  void TellEdited();

  const NSTambraPacking::CTextResources& fTexts;
  NSTambraPacking::CPackageInformation fRead;
  QLineEdit* fName;
  QLineEdit* fVersion;
  QLineEdit* fCopyright;
  QLineEdit* fURL;
  QPlainTextEdit* fComments;
  QLabel* fOptions;
  CSplashView* fSplash;
  QPushButton* fSave;
  QPushButton* fRevert;
};

}  // namespace NSTambraGui
