#include "filetypes/dwop/DWOPEncoder.h"

#include <algorithm>
#include <bit>
#include <string>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "filetypes/dwop/DWOPValueCoder.h"

namespace NSTambraPacking {

namespace {

template <class Sample>
std::span<const std::uint8_t> BytesOf(std::span<const Sample> samples) {
  return {reinterpret_cast<const std::uint8_t*>(samples.data()), samples.size_bytes()};
}

}  // namespace

CDWOPEncoder::CDWOPEncoder(NSBigFilePackage::CMediaCursor& output, unsigned channels,
                           EDWOPForm form)

    : fWriter(output, fRoom->fOutput), fChannels(channels), fForm(form) {
  if (channels != 1 && channels != 2) {
    throw NSMordel::XFormatViolation("a DWOP stream cannot have " + std::to_string(channels) +
                                     " channels");
  }
  fStates.fill(StartOfDWOPStream());
}

void CDWOPEncoder::Encode(std::span<const std::int32_t> interleaved) {
  Encode(ESamplePacking::kInt32, BytesOf(interleaved));
}

void CDWOPEncoder::Encode(std::span<const std::int16_t> interleaved) {
  constexpr bool isLittle = std::endian::native == std::endian::little;
  Encode(isLittle ? ESamplePacking::k16Little : ESamplePacking::k16Big, BytesOf(interleaved));
}

void CDWOPEncoder::Encode(ESamplePacking packing, std::span<const std::uint8_t> interleaved) {
  const std::size_t frameBytes = SampleBytes(packing) * fChannels;
  CPackedFrames left{interleaved.data(), interleaved.size() / frameBytes, packing, fChannels};
  while (left.fFrames > 0) {
    std::size_t done = fRoom->fLanes.Code(fForm, left, fStates.data(), fWriter);
    if (done == 0) {
      done = std::min(left.fFrames, CDWOPLaneCoder::kMostSegmentFrames);
      CodeDWOPValues(left.Part(0, done), fStates.data(), fWriter);
    }
    left = left.Part(done, left.fFrames - done);
  }
}

void CDWOPEncoder::Finish() { fWriter.Finish(); }

}  // namespace NSTambraPacking
