#include <algorithm>
#include <bit>
#include <cstdint>

#include "Parts/TolbrookPackage/Core/Exception.h"

#include "filetypes/dwop/DWOPDecodeKernels.h"
#include "filetypes/dwop/DWOPFormat.h"
#include "filetypes/dwop/DWOPZigzag.h"

namespace NSTambraPacking {

namespace {

/// Reads bits one code element at a time, and none behind the last.
class CBitReader {
 public:
  explicit CBitReader(const CDWOPDecodeState& state)
      : fBytes(state.fBytes), fBit(state.fBit), fEnd(state.fByteCount * 8) {}

  std::size_t Position() const { return fBit; }

  std::uint32_t Residual(std::uint32_t modulus) {
    std::uint32_t value = 0;
    std::uint32_t zeros = Zeros();
    for (; zeros == kDWOPEscapeZeros; zeros = Zeros()) {
      if (modulus >= kDWOPEscapeLimit) {
        throw NSMordel::XFormatViolation("a DWOP residual is beyond 32 bits");
      }
      value += kDWOPEscapeZeros * modulus;
      modulus <<= kDWOPEscapeShift;
    }
    const auto length = static_cast<unsigned>(std::bit_width(modulus));
    const auto shortCodes = static_cast<std::uint32_t>((std::uint64_t{1} << length) - modulus);
    std::uint32_t remainder = Bits(length - 1);
    if (remainder >= shortCodes) remainder = (remainder << 1) + Bits(1) - shortCodes;
    return value + zeros * modulus + remainder;
  }

 private:
  /// Zero bits up to seven; fewer than seven are followed by a one bit, which is taken too.
  std::uint32_t Zeros() {
    const std::uint64_t next = Peek();
    const auto zeros =
        std::min<unsigned>(static_cast<unsigned>(std::countl_zero(next)), kDWOPEscapeZeros);
    Skip(zeros < kDWOPEscapeZeros ? zeros + 1 : zeros);
    return zeros;
  }

  std::uint32_t Bits(unsigned count) {
    const std::uint64_t next = Peek();
    Skip(count);
    // In two steps, for none of the bits.
    return static_cast<std::uint32_t>(next >> 1 >> (63 - count));
  }

  /// The next 57 bits or more, the first in the highest place; zeros behind the last.
  std::uint64_t Peek() const {
    std::uint64_t bits = 0;
    const std::size_t first = fBit / 8;
    for (std::size_t i = 0; i < 8; ++i) {
      const std::uint64_t byte = (first + i) * 8 < fEnd ? fBytes[first + i] : 0;
      bits |= byte << (56 - 8 * i);
    }
    return bits << (fBit % 8);
  }

  void Skip(unsigned count) {
    if (fEnd - fBit < count) throw NSMordel::XFormatViolation("zero length sample");
    fBit += count;
  }

  const std::uint8_t* fBytes;
  std::size_t fBit;
  std::size_t fEnd;
};

std::uint32_t DecodeValue(CBitReader& reader, CDWOPDecodeChannel& channel) {
  const auto best = std::ranges::min_element(channel.fSums);
  const std::uint32_t modulus = std::max<std::uint32_t>(((*best + 12) * 3) >> 7, 1);
  std::uint32_t value = ErrorFromZigzag(reader.Residual(modulus));
  for (auto order = best - channel.fSums; order > 0; --order) value += channel.fErrors[order - 1];

  std::uint32_t error = value;
  for (std::size_t order = 0; order < kDWOPOrders; ++order) {
    std::uint32_t& sum = channel.fSums[order];
    sum += ZigzagFromError(error) - (sum >> 5);
    if (order == kDWOPOrders - 1) break;
    const std::uint32_t previous = channel.fErrors[order];
    channel.fErrors[order] = error;
    error -= previous;
  }
  return value;
}

}  // namespace

void DecodeDWOPFrame(CDWOPDecodeState& state, std::int32_t* output) {
  const unsigned unused = 32 - state.fWidth;
  const auto narrow = [unused](std::uint32_t value) {
    return static_cast<std::int32_t>(value << unused) >> unused;
  };
  CBitReader reader(state);
  const std::uint32_t first = DecodeValue(reader, state.fChannels[0]);
  output[0] = narrow(first);
  if (state.fChannelCount == 2) output[1] = narrow(first + DecodeValue(reader, state.fChannels[1]));
  state.fBit = reader.Position();
}

}  // namespace NSTambraPacking
