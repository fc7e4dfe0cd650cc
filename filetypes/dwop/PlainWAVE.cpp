#include "filetypes/dwop/PlainWAVE.h"

#include <limits>
#include <span>

#include "Parts/TolbrookPackage/Core/ByteOrder.h"

namespace NSTambraPacking {

namespace {

constexpr std::uint32_t kFormatLength = 16;
constexpr std::uint16_t kPCM = 1;

using NSTolbrook::FourCharCode;
using NSTolbrook::MakeFourCharCode;

/// Puts one field behind the other into the head.
class CHeadBuilder {
 public:
  void Code(FourCharCode code) { NSTolbrook::StoreBigEndian(Next(sizeof(code)), code); }
  template <class Number>
  void Put(Number number) {
    NSTolbrook::StoreLittleEndian(Next(sizeof(number)), number);
  }
  const std::array<std::uint8_t, kPlainWAVEHeadLength>& Bytes() const { return fBytes; }

 private:
  std::span<std::uint8_t> Next(std::size_t length) {
    fLength += length;
    return std::span(fBytes).subspan(fLength - length);
  }

  std::array<std::uint8_t, kPlainWAVEHeadLength> fBytes{};
  std::size_t fLength = 0;
};

}  // namespace

std::uint64_t PlainSampleBytes(const CDWOPHeader& header) {
  return std::uint64_t{header.fLength} * header.fChannels * (header.fWidth / 8u);
}

std::optional<std::array<std::uint8_t, kPlainWAVEHeadLength>> PlainWAVEHead(
    const CDWOPHeader& header) {
  const std::uint64_t sampleBytes = PlainSampleBytes(header);
  const std::uint64_t outerSize = kPlainWAVEHeadLength - 8 + sampleBytes + (sampleBytes & 1);
  if (outerSize > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
  const auto frameLength = static_cast<std::uint16_t>(header.fChannels * (header.fWidth / 8));

  CHeadBuilder head;
  head.Code(MakeFourCharCode("RIFF"));
  head.Put(static_cast<std::uint32_t>(outerSize));
  head.Code(MakeFourCharCode("WAVE"));
  head.Code(MakeFourCharCode("fmt "));
  head.Put(kFormatLength);
  head.Put(kPCM);
  head.Put(std::uint16_t{header.fChannels});
  head.Put(header.fRate);
  head.Put(header.fRate * frameLength);
  head.Put(frameLength);
  head.Put(std::uint16_t{header.fWidth});
  head.Code(MakeFourCharCode("data"));
  head.Put(static_cast<std::uint32_t>(sampleBytes));
  return head.Bytes();
}

}  // namespace NSTambraPacking
