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

namespace {

/// A sample on its way to the device.
class CPlaying {
 public:
  CPlaying(const NSBigFilePackage::SharedMedia& stream, const std::function<void()>& ended)
      : fSource(stream), fSink(QMediaDevices::defaultAudioOutput(), fSource.Format()) {
    QObject::connect(&fSink, &QAudioSink::stateChanged, &fSink, [ended](QAudio::State state) {
      if (state == QAudio::IdleState || state == QAudio::StoppedState) ended();
    });
    fSource.open(QIODevice::ReadOnly);
    fSink.start(&fSource);
  }

  ~CPlaying() { fSink.disconnect(); }

 private:
  CSampleSource fSource;
  QAudioSink fSink;
};

}  // namespace

CSoundOutput CSoundOutput::OfTheSystem() {
  return {[] { return !QMediaDevices::defaultAudioOutput().isNull(); },
          [](const NSBigFilePackage::SharedMedia& stream, const std::function<void()>& ended) {
            return std::make_shared<CPlaying>(stream, ended);
          }};
}

#else

CSoundOutput CSoundOutput::OfTheSystem() {
  return {[] { return false; }, {}};
}

#endif

CSamplePlayer::CSamplePlayer(const NSTambraPacking::CTextResources& texts, QWidget* parent,
                             CSoundOutput output)
    : QWidget(parent), fTexts(texts), fOutput(std::move(output)), fButton(new QPushButton(this)) {
  auto* const layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(fButton);
  layout->addStretch();
  connect(fButton, &QPushButton::clicked, this, &CSamplePlayer::Toggle);
  hide();
}

void CSamplePlayer::SetSample(NSBigFilePackage::SharedMedia stream) {
  Stop();
  fStream = std::move(stream);
  setVisible(fStream != nullptr && fOutput.fIsThere());
}

void CSamplePlayer::Toggle() {
  if (fPlaying != nullptr) return Stop();
  fPlaying = fOutput.fPlay(fStream, [this, run = ++fRun] {
    const auto stop = [this, run] {
      if (run == fRun) Stop();
    };
    QMetaObject::invokeMethod(this, stop, Qt::QueuedConnection);  // not while the device tells it
  });
  fButton->setText(ToQt(fTexts.Text(NSTambraPacking::kStopCommand)));
}

void CSamplePlayer::Stop() {
  fPlaying.reset();
  fButton->setText(ToQt(fTexts.Text(NSTambraPacking::kPlayCommand)));
}

}  // namespace NSTambraGui
