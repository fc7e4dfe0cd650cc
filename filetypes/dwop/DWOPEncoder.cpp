#include "filetypes/dwop/DWOPEncoder.h"

#include <algorithm>
#include <string>
#include <vector>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraPacking {

CDWOPEncoder::CDWOPEncoder(NSBigFilePackage::CMediaCursor& output, unsigned channels)
    : fWriter(output), fChannels(channels) {
  if (channels != 1 && channels != 2) {
    throw NSMordel::XFormatViolation("a DWOP stream cannot have " + std::to_string(channels) +
                                     " channels");
  }
}

void CDWOPEncoder::Encode(std::span<const std::int32_t> interleaved) {
  if (fChannels == 1) {
    for (const std::int32_t sample : interleaved) {
      EncodeValue(fPredictors[0], static_cast<std::uint32_t>(sample));
    }
    return;
  }
  for (std::size_t i = 0; i + 1 < interleaved.size(); i += 2) {
    const auto left = static_cast<std::uint32_t>(interleaved[i]);
    const auto right = static_cast<std::uint32_t>(interleaved[i + 1]);
    EncodeValue(fPredictors[0], left);
    EncodeValue(fPredictors[1], right - left);
  }
}

void CDWOPEncoder::Finish() { fWriter.Finish(); }

void CDWOPEncoder::EncodeValue(CDWOPPredictor& predictor, std::uint32_t value) {
  const std::size_t order = predictor.BestOrder();
  const std::uint32_t modulus = predictor.Modulus(order);
  predictor.Advance(value);
  fWriter.WriteResidual(ZigzagFromError(predictor.Error(order)), modulus);
  predictor.UpdateSums();
}

void EncodeDWOP(const CDWOPHeader& header, ISampleSource& source,
                NSBigFilePackage::CMediaCursor& output, const std::function<void()>& checkStop) {
  WriteDWOPHeader(output, header);
  CDWOPEncoder encoder(output, header.fChannels);
  std::vector<std::int32_t> block(kDWOPBlockFrames * header.fChannels);
  std::uint32_t remaining = header.fLength;
  while (remaining > 0) {
    if (checkStop) checkStop();
    const std::size_t frames = std::min<std::size_t>(remaining, kDWOPBlockFrames);
    const std::span<std::int32_t> part = std::span(block).first(frames * header.fChannels);
    if (source.ReadFrames(part) != frames) {
      throw NSMordel::XRead("the samples end " + std::to_string(remaining) +
                            " frames or less before their end");
    }
    encoder.Encode(part);
    remaining -= static_cast<std::uint32_t>(frames);
  }
  encoder.Finish();
}

}  // namespace NSTambraPacking
