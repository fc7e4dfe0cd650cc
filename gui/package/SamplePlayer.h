#pragma once

#include <QPushButton>
#include <QWidget>
#include <functional>
#include <memory>

#include "Parts/TolbrookPackage/Core/Media.h"

#include "app/TextResources.h"

namespace NSTambraGui {

/// Where sounds go; a test listens in the place of the system.
struct CSoundOutput {
  /// Whether the program can play sounds and a device for them is there.
  std::function<bool()> fIsThere;
  /// Plays a packed sample for as long as what it returns is held; `ended` is told when there is
  /// no more of it, or the device fails.
  std::function<std::shared_ptr<void>(const NSBigFilePackage::SharedMedia& stream,
                                      std::function<void()> ended)>
      fPlay;

  static CSoundOutput OfTheSystem();
};

/// A button that plays a packed sample and stops it. Shown only where there is an output.
class CSamplePlayer : public QWidget {
  Q_OBJECT

 public:
  CSamplePlayer(const NSTambraPacking::CTextResources& texts, QWidget* parent,
                CSoundOutput output = CSoundOutput::OfTheSystem());

  /// What the button plays from now on, silent until then; nothing for null.
  void SetSample(NSBigFilePackage::SharedMedia stream);

 private:
  void Toggle();
  void Stop();

  const NSTambraPacking::CTextResources& fTexts;
  CSoundOutput fOutput;
  QPushButton* fButton;
  NSBigFilePackage::SharedMedia fStream;
  std::shared_ptr<void> fPlaying;
  int fRun = 0;  ///< how often something was played
};

}  // namespace NSTambraGui
