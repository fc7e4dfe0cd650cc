#include "filetypes/dwop/DWOPFileEncoder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "codecs/AudioFile.h"
#include "filetypes/dwop/DWOPEncoder.h"
#include "filetypes/dwop/DWOPExtraInfo.h"
#include "filetypes/dwop/PlainWAVE.h"
#include "filetypes/dwop/SourceWithoutSamples.h"
#include "filetypes/dwop/SpareRoom.h"

namespace NSTambraPacking {

namespace {

using NSBigFilePackage::CMediaCursor;
using NSBigFilePackage::IMedia;
using NSBigFilePackage::SharedMedia;

/// Samples are read and coded in pieces of so many bytes, 4-byte integers where they are decoded.
constexpr std::size_t kPieceLength = 131072;

struct CPiece {
  alignas(std::int32_t) std::array<std::uint8_t, kPieceLength> fBytes;
  std::span<std::int32_t> Integers() {
    return {reinterpret_cast<std::int32_t*>(fBytes.data()), kPieceLength / sizeof(std::int32_t)};
  }
};

CDWOPHeader HeaderFor(const CAudioFormat& format, const CInstrument& instrument) {
  CDWOPHeader header;
  header.fLength = static_cast<std::uint32_t>(format.fFrames);
  header.fRootKey = instrument.fRootKey;
  header.fFineTune = instrument.fFineTune;
  header.fLoopMode = instrument.fLoopMode;
  header.fChannels = static_cast<std::uint8_t>(format.fChannels);
  // A loop lies inside the frames, so that its ends fit where their number does.
  header.fLoopStart = static_cast<std::uint32_t>(instrument.fLoopStart);
  header.fLoopEnd = static_cast<std::uint32_t>(instrument.fLoopEnd);
  header.fRate = format.fRate;
  header.fWidth = static_cast<std::uint8_t>(format.CodedWidth());
  return header;
}

bool IsPlainWAVE(const IMedia& source, const CDWOPHeader& header) {
  const auto expected = PlainWAVEHead(header);
  if (!expected) return false;
  const std::uint64_t end = kPlainWAVEHeadLength + PlainSampleBytes(header);
  const bool isOdd = end % 2 != 0;
  if (source.Size() != end + (isOdd ? 1 : 0)) return false;
  std::array<std::uint8_t, kPlainWAVEHeadLength> head;
  NSBigFilePackage::ReadExactly(source, 0, head);
  if (head != *expected) return false;
  std::array<std::uint8_t, 1> pad{};
  if (isOdd) NSBigFilePackage::ReadExactly(source, end, pad);
  return pad[0] == 0;
}

void EncodeSamples(CAudioFile& file, CMediaCursor& output, const std::function<void()>& checkStop) {
  const unsigned channels = file.Format().fChannels;
  CDWOPEncoder encoder(output, channels);
  const CSpareRoom<CPiece> piece;
  for (;;) {
    if (checkStop) checkStop();
    if (const auto packing = file.Packing()) {
      const std::size_t frames = file.ReadPacked(piece->fBytes);
      if (frames == 0) break;
      encoder.Encode(*packing, std::span(piece->fBytes).first(frames * file.Format().FrameBytes()));
    } else {
      const std::size_t frames = file.ReadFrames(piece->Integers());
      if (frames == 0) break;
      encoder.Encode(std::span<const std::int32_t>(piece->Integers().first(frames * channels)));
    }
  }
  encoder.Finish();
}

}  // namespace

CKeptReport EncodeAudioFile(const SharedMedia& source, EAudioContainer container,
                            IMedia& destination, const std::function<void()>& checkStop) {
  CAudioFile file = CAudioFile::Open(source, container);
  CheckAudioFormat(file.Format());
  const CDWOPHeader header = HeaderFor(file.Format(), file.Instrument());
  CMediaCursor output(destination);
  WriteDWOPHeader(output, header);
  EncodeSamples(file, output, checkStop);
  if (IsPlainWAVE(*source, header)) return {};
  WriteExtraInfo(output, CSourceWithoutSamples(source, container, file.Layout()), checkStop);
  return JudgeKept(file.Format(), file.Layout());
}

CKeptReport JudgeKept(const CAudioFormat& format, const CSampleChunkLayout& layout) {
  if (!format.KeptBitForBit()) {
    return {format.fCoding == ESampleCoding::kMuLaw || format.fCoding == ESampleCoding::kALaw,
            false, "its samples are not integers of 8, 16 or 24 bits"};
  }
  if (format.fSamplesStart != layout.fContentsStart) {
    return {true, false, "its samples do not begin their chunk"};
  }
  if (format.SamplesLength() != layout.fContentsLength) {
    return {true, false, "its sample chunk holds more than whole frames"};
  }
  if (layout.fContentsLength % 2 != 0 && (layout.fPadLength == 0 || layout.fPadValue != 0)) {
    return {true, false, "the pad byte behind its samples is missing or not zero"};
  }
  return {};
}

void CheckAudioFormat(const CAudioFormat& format) {
  const bool isMonoOrStereo = static_cast<std::uint16_t>(format.fChannels - 1) < 2;
  if (!isMonoOrStereo || format.fFrames > std::numeric_limits<std::uint32_t>::max()) {
    throw NSMordel::XFormatViolation();
  }
}

}  // namespace NSTambraPacking
