#include "codecs/AudioFile.h"

#include <algorithm>
#include <utility>

#include "codecs/AIFFHeader.h"
#include "codecs/WAVEHeader.h"

namespace NSTambraPacking {

using NSBigFilePackage::SharedMedia;

CAudioFile::CAudioFile(SharedMedia media, const CAudioHeader& header)
    : fMedia(std::move(media)), fHeader(header), fFramesLeft(header.fFormat.fFrames) {}

CAudioFile CAudioFile::Open(SharedMedia media, EAudioContainer container) {
  const CAudioHeader header =
      container == EAudioContainer::kWAVE ? ReadWAVEHeader(media) : ReadAIFFHeader(media);
  return CAudioFile(std::move(media), header);
}

std::size_t CAudioFile::ReadFrames(std::span<std::int32_t> interleaved) {
  const std::size_t channels = fHeader.fFormat.fChannels;
  if (channels == 0) return 0;
  const auto frames =
      static_cast<std::size_t>(std::min<std::uint64_t>(interleaved.size() / channels, fFramesLeft));
  if (frames == 0) return 0;
  if (!fDecoder) fDecoder = MakeSampleDecoder(fMedia, fHeader.fFormat);
  fDecoder->Read(interleaved.first(frames * channels));
  fFramesLeft -= frames;
  return frames;
}

}  // namespace NSTambraPacking
