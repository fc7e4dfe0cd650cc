#include "gui/package/SamplePlayer.h"

#include <QHBoxLayout>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "app/PackageTextNumbers.h"
#include "gui/QtText.h"

#ifdef TAMBRA_MULTIMEDIA
#include <QAudioDevice>
#include <QAudioSink>
#include <QMediaDevices>

#include "gui/package/SampleSource.h"
#endif

namespace NSTambraGui {

#ifdef TAMBRA_MULTIMEDIA

/// A sample on its way to the device.
class CSamplePlayer::COutput {
 public:
  COutput(const NSBigFilePackage::SharedMedia& stream, const std::function<void()>& ended)
      : fSource(stream), fSink(QMediaDevices::defaultAudioOutput(), fSource.Format()) {
    QObject::connect(&fSink, &QAudioSink::stateChanged, &fSink, [ended](QAudio::State state) {
      if (state == QAudio::IdleState || state == QAudio::StoppedState) ended();
    });
    fSource.open(QIODevice::ReadOnly);
    fSink.start(&fSource);
  }

  static bool IsThere() { return !QMediaDevices::defaultAudioOutput().isNull(); }

 private:
  CSampleSource fSource;
  QAudioSink fSink;
};

#else

class CSamplePlayer::COutput {
 public:
  COutput(const NSBigFilePackage::SharedMedia&, const std::function<void()>&) {}
  static bool IsThere() { return false; }
};

#endif

CSamplePlayer::CSamplePlayer(const NSTambraPacking::CTextResources& texts, QWidget* parent)
    : QWidget(parent), fTexts(texts), fButton(new QPushButton(this)) {
  auto* const layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(fButton);
  layout->addStretch();
  connect(fButton, &QPushButton::clicked, this, &CSamplePlayer::Toggle);
  hide();
}

CSamplePlayer::~CSamplePlayer() = default;

void CSamplePlayer::SetSample(NSBigFilePackage::SharedMedia stream) {
  Stop();
  fStream = std::move(stream);
  setVisible(fStream != nullptr && COutput::IsThere());
}

void CSamplePlayer::Toggle() {
  if (fOutput != nullptr) return Stop();
  fButton->setText(ToQt(fTexts.Text(NSTambraPacking::kStopCommand)));
  fOutput = std::make_unique<COutput>(fStream, [this] {
    // Not while the device is still telling.
    QMetaObject::invokeMethod(
        this, [this] { Stop(); }, Qt::QueuedConnection);
  });
}

void CSamplePlayer::Stop() {
  fOutput.reset();
  fButton->setText(ToQt(fTexts.Text(NSTambraPacking::kPlayCommand)));
}

}  // namespace NSTambraGui
