#include "gui/package/SampleSource.h"

#ifdef TAMBRA_MULTIMEDIA

#include <algorithm>
#include <cstring>
#include <utility>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraGui {

namespace {

constexpr qint64 kBytesOfSample = 4;

}  // namespace

CSampleSource::CSampleSource(NSBigFilePackage::SharedMedia stream) : fStream(std::move(stream)) {
  NSBigFilePackage::CMediaCursor input(*fStream);
  fHeader = NSTambraPacking::ReadDWOPHeader(input);
  fFramesLeft = fHeader.fLength;
  fDecompressor = std::make_unique<NSTambraPacking::COptimizedDWOPDecompressorFromMedia>(
      fHeader, *fStream, input.Position());
}

QAudioFormat CSampleSource::Format() const {
  QAudioFormat format;
  format.setSampleRate(static_cast<int>(std::min<std::uint32_t>(fHeader.fRate, 1u << 20)));
  format.setChannelCount(fHeader.fChannels);
  format.setSampleFormat(QAudioFormat::Int32);
  return format;
}

qint64 CSampleSource::bytesAvailable() const {
  return fFramesLeft * kBytesOfSample * fHeader.fChannels + QIODevice::bytesAvailable();
}

qint64 CSampleSource::readData(char* data, qint64 most) {
  const qint64 frameBytes = kBytesOfSample * fHeader.fChannels;
  const auto frames = static_cast<std::uint32_t>(
      std::min<qint64>({most / frameBytes, fFramesLeft, NSTambraPacking::kDWOPBlockFrames}));
  fPiece.resize(std::size_t{frames} * fHeader.fChannels);
  try {
    fDecompressor->Decode(fPiece);
  } catch (const NSMordel::CExceptionBodyMixin&) {
    // What is wrong stands beside the waveform, which meets the same damage.
    fFramesLeft = 0;
    return -1;
  }
  for (std::int32_t& sample : fPiece) {
    sample = static_cast<std::int32_t>(static_cast<std::uint32_t>(sample) << (32 - fHeader.fWidth));
  }
  fFramesLeft -= frames;
  const qint64 bytes = frames * frameBytes;
  if (bytes > 0) std::memcpy(data, fPiece.data(), static_cast<std::size_t>(bytes));
  return bytes == 0 && fFramesLeft == 0 ? -1 : bytes;
}

}  // namespace NSTambraGui

#endif
