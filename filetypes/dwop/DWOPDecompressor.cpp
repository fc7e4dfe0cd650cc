#include "filetypes/dwop/DWOPDecompressor.h"

#include <algorithm>
#include <bit>

#include "Parts/TolbrookPackage/Core/Exception.h"

namespace NSTambraPacking {

namespace {

constexpr unsigned kWordBits = 32;
constexpr unsigned kBufferBits = 64;

}  // namespace

COptimizedDWOPDecompressor::COptimizedDWOPDecompressor(const CDWOPHeader& header)
    : fChannels(header.fChannels), fWidth(header.fWidth) {}

void COptimizedDWOPDecompressor::Decode(std::span<std::int32_t> interleaved) {
  if (fChannels == 1) {
    for (std::int32_t& sample : interleaved) sample = Narrow(DecodeValue(fPredictors[0]));
    return;
  }
  for (std::size_t i = 0; i + 1 < interleaved.size(); i += 2) {
    const std::uint32_t left = DecodeValue(fPredictors[0]);
    const std::uint32_t right = left + DecodeValue(fPredictors[1]);
    interleaved[i] = Narrow(left);
    interleaved[i + 1] = Narrow(right);
  }
}

std::uint32_t COptimizedDWOPDecompressor::DecodeValue(CDWOPPredictor& predictor) {
  const std::size_t order = predictor.BestOrder();
  const std::uint32_t zigzag = ReadResidual(predictor.Modulus(order));
  const std::uint32_t value = predictor.ValueFromError(order, ErrorFromZigzag(zigzag));
  predictor.Advance(value);
  predictor.UpdateSums();
  return value;
}

std::uint32_t COptimizedDWOPDecompressor::ReadResidual(std::uint32_t modulus) {
  std::uint32_t value = 0;
  std::uint32_t zeros = ReadZeros();
  for (; zeros == kDWOPEscapeZeros; zeros = ReadZeros()) {
    if (modulus >= kDWOPEscapeLimit) {
      throw NSMordel::XFormatViolation("a DWOP residual is beyond 32 bits");
    }
    value += kDWOPEscapeZeros * modulus;
    modulus <<= kDWOPEscapeShift;
  }
  const auto length = static_cast<unsigned>(std::bit_width(modulus));
  const auto shortCodes = static_cast<std::uint32_t>((std::uint64_t{1} << length) - modulus);
  std::uint32_t remainder = ReadBits(length - 1);
  if (remainder >= shortCodes) remainder = (remainder << 1) + ReadBits(1) - shortCodes;
  return value + zeros * modulus + remainder;
}

std::uint32_t COptimizedDWOPDecompressor::ReadZeros() {
  std::uint32_t zeros = 0;
  while (zeros < kDWOPEscapeZeros) {
    if (fAvailable == 0) Refill();
    const unsigned run = std::min({static_cast<unsigned>(std::countl_zero(fBits)), fAvailable,
                                   static_cast<unsigned>(kDWOPEscapeZeros - zeros)});
    fBits <<= run;
    fAvailable -= run;
    zeros += run;
    if (zeros < kDWOPEscapeZeros && fAvailable > 0) {
      fBits <<= 1;
      --fAvailable;
      break;
    }
  }
  return zeros;
}

std::uint32_t COptimizedDWOPDecompressor::ReadBits(unsigned count) {
  if (count == 0) return 0;
  if (fAvailable < count) Refill();
  const auto value = static_cast<std::uint32_t>(fBits >> (kBufferBits - count));
  fBits <<= count;
  fAvailable -= count;
  return value;
}

void COptimizedDWOPDecompressor::Refill() {
  if (fWords.empty()) fWords = ReadWords();
  fBits |= std::uint64_t{fWords.front()} << (kBufferBits - kWordBits - fAvailable);
  fAvailable += kWordBits;
  fWords = fWords.subspan(1);
  ++fWordsConsumed;
}

std::int32_t COptimizedDWOPDecompressor::Narrow(std::uint32_t value) const {
  const unsigned unused = kWordBits - fWidth;
  return static_cast<std::int32_t>(value << unused) >> unused;
}

COptimizedDWOPDecompressorFromMedia::COptimizedDWOPDecompressorFromMedia(
    const CDWOPHeader& header, const NSBigFilePackage::IMedia& media, std::uint64_t position)
    : COptimizedDWOPDecompressor(header), fSource(media, position) {}

std::span<const std::uint32_t> COptimizedDWOPDecompressorFromMedia::ReadWords() {
  return fSource.ReadWords();
}

}  // namespace NSTambraPacking
