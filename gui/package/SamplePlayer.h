#pragma once

#include <QPushButton>
#include <QWidget>
#include <memory>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "app/TextResources.h"

namespace NSTambraGui {

/// A button that plays a packed sample and stops it. Shown only where the program can play sounds
/// and a device for them is there.
class CSamplePlayer : public QWidget {
  Q_OBJECT

 public:
  CSamplePlayer(const NSTambraPacking::CTextResources& texts, QWidget* parent);
  ~CSamplePlayer() override;

  /// What the button plays from now on, silent until then; nothing for null.
  void SetSample(NSBigFilePackage::SharedMedia stream);

 private:
  class COutput;

  void Toggle();
  void Stop();

  const NSTambraPacking::CTextResources& fTexts;
  QPushButton* fButton;
  NSBigFilePackage::SharedMedia fStream;
  std::unique_ptr<COutput> fOutput;
  int fRun = 0;  ///< how often something was played
};

}  // namespace NSTambraGui
