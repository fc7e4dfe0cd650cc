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
  const std::size_t frames = TakeFrames(interleaved.size() / channels);
  if (frames == 0) return 0;
  if (!fDecoder) fDecoder = MakeSampleDecoder(fMedia, fHeader.fFormat);
  fDecoder->Read(interleaved.first(frames * channels));
  return frames;
}

std::optional<ESamplePacking> CAudioFile::Packing() const {
  const CAudioFormat& format = fHeader.fFormat;
  if (format.fCoding != ESampleCoding::kSigned) return std::nullopt;
  const bool isBig = format.fByteOrder == NSTolbrook::EByteOrder::kBigEndian;
  if (format.fSampleBytes == 2) return isBig ? ESamplePacking::k16Big : ESamplePacking::k16Little;
  if (format.fSampleBytes == 3) return isBig ? ESamplePacking::k24Big : ESamplePacking::k24Little;
  return std::nullopt;
}

std::size_t CAudioFile::ReadPacked(std::span<std::uint8_t> interleaved) {
  const auto frameBytes = static_cast<std::size_t>(fHeader.fFormat.FrameBytes());
  if (frameBytes == 0) return 0;
  const std::uint64_t done = fHeader.fFormat.fFrames - fFramesLeft;
  const std::size_t frames = TakeFrames(interleaved.size() / frameBytes);
  NSBigFilePackage::ReadExactly(*fMedia, fHeader.fFormat.fSamplesStart + done * frameBytes,
                                interleaved.first(frames * frameBytes));
  return frames;
}

std::size_t CAudioFile::TakeFrames(std::size_t most) {
  const auto frames = static_cast<std::size_t>(std::min<std::uint64_t>(most, fFramesLeft));
  fFramesLeft -= frames;
  return frames;
}

}  // namespace NSTambraPacking
